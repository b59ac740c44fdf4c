#include "panel/Verbs.h"

#include <algorithm>

#include "panel/ControlProcessor.h"
#include "panel/Conversation.h"
#include "utility/EscapedText.h"
#include "utility/Exception.h"

namespace tvk::panel {

namespace {

using std::chrono::nanoseconds;

constexpr nanoseconds kForEver = nanoseconds::max();

std::string secondsText(nanoseconds time) {
    return formatText("%.3f", std::chrono::duration<double>(time).count());
}

std::string textOf(const Frame& frame) {
    return escaped(frame.name) + " " + valueText(frame);
}

// Whether a script can hold it.
bool isMove(const Frame& frame) {
    const Pin* const pin = findPin(frame.name);
    if (!pin || pin->type != frame.type) return false;
    return frame.type != kFloat || faultOfPin(*pin, frame).empty();
}

std::string watchedText(const std::string& time, const Received& received) {
    if (const Fault* const fault = std::get_if<Fault>(&received))
        return "# " + time + " dropped: " + fault->about + ": " + hexText(fault->bytes);
    const Frame& frame = std::get<Frame>(received);
    if (isMove(frame)) return time + " " + textOf(frame);
    return "# " + time + " " + textOf(frame) + " (" + typeName(frame.type) + ")";
}

// The moves of a script that are due, one after the other.
class Player {
public:
    Player(const Script& script, Conversation& line, std::ostream& out)
        : script_(script), line_(line), out_(out) {}

    bool isAtEnd() const { return next_ == script_.moves.size(); }
    nanoseconds nextTime() const { return start_ + script_.moves[next_].at; }

    void begin() { start_ = line_.elapsed(); }

    const Frame& play() {
        const Frame& frame = script_.moves[next_++].frame;
        line_.send(frame);
        out_ << secondsText(line_.elapsed()) << " " << textOf(frame) << std::endl;
        return frame;
    }

private:
    const Script& script_;
    Conversation& line_;
    std::ostream& out_;
    std::size_t next_ = 0;
    nanoseconds start_{0};
};

}  // namespace

void setPins(SerialLine& line, const std::vector<Frame>& frames) {
    Conversation conversation(line);
    for (const Frame& frame : frames)
        conversation.send(frame);
    line.drain();
}

void watch(SerialLine& line, Duration duration, std::ostream& out) {
    Conversation conversation(line);
    conversation.listen(duration.value_or(kForEver), [&](const Received& received) {
        out << watchedText(secondsText(conversation.elapsed()), received) << std::endl;
        return true;
    });
}

void replay(SerialLine& line, const Script& script, std::ostream& out) {
    Conversation conversation(line);
    Player player(script, conversation, out);
    while (!player.isAtEnd() && conversation.listen(player.nextTime(), [](const Received&) { return true; }))
        player.play();
    line.drain();
}

void serve(SerialLine& line, const PinFrames& pins, const Script& script, Duration duration,
           std::ostream& out) {
    Conversation conversation(line);
    ControlProcessor processor(pins);
    Player player(script, conversation, out);
    bool isPlaying = false;
    const nanoseconds end = duration.value_or(kForEver);
    const auto hear = [&](const Received& received) {
        out << watchedText(secondsText(conversation.elapsed()), received);
        const Frame* const request = std::get_if<Frame>(&received);
        const std::vector<Frame> answers = request ? processor.answer(*request) : std::vector<Frame>();
        for (const Frame& answer : answers)
            conversation.send(answer);
        if (!answers.empty())
            out << ": answered by " << answers.size() << (answers.size() == 1 ? " frame" : " frames");
        out << std::endl;
        if (isPlaying || answers.empty() || request->name != "GET_CURRENT_VALUES") return true;
        isPlaying = true;
        player.begin();
        return false;
    };
    while (conversation.elapsed() < end) {
        const bool hasMove = isPlaying && !player.isAtEnd();
        const nanoseconds until = hasMove ? std::min(player.nextTime(), end) : end;
        if (!conversation.listen(until, hear)) return;
        if (hasMove && conversation.elapsed() >= player.nextTime()) processor.move(player.play());
    }
}

}  // namespace tvk::panel
