// The engine behind its façade, on the test's sound card, for tests of what stands around it: Model needs an
// audio thread that has run a block. One a process at a time.
#pragma once

#include <fstream>
#include <optional>
#include <string>

#include "proj/models/Model.h"
#include "proj/platform/Platform.h"
#include "support/TemporaryFolder.h"
#include "support/card/SteppedTime.h"
#include "support/card/TestCard.h"

class EngineOnCard {
public:
    explicit EngineOnCard(const std::string& productFamily = "slatePanel") {
        tvk::Platform platform;
        platform.homeRoot = folder_.path();
        std::ofstream(folder_.file("product_profile.json"))
            << R"({"inputVoltageMapping": 1.2, "dreGainDeltaDb": 12, "productFamily": ")" << productFamily
            << R"("})";
        model_.emplace(platform);
    }
    ~EngineOnCard() {
        time_.release();
        model_.reset();
        scope_.card.beforePeriod = nullptr;
    }
    EngineOnCard(const EngineOnCard&) = delete;
    EngineOnCard& operator=(const EngineOnCard&) = delete;

    Model& model() { return *model_; }

private:
    TemporaryFolder folder_;
    CardScope scope_;
    SteppedTime time_{scope_.card};
    std::optional<Model> model_;
};
