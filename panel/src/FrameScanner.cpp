#include "panel/FrameScanner.h"

#include <utility>

namespace tvk::panel {

namespace {

constexpr std::size_t kShownStray = 40;

}  // namespace

std::vector<Received> FrameScanner::take(std::string_view bytes) {
    std::vector<Received> found;
    for (const char c : bytes) {
        if (place_ == Place::Escaped)
            keep(c, found);
        else if (c == kStart)
            begin(found);
        else if (place_ == Place::Inside)
            takeInside(c, found);
        else if (place_ == Place::Outside && c != kEnd) {
            // An end where no frame is harms nothing: it makes sure that none is.
            if (stray_.size() < kShownStray) stray_.push_back(c);
            ++strayCount_;
        } else if (c == kEnd) {
            place_ = Place::Outside;
        }
    }
    return found;
}

void FrameScanner::takeInside(char c, std::vector<Received>& found) {
    if (c == kEnd)
        end(found);
    else if (c == kEscape)
        place_ = Place::Escaped;
    else
        keep(c, found);
}

void FrameScanner::keep(char c, std::vector<Received>& found) {
    place_ = Place::Inside;
    if (content_.size() < kLongestFrame) {
        content_.push_back(c);
        return;
    }
    place_ = Place::Overlong;
    found.push_back(Fault{"more than " + std::to_string(kLongestFrame) + " bytes of content", content_});
}

void FrameScanner::begin(std::vector<Received>& found) {
    if (strayCount_ > 0)
        found.push_back(Fault{"bytes outside of frames (" + std::to_string(strayCount_) + ")",
                              std::exchange(stray_, std::string())});
    strayCount_ = 0;
    if (place_ == Place::Inside && !content_.empty())
        found.push_back(Fault{"a frame without its end", content_});
    content_.clear();
    place_ = Place::Inside;
}

void FrameScanner::end(std::vector<Received>& found) {
    place_ = Place::Outside;
    Parsed parsed = parse(content_);
    if (parsed.frame)
        found.push_back(std::move(*parsed.frame));
    else
        found.push_back(Fault{std::move(parsed.fault), content_});
}

}  // namespace tvk::panel
