// What the panel shows at one time: layers of controls.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "proj/views/controls/Layer.h"

class Page {
public:
    Page() = default;
    virtual ~Page() = default;
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    // Draws the page, on a panel with a screen.
    virtual void render() = 0;

protected:
    void add(std::unique_ptr<Layer> layer) { layers_.push_back(std::move(layer)); }

private:
    std::vector<std::unique_ptr<Layer>> layers_;
};
