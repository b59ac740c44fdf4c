// Controls that come and go together.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "proj/views/controls/UiObject.h"

class Layer {
public:
    Layer() = default;
    virtual ~Layer() = 0;
    Layer(const Layer&) = delete;
    Layer& operator=(const Layer&) = delete;

protected:
    void add(std::unique_ptr<UiObject> object) { objects_.push_back(std::move(object)); }

private:
    std::vector<std::unique_ptr<UiObject>> objects_;
};

inline Layer::~Layer() = default;
