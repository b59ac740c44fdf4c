#include "RenderFixture.h"
#include "core/System/DspUnitInputVoltageMappingConfig.h"
#include "shared/DspUnitInfo/DefaultDspUnitDatabase.h"

namespace {

constexpr double kFade = 1e-4;  // what the fades of 1 ms leave after 0.2 s of settling

TEST_F(RenderTest, SampleNOutIsWhatTheGraphGaveAtSampleN) {
    const auto got = render({"--unit", "PassthruStereo"});
    const tvk::GuitarFile in(path("in.wav"), kRate);
    ASSERT_EQ(got.frames(), in.frames());
    for (size_t n = 0; n < in.frames(); ++n) {
        ASSERT_NEAR(got.input(0)[n], in.input(0)[n], kFade) << n;
        ASSERT_NEAR(got.input(1)[n], in.input(0)[n], kFade) << n;
    }
}

TEST_F(RenderTest, OfAStereoFileTheFirstChannelIsGraphInputZero) {
    writeWav("in.wav", {std::vector<float>(100, 0.25f), std::vector<float>(100, -0.5f)});
    const auto got = render({"--unit", "PassthruStereo"});
    EXPECT_NEAR(got.input(0)[50], 0.25, kFade);
    EXPECT_NEAR(got.input(1)[50], -0.5, kFade);
}

TEST_F(RenderTest, InputsPastTheSecondRepeatTheFirstTwo) {
    writeWav("in.wav", {std::vector<float>(100, 0.25f), std::vector<float>(100, -0.5f)});
    const auto got = render({"--unit", "DU_StereoAdder"});
    EXPECT_NEAR(got.input(0)[50], 2 * 0.25, kFade);
    EXPECT_NEAR(got.input(1)[50], 2 * -0.5, kFade);
}

TEST_F(RenderTest, ASingleOutputFeedsBoth) {
    writeWav("in.wav", {std::vector<float>(100, 0.25f), std::vector<float>(100, -0.5f)});
    const auto got = render({"--unit", "Sum2"});
    EXPECT_NEAR(got.input(0)[50], -0.25, kFade);
    EXPECT_EQ(got.input(1), got.input(0));
}

TEST_F(RenderTest, TheOutputHasExactlyTheFramesOfInputAndTail) {
    EXPECT_EQ(render({"--unit", "PassthruStereo", "--tail", "0.1"}).frames(), 10000u + 4410u);
    EXPECT_EQ(render({"--unit", "PassthruStereo", "--tail", "0.1", "--block", "1000"}).frames(), 14410u);
    EXPECT_EQ(report()["blocks"], 15);
    EXPECT_EQ(report()["block"], 1000);
}

TEST_F(RenderTest, TheTailIsSilence) {
    const auto got = render({"--unit", "PassthruStereo", "--tail", "0.1"});
    for (size_t n = 10000; n < got.frames(); ++n)
        ASSERT_EQ(got.input(0)[n], 0.0f) << n;
}

TEST_F(RenderTest, WithoutSettlingTheFadesAreHeard) {
    writeWav("in.wav", {std::vector<float>(1000, 1.0f)});
    const auto got = render({"--unit", "PassthruStereo", "--settle", "0"});
    // Host input and output each rise as one pole of 1 ms.
    const double pole = std::exp(-1.0 / 44.1);
    for (size_t n = 0; n < 200; ++n)
        ASSERT_NEAR(got.input(0)[n], std::pow(1.0 - std::pow(pole, static_cast<double>(n) + 1.0), 2.0), 1e-4);
}

TEST_F(RenderTest, BlockLengthDoesNotChangeWhatAStaticGraphGives) {
    const auto small = render({"--unit", "DUBS_Passthru", "--block", "16"});
    const auto large = render({"--unit", "DUBS_Passthru", "--block", "441"});
    for (size_t n = 0; n < small.frames(); ++n)
        ASSERT_NEAR(small.input(0)[n], large.input(0)[n], 1e-6);
}

// One mixer whose second pair is not wired: out = mix * in.
class MixerRenderTest : public RenderTest {
protected:
    MixerRenderTest() {
        writeWav("in.wav", {std::vector<float>(20000, 1.0f)});
        writeText(
            "mixer.json",
            R"({"nodeType":"preset","nodeId":"preset","version":"1.1","numInputs":2,"numOutputs":2,)"
            R"("info":{},"audioGraph":{"nodes":[)"
            R"({"nodeId":"first","nodeType":"dspUnit","TarvekId":"PassthruStereo","parameters":{}},)"
            R"({"nodeId":"m","nodeType":"dspUnit","TarvekId":"DU_StereoMixer","parameters":{"mix":0.5}}],)"
            R"("connections":[)"
            R"({"input":{"nodeId":"preset","index":0},"output":{"nodeId":"m","index":0}},)"
            R"({"input":{"nodeId":"m","index":0},"output":{"nodeId":"preset","index":0}}]}})");
    }
};

TEST_F(MixerRenderTest, ASetGoesThroughInit) {
    EXPECT_NEAR(render({"--preset", path("mixer.json")}).input(0)[0], 0.5, kFade);
    EXPECT_NEAR(render({"--preset", path("mixer.json"), "--set", "m.mix=0.25"}).input(0)[0], 0.25, kFade);
    EXPECT_NEAR(render({"--unit", "DU_StereoMixer", "--set", "mix=0.25"}).input(0)[0], 1.0, kFade)
        << "both pairs are fed alike, and the first node is meant where none is named";
}

TEST_F(MixerRenderTest, TheLastOfTwoSetsHolds) {
    const auto got = render({"--preset", path("mixer.json"), "--set", "m.mix=0.25", "--set", "m.mix=0.75"});
    EXPECT_NEAR(got.input(0)[0], 0.75, kFade);
}

TEST_F(MixerRenderTest, AChangeActsFromTheBlockThatHoldsItsTime) {
    const auto got =
        render({"--preset", path("mixer.json"), "--set", "m.mix=0.25", "--at", "0.25", "m.mix=0.75"});
    // 0.25 s is sample 11025, in the block of 32 that begins at 11008; the mix moves with 10 ms.
    const size_t start = 11008;
    EXPECT_NEAR(got.input(0)[start - 1], 0.25, kFade);
    const double pole = std::exp(-1.0 / 441.0);
    for (const size_t n : {0u, 1u, 31u, 32u, 441u, 2000u})
        EXPECT_NEAR(got.input(0)[start + n], 0.75 - 0.5 * std::pow(pole, static_cast<double>(n) + 1.0), 3e-4)
            << n;
}

TEST_F(MixerRenderTest, ChangesActInTheOrderOfTheirTimes) {
    const auto got =
        render({"--preset", path("mixer.json"), "--at", "0.3", "m.mix=0", "--at", "0", "m.mix=1"});
    EXPECT_NEAR(got.input(0)[13000], 1.0, 3e-4);
    EXPECT_NEAR(got.input(0)[19999], 0.0, 3e-4);
}

TEST_F(RenderTest, TheSameCommandGivesTheSameBytes) {
    const DefaultDspUnitDatabase database;
    for (const std::string& id : database.getIds()) {
        render({"--unit", id, "--tail", "0.05"});
        const std::string first = bytes("out.wav");
        render({"--unit", id, "--tail", "0.05"});
        EXPECT_TRUE(bytes("out.wav") == first) << id;
    }
}

TEST_F(RenderTest, TheReportGivesLevelsOfTheWrittenSamples) {
    writeWav("in.wav", {std::vector<float>(4000, 0.5f), std::vector<float>(4000, -2.0f)});
    render({"--unit", "PassthruStereo"});
    const auto got = report();
    EXPECT_EQ(got["rate"], kRate);
    EXPECT_EQ(got["block"], 32);
    EXPECT_EQ(got["blocks"], 125);
    EXPECT_NEAR(got["peak"][0], 0.5, kFade);
    EXPECT_NEAR(got["peak"][1], 2.0, 4 * kFade);
    EXPECT_NEAR(got["rms_dbfs"][0], 20.0 * std::log10(0.5), 0.01);
    EXPECT_NEAR(got["rms_dbfs"][1], 20.0 * std::log10(2.0), 0.01);
    EXPECT_EQ(got["clipped"][0], 0);
    EXPECT_EQ(got["clipped"][1], 4000);
    const auto cost = got["us_per_block"];
    EXPECT_GT(cost["p50"], 0.0);
    EXPECT_LE(cost["p50"], cost["p99"]);
    EXPECT_LE(cost["p99"], cost["max"]);
    EXPECT_LE(cost["mean"], cost["max"]);
}

TEST_F(RenderTest, SilenceIsTheFloorOfTheReport) {
    writeWav("in.wav", {std::vector<float>(100, 0.0f)});
    render({"--unit", "PassthruStereo"});
    EXPECT_EQ(report()["rms_dbfs"][0], -200.0);
    EXPECT_EQ(report()["peak"][0], 0.0);
}

TEST_F(RenderTest, WarningsGoToTheReportAndNotToStandardError) {
    render({"--slot", "1"});
    EXPECT_EQ(err, "");
    const auto warnings = report()["warnings"];
    EXPECT_NE(
        std::find(warnings.begin(), warnings.end(), "can't find DUBS_NorvaneCorvinReverb65 in database"),
        warnings.end());
}

TEST_F(RenderTest, ListShowsEveryTypeAndDescribeItsDefinition) {
    const DefaultDspUnitDatabase database;
    std::string expected;
    for (const std::string& id : database.getIds())
        expected += id + "\n";
    EXPECT_EQ(runTool({"--list"}), 0);
    EXPECT_EQ(out, expected);
    EXPECT_EQ(runTool({"--describe", "DU_StereoMixer"}), 0);
    EXPECT_EQ(out, std::string(database.getDefinition("DU_StereoMixer")) + "\n");
}

TEST_F(RenderTest, HelpGivesAnExampleOfEachOption) {
    EXPECT_EQ(runTool({"--help"}), 0);
    for (const char* option :
         {"--slot", "--preset", "--unit", "--set", "--at", "--in", "--out", "--settle", "--tail", "--block",
          "--rate", "--input-voltage", "--report", "--list", "--describe", "--help"})
        EXPECT_NE(out.find(std::string("Example: ") + option), std::string::npos) << option;
}

TEST_F(RenderTest, TheInputVoltageReachesTheUnits) {
    render({"--unit", "PassthruStereo"});
    EXPECT_EQ(DspUnitInputVoltageMappingConfig::get(), 1.0f);
    EXPECT_EQ(runTool({"--unit", "PassthruStereo", "--in", path("in.wav"), "--out", path("out.wav")}), 0);
    EXPECT_EQ(DspUnitInputVoltageMappingConfig::get(), 1.194f) << "the product profile's";
}

class RefusalTest : public RenderTest {
protected:
    RefusalTest() { writeText("out.wav", "as it was"); }

