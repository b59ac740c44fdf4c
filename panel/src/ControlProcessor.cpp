#include "panel/ControlProcessor.h"

namespace tvk::panel {

std::vector<Frame> ControlProcessor::answer(const Frame& request) const {
    if (request.name == "GET_PRODUCT_ID") return {pins_.at(kProductPin)};
    std::vector<Frame> frames;
    if (request.name == "GET_CURRENT_VALUES")
        for (const auto& [name, frame] : pins_)
            if (name != kProductPin) frames.push_back(frame);
    return frames;
}

}  // namespace tvk::panel
