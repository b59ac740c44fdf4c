#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "core/System/DspArchive.h"
#include "core/units/utility/DUBS_Passthru.h"
#include "core/units/utility/DU_Fanout2.h"
#include "core/units/utility/DU_PassthruMono.h"
#include "core/units/utility/DU_PassthruStereo.h"
#include "core/units/utility/DU_StereoAdder.h"
#include "core/units/utility/DU_StereoMixer.h"
#include "core/units/utility/DU_Sum2.h"
#include "support/LogRecorder.h"

namespace {

using testing::ElementsAre;

constexpr int kBlock = 35;  // no multiple of a vector's width
constexpr float kRate = 44100.0f;

// Input c, sample n.
float signal(int c, int n) {
    return std::sin(0.1f * static_cast<float>(n + 1) * static_cast<float>(c + 1));
}

// A unit with all inputs connected, off any alignment.
class Wired {
public:
    explicit Wired(DspUnit& unit) : unit_(unit), inputs_(static_cast<std::size_t>(unit.getNumInputs())) {
        for (int c = 0; c < unit.getNumInputs(); ++c) {
            auto& input = inputs_[static_cast<std::size_t>(c)];
            input.resize(kBlock + 1);
            for (int n = 0; n < kBlock; ++n)
                input[static_cast<std::size_t>(n) + 1] = signal(c, n);
            unit.connectInput(c, input.data() + 1, c + 1);
        }
    }
    template <typename Expected>
    void expect(int output, Expected expected) {
        for (int n = 0; n < kBlock; ++n)
            ASSERT_EQ(unit_.getOutputAddr(output)[n], expected(n)) << n;
    }

private:
    DspUnit& unit_;
    std::vector<std::vector<float>> inputs_;
};

template <typename Unit>
void expectChannels(int inputs, int outputs) {
    Unit unit("DU_Test", kBlock);
    EXPECT_EQ(unit.getNumInputs(), inputs);
    EXPECT_EQ(unit.getNumOutputs(), outputs);
    EXPECT_EQ(unit.getTarvekId(), "DU_Test");
    EXPECT_TRUE(unit.getParameters().empty());
    DspArchive archive;
    unit.init(archive);
    unit.getArchive(archive);
    unit.reset();
    EXPECT_TRUE(archive.isEmpty());
}

TEST(UtilityUnits, HaveTheirChannelsAndNoParameters) {
    expectChannels<DU_PassthruMono>(1, 1);
    expectChannels<DU_PassthruStereo>(2, 2);
    expectChannels<DU_Sum2>(2, 1);
    expectChannels<DU_Fanout2>(1, 2);
    expectChannels<DU_StereoAdder>(4, 2);
}

TEST(UtilityUnits, CopyAndAddToTheBit) {
    const auto in = [](int c) { return [c](int n) { return signal(c, n); }; };
    const auto sum = [](int a, int b) { return [=](int n) { return signal(a, n) + signal(b, n); }; };

    DU_PassthruMono mono("PassthruMono", kBlock);
    Wired wiredMono(mono);
    mono.process();
    wiredMono.expect(0, in(0));

    DU_PassthruStereo stereo("PassthruStereo", kBlock);
    Wired wiredStereo(stereo);
    stereo.process();
    wiredStereo.expect(0, in(0));
    wiredStereo.expect(1, in(1));

    DU_Sum2 sum2("Sum2", kBlock);
    Wired wiredSum(sum2);
    sum2.process();
    wiredSum.expect(0, sum(0, 1));

    DU_Fanout2 fanout("Fanout2", kBlock);
    Wired wiredFanout(fanout);
    fanout.process();
    wiredFanout.expect(0, in(0));
    wiredFanout.expect(1, in(0));

    DU_StereoAdder adder("DU_StereoAdder", kBlock);
    Wired wiredAdder(adder);
    adder.process();
    wiredAdder.expect(0, sum(0, 2));
    wiredAdder.expect(1, sum(1, 3));
}

TEST(DU_StereoMixer, CrossfadesItsTwoPairsBySmoothedMix) {
    DU_StereoMixer mixer("DU_StereoMixer", kBlock, kRate);
    Wired wired(mixer);
    auto& mix = dynamic_cast<Parameter<float>&>(*mixer.getParameter("mix"));
    EXPECT_EQ(mix.get(), 0.5f);
    const double p = std::exp(-1.0 / (0.01 * kRate));
    double g = 0.0;
    for (int block = 0; block < 200; ++block) {
        if (block == 100) mix.set(1.0f);
        const double target = block < 100 ? 0.5 : 1.0;
        mixer.process();
        for (int n = 0; n < kBlock; ++n) {
            g = target * (1.0 - p) + p * g;
            for (int c : {0, 1}) {
                const double expected = (1.0 - g) * signal(c + 2, n) + g * signal(c, n);
                ASSERT_NEAR(mixer.getOutputAddr(c)[n], expected, 5e-5) << block << " " << n;
            }
        }
    }
}

TEST(DU_StereoMixer, InitIsAtOnce) {
    DU_StereoMixer mixer("DU_StereoMixer", kBlock, kRate);
    Wired wired(mixer);
    LogRecorder log;
    DspArchive archive(R"({"mix":1})"), out;
    mixer.init(archive);
    EXPECT_THAT(log.startingWith("DspUnitAmp"),
                ElementsAre("DspUnitAmp: Mix init, 1.000000", "DspUnitAmp: Mix set, 1.000000"));
    mixer.process();
    for (int n = 0; n < kBlock; ++n)
        EXPECT_NEAR(mixer.getOutputAddr(1)[n], signal(1, n), 1e-5f);
    mixer.getArchive(out);
    EXPECT_EQ(out.toString(), R"({"mix":1.0})");
}

TEST(DU_StereoMixer, LatchesAClipOfTheFirstSample) {
    DU_StereoMixer mixer("DU_StereoMixer", kBlock, kRate);
    std::vector<float> loud(kBlock, 0.0f);
    loud[1] = 4.0f;
    mixer.connectInput(2, loud.data(), 1);
    mixer.process();
    EXPECT_FALSE(mixer.readAndClearClipFlag());
    loud[0] = 4.0f;
    mixer.process();
    EXPECT_TRUE(mixer.readAndClearClipFlag());
    EXPECT_FALSE(mixer.readAndClearClipFlag());
}

TEST(DUBS_Passthru, PassesItsInputsInPlaceAndApart) {
    DUBS_Passthru unit("DUBS_Passthru", kBlock, kRate);
    Wired wired(unit);
    for (int block = 0; block < 3; ++block)
        unit.process();
    std::vector<float> in(kBlock, 0.5f), left(kBlock), right(kBlock);
    unit.process(in.data(), in.data(), left.data(), right.data());
    EXPECT_EQ(left, in);
    EXPECT_EQ(right, in);
    unit.process(in.data(), left.data(), in.data(), left.data());
    EXPECT_EQ(left, in);
}

TEST(DUBS_Passthru, IsTransparentOnceItsMutesAreOpenBypassedOrNot) {
    for (bool bypassed : {false, true}) {
        DUBS_Passthru unit("DUBS_Passthru", kBlock, kRate);
        DspArchive archive(bypassed ? R"({"bypass":true,"bypassType":"Post"})"
                                    : R"({"bypass":false,"bypassType":"Post"})");
        unit.init(archive);
        std::vector<float> in(kBlock);
        for (int block = 0; block < 60; ++block) {
            std::fill(in.begin(), in.end(), 0.5f);
            unit.connectInput(0, in.data(), 1);
            unit.process();
        }
        for (int n = 0; n < kBlock; ++n)
            EXPECT_NEAR(unit.getOutputAddr(0)[n], 0.5f, 1e-5f);
    }
}

}  // namespace
