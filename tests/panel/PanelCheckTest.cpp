// The check against panels that are good, and against panels with one fault each.
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "LineFixture.h"
#include "panel/ControlProcessor.h"
#include "panel/FrameScanner.h"

using namespace tvk::panel;

namespace {

using Lines = std::vector<std::string>;
using Frames = std::vector<Frame>;

class PanelCheckTest : public LineTest {
protected:
    // A panel that answers as told by change, which sees each request and the right answer to it.
    int check(const std::function<void(const Frame& request, Frames& answer)>& change, int product = 0) {
        processor.emplace(demonstrationPins(product));
        clock.peer = [this, change] {
            for (const Received& received : scanner.take(pty.received())) {
                const Frame* const request = std::get_if<Frame>(&received);
                if (!request) continue;
                Frames answer = processor->answer(*request);
                change(*request, answer);
                for (const Frame& frame : answer)
                    pty.send(*encode(frame));
            }
        };
        const int status = runOnLine({"check"});
        findings.clear();
        for (std::size_t begin = 0, end = 0; (end = out.find('\n', begin)) != std::string::npos;
             begin = end + 1)
            findings.push_back(out.substr(begin, end - begin));
        summary = findings.back();
        findings.pop_back();
        return status;
    }
    static void keepRight(const Frame&, Frames&) {}

