#include "panel/PanelCheck.h"

#include <algorithm>
#include <utility>

#include "panel/Pins.h"
#include "utility/EscapedText.h"

namespace tvk::panel {

namespace {

// What a panel may still have to say behind an answer.
constexpr std::chrono::milliseconds kAfterthought{100};

const Frame& productRequest() {
    static const Frame frame = intFrame("GET_PRODUCT_ID", 1);
    return frame;
}

const Frame& valuesRequest() {
    static const Frame frame = intFrame("GET_CURRENT_VALUES", 1);
    return frame;
}

std::string everyByteEscaped(const std::string& content) {
    std::string bytes(1, kStart);
    for (const char c : content)
        bytes += {kEscape, c};
    return bytes + kEnd;
}

std::string withWrongCrc(std::string content) {
    content.back() = static_cast<char>(content.back() ^ 0x01);
    return enclose(content);
}

}  // namespace

int PanelCheck::run() {
    checkStart();
    checkEachRequest();
    checkFaultyBytes();
    const auto count = static_cast<int>(findings_.size());
    out_ << (isStopped_ ? "stopped early: " : "done: ") << frames_ << " frames, " << count
         << (count == 1 ? " finding" : " findings") << std::endl;
    return count;
}

void PanelCheck::checkStart() {
    panel_.send(intFrame("BOOTING", 0));
    panel_.send(productRequest());
    panel_.send(valuesRequest());
    listenFor(patience_, [this] {
        const std::set<std::string> wanted = pinsOfProduct();
        return products_ > 0 && std::includes(seen_.begin(), seen_.end(), wanted.begin(), wanted.end());
    });
    if (products_ == 0) find(std::string("GET_PRODUCT_ID: no answer ") + kProductPin);
    for (const std::string& pin : pinsOfProduct())
        if (!seen_.contains(pin)) find("GET_CURRENT_VALUES: no " + pin + ", " + findPin(pin)->meaning);
}

void PanelCheck::checkEachRequest() {
    if (std::exchange(products_, 0) > 0) {
        panel_.send(productRequest());
        listenFor(patience_, [this] { return products_ > 0; });
        if (products_ == 0) find("GET_PRODUCT_ID: no answer when it is asked again");
    }
    const std::set<std::string> told = std::exchange(seen_, {});
    panel_.send(valuesRequest());
    await(told);
    for (const std::string& pin : told)
        if (!seen_.contains(pin)) find("GET_CURRENT_VALUES: no " + pin + " when it is asked again");
}

void PanelCheck::checkFaultyBytes() {
    if (product_ == -1) return;
    const std::string content = contentOf(productRequest());
    const std::string good = enclose(content);
    checkSurvives("a frame whose CRC is wrong", withWrongCrc(content));
    checkSurvives("a frame without its end", good.substr(0, good.size() - 1));
    checkSurvives("a frame without its start", good.substr(1));
    checkSurvives("bytes outside of frames", std::string("\x00\x12\x55\xff", 4));
    checkSurvives("an empty frame", {kStart, kEnd});
    checkSurvives("starts one after another", std::string(3, kStart));
    checkSurvives("ends without a start", std::string(3, kEnd));
    checkSurvives("a frame of 300 bytes", enclose(std::string(300, 'x')));
    checkSurvives("a request that nobody knows", enclose(contentOf(intFrame("GET_NOTHING", 1))));
    checkSurvives("a value that is too short",
                  enclose(contentOf({kInt32, "GET_PRODUCT_ID", std::string(2, '\1')})));

    products_ = 0;
    panel_.sendBytes(everyByteEscaped(content));
    listenFor(patience_, [this] { return products_ > 0; });
    if (products_ == 0) find("no answer to a request with every byte behind an escape");
}

void PanelCheck::checkSurvives(const std::string& about, const std::string& bytes) {
    products_ = 0;
    panel_.sendBytes(bytes);
    panel_.send(productRequest());
    listenFor(patience_, [this] { return products_ > 0; });
    listenFor(kAfterthought, [] { return false; });
    if (products_ == 0) find("no answer to a good request behind " + about);
    if (products_ > 1) find("an answer too many behind " + about);
}

void PanelCheck::judge(const Received& received) {
    if (const Fault* const fault = std::get_if<Fault>(&received)) {
        find("faulty: " + fault->about + ": " + hexText(fault->bytes));
        return;
    }
    const Frame& frame = std::get<Frame>(received);
    ++frames_;
    const Pin* const pin = findPin(frame.name);
    if (!pin) {
        find("unknown: the amplifier has no variable \"" + escaped(frame.name) + "\"");
        return;
    }
    const std::string fault = faultOfPin(*pin, frame);
    if (!fault.empty()) find(frame.name + " " + fault);
    if (frame.type != pin->type) return;
    if (frame.name != kProductPin) {
        seen_.insert(frame.name);
        return;
    }
    const auto product = static_cast<int>(*numberOf(frame));
    if (product_ != -1 && product != product_)
        find(std::string(kProductPin) + " changes from " + std::to_string(product_) + " to " +
             std::to_string(product));
    product_ = product;
    ++products_;
}

void PanelCheck::await(const std::set<std::string>& pins) {
    listenFor(patience_, [&] { return std::includes(seen_.begin(), seen_.end(), pins.begin(), pins.end()); });
}

void PanelCheck::listenFor(std::chrono::nanoseconds duration, const std::function<bool()>& isEnough) {
    if (isStopped_) return;
    isStopped_ = !panel_.listen(panel_.elapsed() + duration, [&](const Received& received) {
        judge(received);
        return !isEnough();
    });
}

// A panel that has not said which amplifier it belongs to is judged by the one with all controls.
std::set<std::string> PanelCheck::pinsOfProduct() const {
    std::set<std::string> names;
    for (const Pin& pin : pins())
        if (pin.name != std::string(kProductPin) && (pin.isOnEveryProduct || product_ <= 0))
            names.insert(pin.name);
    return names;
}

void PanelCheck::find(const std::string& finding) {
    if (!isStopped_ && findings_.insert(finding).second) out_ << finding << std::endl;
}

}  // namespace tvk::panel
