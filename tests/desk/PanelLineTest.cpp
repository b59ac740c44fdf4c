// The line as the amplifier has it, by the amplifier's own coder; the simulated panel has another.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <unistd.h>
#include <vector>

#include "core/comm/FrameBuilder.h"
#include "core/comm/FrameReceiver.h"
#include "core/comm/VariableFrame.h"
#include "desk/PanelLine.h"
#include "panel/Pins.h"

using tvk::desk::PanelLine;
namespace panel = tvk::panel;
namespace comm = tvk::comm;

namespace {

class Port {
public:
    explicit Port(const std::string& path)
        : descriptor_(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        if (descriptor_ == -1) throw std::runtime_error(path + " cannot be opened");
    }
    ~Port() { close(descriptor_); }
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    void write(std::span<const std::uint8_t> bytes) const {
        ASSERT_EQ(::write(descriptor_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    std::vector<std::uint8_t> read() const {
        std::vector<std::uint8_t> bytes(4096);
        const ssize_t count = ::read(descriptor_, bytes.data(), bytes.size());
        bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return bytes;
    }

private:
    const int descriptor_;
};

class PanelLineTest : public testing::Test {
protected:
    using Words = std::multimap<std::string, std::uint32_t>;

    void begin(std::optional<panel::ControlProcessor> simulated) {
        line_.emplace(std::move(simulated));
        amplifier_.emplace(line_->amplifierPath());
        program_.emplace(line_->programPath());
    }
    void beginWithPanel(std::int32_t product) {
        begin(panel::ControlProcessor(panel::demonstrationPins(product)));
    }

    std::vector<std::uint8_t> request(const std::string& name) {
        const auto bytes = builder_.build(name, 0);
        amplifier_->write(bytes);
        return {bytes.begin(), bytes.end()};
    }

    // Names and 32-bit values of all frames that have come to the amplifier.
    Words heard() {
        Words words;
        for (const std::uint8_t byte : amplifier_->read())
            if (receiver_.receive(byte)) {
                const std::optional<comm::VariableFrame> frame = comm::decodeFrame(receiver_.content());
                EXPECT_TRUE(frame);
                if (frame) words.emplace(frame->name, comm::readLittleEndian(frame->value));
            }
        return words;
    }
    Words answerTo(const std::string& name) {
        request(name);
        line_->exchange();
        return heard();
    }

    std::optional<PanelLine> line_;
    std::optional<Port> amplifier_;
    std::optional<Port> program_;

private:
    comm::FrameBuilder builder_;
    comm::FrameReceiver receiver_;
};

constexpr std::uint32_t kOne = 0x3F800000;  // 1.0 as a 32-bit float

}  // namespace

TEST_F(PanelLineTest, ThePanelSaysWhichAmplifierItIs) {
    beginWithPanel(3);
    EXPECT_EQ(answerTo("GET_PRODUCT_ID"), (Words{{"PF0_AND_PF1", 3}}));
}

TEST_F(PanelLineTest, ThePanelSaysWhereItsSixteenControlsStand) {
    beginWithPanel(0);
    const Words words = answerTo("GET_CURRENT_VALUES");
    EXPECT_EQ(words.size(), 16u);
    EXPECT_EQ(words.count("PF0_AND_PF1"), 0u);
    ASSERT_EQ(words.count("PA_2"), 1u);
    EXPECT_EQ(words.find("PA_2")->second, 0x3F000000u);  // 0.5
}

TEST_F(PanelLineTest, AMoveIsReportedOnceAndStandsFromThenOn) {
    beginWithPanel(0);
    line_->move(panel::floatFrame("PA_4", 1.0f));
    line_->exchange();
    EXPECT_EQ(heard(), (Words{{"PA_4", kOne}}));
    EXPECT_EQ(answerTo("GET_CURRENT_VALUES").find("PA_4")->second, kOne);
}

TEST_F(PanelLineTest, TellsWhetherAnythingWasCarried) {
    beginWithPanel(0);
    EXPECT_FALSE(line_->exchange());
    request("GET_PRODUCT_ID");
    EXPECT_TRUE(line_->exchange());
    EXPECT_FALSE(line_->exchange());
    program_->write(std::vector<std::uint8_t>{0x11});
    EXPECT_TRUE(line_->exchange());
    EXPECT_FALSE(line_->exchange());
}

TEST_F(PanelLineTest, APanelWithoutStrapsKeepsSilentAboutTheAmplifier) {
    panel::PinFrames pins = panel::demonstrationPins(0);
    pins.erase(panel::kProductPin);
    begin(panel::ControlProcessor(pins));
    EXPECT_TRUE(answerTo("GET_PRODUCT_ID").empty());
    EXPECT_EQ(answerTo("GET_CURRENT_VALUES").size(), 16u);
}

TEST_F(PanelLineTest, AnotherProgramHearsAllThatTheAmplifierSaysAlsoBeforeItReads) {
    beginWithPanel(0);
    std::vector<std::uint8_t> said = request("BOOTING");
    line_->exchange();
    const std::vector<std::uint8_t> more = request("GET_PRODUCT_ID");
    line_->exchange();
    said.insert(said.end(), more.begin(), more.end());
    EXPECT_EQ(program_->read(), said);
}

TEST_F(PanelLineTest, AnotherProgramsBytesReachTheAmplifierAsTheyAre) {
    beginWithPanel(0);
    const std::vector<std::uint8_t> bytes = {0xF7, 0x00, 0x0D, 0x0A, 0x11, 0x13, 0x7F, 0xFF, 0x03, 0x04};
    program_->write(bytes);
    line_->exchange();
    EXPECT_EQ(amplifier_->read(), bytes);
}

TEST_F(PanelLineTest, WithoutAPanelNobodyAnswersAndNothingMoves) {
    begin(std::nullopt);
    EXPECT_TRUE(answerTo("GET_PRODUCT_ID").empty());
    line_->move(panel::floatFrame("PA_4", 1.0f));
    line_->exchange();
    EXPECT_TRUE(heard().empty());
}