    FrameScanner scanner;
    std::optional<ControlProcessor> processor;
    Lines findings;
    std::string summary;
};

TEST_F(PanelCheckTest, AGoodPanelPassesWithoutAFinding) {
    EXPECT_EQ(check(keepRight), 0);
    EXPECT_EQ(findings, Lines{});
    // 17 at the start, 17 when asked again, one for each of ten faults and one for the escaped request.
    EXPECT_EQ(summary, "done: 45 frames, 0 findings");
}

TEST_F(PanelCheckTest, EachProductPasses) {
    for (int product = 1; product <= 3; ++product)
        EXPECT_EQ(check(keepRight, product), 0);
}

TEST_F(PanelCheckTest, APanelOfAnotherProductNeedsNoMiddleAndNoBright) {
    const auto without = [](const Frame&, Frames& answer) {
        std::erase_if(answer, [](const Frame& frame) {
            return frame.name == "PA_2" || frame.name == "PA_6" || frame.name == "PF_4" ||
                   frame.name == "PF_5";
        });
    };
    EXPECT_EQ(check(without, 2), 0);
    EXPECT_EQ(check(without, 0), 1);
    EXPECT_EQ(findings.size(), 4u);
    EXPECT_EQ(findings[0], "GET_CURRENT_VALUES: no PA_2, vibrato channel, middle (product 0 only)");
}

TEST_F(PanelCheckTest, ASilentPanelIsFoundInEveryWord) {
    EXPECT_EQ(check([](const Frame&, Frames& answer) { answer.clear(); }), 1);
    EXPECT_EQ(findings.size(), 17u);
    EXPECT_EQ(findings[0], "GET_PRODUCT_ID: no answer PF0_AND_PF1");
    EXPECT_EQ(summary, "done: 0 frames, 17 findings");
}

TEST_F(PanelCheckTest, AMissingControlIsFound) {
    EXPECT_EQ(check([](const Frame&, Frames& answer) {
                  std::erase_if(answer, [](const Frame& frame) { return frame.name == "PC_1"; });
              }),
              1);
    EXPECT_EQ(findings, Lines{"GET_CURRENT_VALUES: no PC_1, vibrato speed"});
}

TEST_F(PanelCheckTest, AWrongTypeIsFound) {
    EXPECT_EQ(check([](const Frame&, Frames& answer) {
                  for (Frame& frame : answer)
                      if (frame.name == "PF_4") frame = floatFrame("PF_4", 1.0f);
              }),
              1);
    EXPECT_EQ(findings,
              (Lines{"PF_4 came as type 0 (float); it is type 6 (int32), and the amplifier drops any other",
                     "GET_CURRENT_VALUES: no PF_4, vibrato channel, bright (product 0 only)"}));
}

TEST_F(PanelCheckTest, AValueOutOfItsRangeIsFoundOnce) {
    EXPECT_EQ(check([](const Frame&, Frames& answer) {
                  for (Frame& frame : answer)
                      if (frame.name == "PA_4") frame = floatFrame("PA_4", 3.3f);
              }),
              1);
    EXPECT_EQ(findings, Lines{"PA_4 is 3.3; it goes from 0 to 1"});
}

TEST_F(PanelCheckTest, AnUnknownVariableIsFound) {
    EXPECT_EQ(check([](const Frame& request, Frames& answer) {
                  if (request.name == "BOOTING") answer.push_back(intFrame("READY", 1));
              }),
              1);
    EXPECT_EQ(findings, Lines{"unknown: the amplifier has no variable \"READY\""});
}

TEST_F(PanelCheckTest, AProductThatChangesIsFound) {
    EXPECT_EQ(check([count = 0](const Frame& request, Frames& answer) mutable {
                  if (request.name == "GET_PRODUCT_ID" && count++ > 0) answer[0] = intFrame("PF0_AND_PF1", 2);
              }),
              1);
    EXPECT_EQ(findings, Lines{"PF0_AND_PF1 changes from 0 to 2"});
}

TEST_F(PanelCheckTest, AnInvalidProductIsFound) {
    EXPECT_EQ(check(keepRight, 9), 1);
    EXPECT_EQ(findings, Lines{"PF0_AND_PF1 is 9; it goes from 0 to 3"});
}

TEST_F(PanelCheckTest, AnAnswerThatComesOnlyOnceIsFound) {
    EXPECT_EQ(check([products = 0, values = 0](const Frame& request, Frames& answer) mutable {
                  if (request.name == "GET_PRODUCT_ID" && products++ == 1) answer.clear();
                  if (request.name == "GET_CURRENT_VALUES" && values++ == 1) answer.clear();
              }),
              1);
    ASSERT_EQ(findings.size(), 17u);
    EXPECT_EQ(findings[0], "GET_PRODUCT_ID: no answer when it is asked again");
    EXPECT_EQ(findings[16], "GET_CURRENT_VALUES: no PF_5 when it is asked again");
}

TEST_F(PanelCheckTest, AnAnswerToABrokenRequestIsFound) {
    processor.emplace(demonstrationPins(0));
    clock.peer = [this] {
        for (const Received& received : scanner.take(pty.received())) {
            const Frame* const request = std::get_if<Frame>(&received);
            const bool hasWrongCrc = !request && std::get<Fault>(received).about.rfind("CRC", 0) == 0;
            if (hasWrongCrc) pty.send(*encode(intFrame("PF0_AND_PF1", 0)));
            if (!request) continue;
            for (const Frame& frame : processor->answer(*request))
                pty.send(*encode(frame));
        }
    };
    EXPECT_EQ(runOnLine({"check"}), 1);
    EXPECT_EQ(out.substr(0, out.find('\n')), "an answer too many behind a frame whose CRC is wrong");
}

TEST_F(PanelCheckTest, APanelThatDoesNotUnescapeIsFound) {
    // Takes a request by its text alone.
    processor.emplace(demonstrationPins(0));
    std::string heard;
    clock.peer = [&] {
        heard += pty.received();
        for (std::size_t end = 0; (end = heard.find('\x7F')) != std::string::npos; heard.erase(0, end + 1)) {
            const std::string text = heard.substr(0, end);
            for (const char* const name : {"GET_PRODUCT_ID", "GET_CURRENT_VALUES"})
                if (text.find(std::string(name) + std::string("\0\1\0\0\0", 5)) != std::string::npos)
                    for (const Frame& frame : processor->answer(intFrame(name, 1)))
                        pty.send(*encode(frame));
        }
    };
    EXPECT_EQ(runOnLine({"check"}), 1);
    EXPECT_NE(out.find("no answer to a request with every byte behind an escape\n"), std::string::npos);
    EXPECT_NE(out.find("an answer too many behind a frame whose CRC is wrong\n"), std::string::npos);
}

TEST_F(PanelCheckTest, NoiseOnTheLineIsFound) {
    EXPECT_EQ(check([&](const Frame& request, Frames&) {
                  if (request.name == "BOOTING") pty.send(std::string("\xAA\x55"));
              }),
              1);
    EXPECT_EQ(findings, Lines{"faulty: bytes outside of frames (2): aa 55"});
}

TEST_F(PanelCheckTest, ThePatienceIsThatOfTheOption) {
    EXPECT_EQ(runOnLine({"check", "--patience", "0.25"}), 1);
    // The start, and the values asked again; a silent panel is asked nothing more.
    EXPECT_NEAR(seconds(), 0.5, 0.01);
}

TEST_F(PanelCheckTest, APanelThatIsPulledIsTroubleWithTheLine) {
    clock.peer = [&] { pty.hangUp(); };
    EXPECT_EQ(runOnLine({"check"}), 3);
    EXPECT_EQ(err, "tarvek-panel: " + pty.path() + ": was hung up\n");
}

}  // namespace
