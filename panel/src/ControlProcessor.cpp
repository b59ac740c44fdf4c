#include "panel/ControlProcessor.h"

namespace tvk::panel {

std::vector<Frame> ControlProcessor::answer(const Frame& request) const {
    const bool asksForProduct = request.name == "GET_PRODUCT_ID";
    std::vector<Frame> frames;
    if (asksForProduct || request.name == "GET_CURRENT_VALUES")
        for (const auto& [name, frame] : pins_)
            if ((name == kProductPin) == asksForProduct) frames.push_back(frame);
    return frames;
}

}  // namespace tvk::panel
