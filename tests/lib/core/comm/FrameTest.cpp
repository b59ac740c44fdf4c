#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "core/comm/Crc16Xmodem.h"
#include "core/comm/FrameBuilder.h"
#include "core/comm/FrameReceiver.h"
#include "core/comm/VariableFrame.h"
#include "support/PanelVectors.h"

using namespace tvk::comm;

namespace {

using Bytes = PanelVectors::Bytes;
using Variable = PanelVectors::Variable;

Bytes build(const Variable& variable) {
    FrameBuilder builder;
    const auto frame = builder.build(static_cast<VariableType>(variable.type), variable.name, variable.value);
    return {frame.begin(), frame.end()};
}

std::vector<Variable> accepted(FrameReceiver& receiver, const Bytes& stream) {
    std::vector<Variable> variables;
    for (const std::uint8_t byte : stream) {
        if (!receiver.receive(byte)) continue;
        if (const auto frame = decodeFrame(receiver.content()))
            variables.push_back({static_cast<int>(frame->type), std::string(frame->name),
                                 Bytes(frame->value.begin(), frame->value.end())});
    }
    return variables;
}

TEST(Crc16XmodemTest, OfTheNineDigitsIsThePublishedCheckValue) {
    const std::string digits = "123456789";
    EXPECT_EQ(crc16Xmodem(Bytes(digits.begin(), digits.end())), 0x31C3);
}

TEST(Crc16XmodemTest, EqualsTheOtherImplementation) {
    ASSERT_FALSE(PanelVectors::all().checked.empty());
    for (const auto& [bytes, crc] : PanelVectors::all().checked)
        EXPECT_EQ(crc16Xmodem(bytes), crc);
}

TEST(FrameBuilderTest, MakesTheBytesOfEveryVector) {
    ASSERT_GT(PanelVectors::all().frames.size(), 80u);
    for (const PanelVectors::Frame& frame : PanelVectors::all().frames)
        EXPECT_EQ(build(frame.variable), frame.bytes) << frame.variable;
}

TEST(FrameBuilderTest, MakesNoFrameThatDoesNotFitOrHasNoGoodName) {
    ASSERT_FALSE(PanelVectors::all().refused.empty());
    for (const Variable& variable : PanelVectors::all().refused)
        EXPECT_TRUE(build(variable).empty()) << variable;
}

TEST(FrameBuilderTest, AFrameAfterARefusedOneIsWhole) {
    FrameBuilder builder;
    builder.build(VariableType::String, "s", Bytes(61, kFrameEscape));
    const auto frame = builder.build("GET_PRODUCT_ID", 1);
    const std::string text(frame.begin(), frame.end());
    EXPECT_EQ(text.substr(0, 18), std::string("\xF7\x06\0GET_PRODUCT_ID\0", 18));
    EXPECT_EQ(frame.back(), kFrameEnd);
    EXPECT_EQ(frame.size(), 1u + 2 + 15 + 4 + 2 + 1);
}

TEST(FrameReceiverTest, TakesInTheFrameOfEveryVector) {
    for (const PanelVectors::Frame& frame : PanelVectors::all().frames) {
        FrameReceiver receiver;
        EXPECT_EQ(accepted(receiver, frame.bytes), std::vector<Variable>{frame.variable});
    }
}

TEST(FrameReceiverTest, TakesOutOfEveryStreamWhatIsGood) {
    ASSERT_GT(PanelVectors::all().streams.size(), 60u);
    for (const PanelVectors::Stream& stream : PanelVectors::all().streams) {
        FrameReceiver receiver;
        EXPECT_EQ(accepted(receiver, stream.bytes), stream.accepted) << stream.about;
    }
}

TEST(FrameReceiverTest, AStreamLeavesNothingThatHarmsAFrameBehindAnEndMark) {
    const PanelVectors::Frame& good = PanelVectors::all().frames.front();
    for (const PanelVectors::Stream& stream : PanelVectors::all().streams) {
        FrameReceiver receiver;
        accepted(receiver, stream.bytes);
        receiver.receive(kFrameEnd);
        EXPECT_EQ(accepted(receiver, good.bytes), std::vector<Variable>{good.variable}) << stream.about;
    }
}

TEST(FrameReceiverTest, AStartMarkInsideAValueIsTakenLiterallyBehindTheEscape) {
    const Variable marks{6, "PF_4", {kFrameStart, kFrameEnd, kFrameEscape, kFrameStart}};
    const Bytes frame = build(marks);
    EXPECT_EQ(std::count(frame.begin(), frame.end(), kFrameEscape), 4 + 1);
    FrameReceiver receiver;
    EXPECT_EQ(accepted(receiver, frame), std::vector<Variable>{marks});
}

}  // namespace