    // The one line of a refusal that touches nothing.
    std::string refusal(std::vector<std::string> arguments) {
        const auto before = files();
        EXPECT_EQ(runTool(arguments), 2);
        EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
        EXPECT_EQ(err.rfind("tarvek-render: ", 0), 0u) << err;
        EXPECT_EQ(files(), before);
        EXPECT_TRUE(bytes("out.wav") == "as it was");
        return err;
    }
    std::string refusedRender(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--in", path("in.wav"), "--out", path("out.wav")});
        return refusal(arguments);
    }
};

using testing::HasSubstr;

TEST_F(RefusalTest, BadSourcesOfTheGraph) {
    EXPECT_THAT(refusedRender({}), HasSubstr("one of --slot, --preset and --unit"));
    EXPECT_THAT(refusedRender({"--slot", "2", "--unit", "Sum2"}), HasSubstr("one of"));
    EXPECT_THAT(refusedRender({"--slot", "5"}), HasSubstr("no slot 5"));
    EXPECT_THAT(refusedRender({"--unit", "DUBS_Nonesuch"}), HasSubstr("unknown unit 'DUBS_Nonesuch'"));
    EXPECT_THAT(refusedRender({"--preset", path("missing.json")}), HasSubstr("missing.json"));
    writeText("broken.json", "{");
    EXPECT_THAT(refusedRender({"--preset", path("broken.json")}), HasSubstr("no JSON object"));
    EXPECT_THAT(refusedRender({"--preset", path("")}), HasSubstr("preset file"));
    writeText("plugin.json", R"({"audioGraph":{"nodes":[{"nodeType":"plugin"}]}})");
    EXPECT_THAT(refusedRender({"--preset", path("plugin.json")}), HasSubstr("\"plugin\" is not supported"));
}

TEST_F(RefusalTest, BadParameters) {
    EXPECT_THAT(refusedRender({"--unit", "DU_StereoMixer", "--set", "mix"}), HasSubstr("PARAM=VALUE"));
    EXPECT_THAT(refusedRender({"--unit", "DU_StereoMixer", "--set", "=1"}), HasSubstr("PARAM=VALUE"));
    EXPECT_THAT(refusedRender({"--unit", "DU_StereoMixer", "--set", "gain=1"}),
                HasSubstr("no parameter 'gain'"));
    EXPECT_THAT(refusedRender({"--unit", "DU_StereoMixer", "--set", "x.mix=1"}), HasSubstr("no node 'x'"));
    EXPECT_THAT(refusedRender({"--unit", "DU_StereoMixer", "--set", "mix=loud"}),
                HasSubstr("takes a number"));
    EXPECT_THAT(refusedRender({"--unit", "DU_StereoMixer", "--set", "mix=nan"}), HasSubstr("takes a number"));
    EXPECT_THAT(refusedRender({"--unit", "DUBS_Passthru", "--set", "bypass=1"}), HasSubstr("true or false"));
    EXPECT_THAT(refusedRender({"--unit", "DUBS_Passthru", "--set", "muteInput=true"}),
                HasSubstr("not part of a preset"));
}

TEST_F(RefusalTest, BadChanges) {
    EXPECT_THAT(refusedRender({"--unit", "DU_StereoMixer", "--at", "9", "mix=1"}), HasSubstr("lies outside"));
    EXPECT_THAT(refusedRender({"--unit", "DU_StereoMixer", "--at", "-0.1", "mix=1"}),
                HasSubstr("lies outside"));
    EXPECT_THAT(refusedRender({"--unit", "DU_StereoMixer", "--at", "0", "gain=1"}),
                HasSubstr("no parameter"));
    EXPECT_THAT(refusedRender({"--unit", "DU_StereoMixer", "--at", "0", "x.mix=1"}),
                HasSubstr("no node 'x'"));
    EXPECT_THAT(refusedRender({"--unit", "DU_StereoMixer", "--at", "0", "mix=x"}),
                HasSubstr("takes a number"));
    EXPECT_THAT(refusedRender({"--unit", "DU_StereoMixer", "--at", "soon", "mix=1"}), HasSubstr("soon"));
}

TEST_F(RefusalTest, BadFiles) {
    EXPECT_THAT(refusal({"--unit", "Sum2", "--in", path("none.wav"), "--out", path("out.wav")}),
                HasSubstr("none.wav"));
    EXPECT_THAT(refusal({"--unit", "Sum2", "--out", path("out.wav")}), HasSubstr("--in and --out"));
    EXPECT_THAT(refusal({"--unit", "Sum2", "--in", path("in.wav")}), HasSubstr("--in and --out"));
    EXPECT_THAT(refusal({"--unit", "Sum2", "--in", path("in.wav"), "--out", path("no/out.wav")}),
                HasSubstr("cannot write"));
    EXPECT_THAT(refusedRender({"--unit", "Sum2", "--report", path("no/report.json")}),
                HasSubstr("cannot write"));
    EXPECT_THAT(refusedRender({"--unit", "Sum2", "--report", path("")}), HasSubstr("cannot write"));
    EXPECT_THAT(refusedRender({"--unit", "Sum2", "--rate", "48000"}), HasSubstr("is at 44100 Hz"));
    writeText("noise.wav", "not a sound");
    EXPECT_THAT(refusal({"--unit", "Sum2", "--in", path("noise.wav"), "--out", path("out.wav")}),
                HasSubstr("noise.wav"));
}

TEST_F(RefusalTest, BadNumbersAndUnknownOptions) {
    for (const char* option : {"--block", "--rate", "--settle", "--tail", "--input-voltage"})
        for (const char* value : {"-1", "many", "nan"})
            EXPECT_THAT(refusedRender({"--unit", "Sum2", option, value}), HasSubstr(option)) << value;
    EXPECT_THAT(refusedRender({"--unit", "Sum2", "--loud"}), HasSubstr("--loud"));
    EXPECT_THAT(refusal({"--describe", "DUBS_Nonesuch"}), HasSubstr("unknown unit"));
}

}  // namespace
