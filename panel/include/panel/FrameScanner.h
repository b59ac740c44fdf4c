// Takes the frames out of a stream of bytes, and says what it had to drop.
//
// 0xF7 begins a frame anew, 0x7F ends it, 0x7D takes the byte behind it as it is; what lies outside of frames
// means nothing. A content longer than the longest is dropped up to the next start.
#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "panel/Frame.h"

namespace tvk::panel {

struct Fault {
    std::string about;
    std::string bytes;  // what was dropped, without escapes; of a stray run the first 40
};

using Received = std::variant<Frame, Fault>;

class FrameScanner {
public:
    // Bytes as they come, however they are cut; what they complete, in order.
    std::vector<Received> take(std::string_view bytes);

private:
    enum class Place { Outside, Inside, Escaped, Overlong };

    void takeInside(char c, std::vector<Received>& found);
    void keep(char c, std::vector<Received>& found);
    void begin(std::vector<Received>& found);
    void end(std::vector<Received>& found);

    Place place_ = Place::Outside;
    std::string content_;
    std::string stray_;
    std::size_t strayCount_ = 0;
};

}  // namespace tvk::panel
