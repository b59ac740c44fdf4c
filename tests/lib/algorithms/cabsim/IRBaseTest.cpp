#include <algorithm>
#include <cmath>

#include "CabinetFixture.h"
#include "algorithms/cabsim/ExternalCab.h"
#include "algorithms/cabsim/IRBase.h"
#include "lib/math/Response.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kFailed = "Warn IRBase: Failed to load IR";

class IRBaseTest : public CabinetFixture {
protected:
    // What the unit makes of the channels with its filters wide open: nearly the convolution of their mean.
    static void open(IRBase& cabinet) {
        cabinet.setHPF(20.0f, true);
        cabinet.setLPF(20000.0f, true);
        cabinet.setOutputLevel(0.0f, true);
    }
    std::shared_ptr<IRProcessor> processor = convolver();
    IRBase cabinet{kBlock, kRateHz, processor.get()};
    const Signal left = whiteNoise(4096, 1);
    const Signal right = whiteNoise(4096, 2);
};

TEST_F(IRBaseTest, PassesBothInputsUntilAResponseIsLoaded) {
    cabinet.setOutputLevel(-36.0f, true);
    EXPECT_EQ(play(cabinet, left, right), (Stereo{left, right}));
    EXPECT_EQ(complaints(), Lines{});
}

TEST_F(IRBaseTest, ANameIsAFileInTheDirectoryOfUserResponses) {
    writeUser("My Cabinet", impulse(1));
    cabinet.setFile("My Cabinet");
    EXPECT_TRUE(cabinet.isIRActive());
    EXPECT_EQ(cabinet.fileName(), "My Cabinet");
    EXPECT_EQ(log.startingWith("IRBase: "),
              (Lines{"IRBase: setFile(My Cabinet)",
                     "IRBase: Successfully Loaded: /mnt/user-data/userIRs/My Cabinet.wav\n"}));
    EXPECT_EQ(complaints(), Lines{});
}

TEST_F(IRBaseTest, ANameThatBeginsWithASlashIsAPath) {
    write("/home/root/IRs/TestCabinet1.wav", impulse(1));
    cabinet.setFile("/home/root/IRs/TestCabinet1");
    EXPECT_TRUE(cabinet.isIRActive());
    write(folder.file("elsewhere.wav"), impulse(1));
    cabinet.setFile(folder.file("elsewhere"));
    EXPECT_TRUE(cabinet.isIRActive());
}

TEST_F(IRBaseTest, TheExtensionIsAppendedToEveryName) {
    writeUser("a", impulse(1));
    cabinet.setFile("a.wav");
    EXPECT_FALSE(cabinet.isIRActive());
    writeUser("a.wav", impulse(1));
    cabinet.setFile("a.wav");
    EXPECT_TRUE(cabinet.isIRActive());
}

TEST_F(IRBaseTest, ANameWithNoFileBehindItGivesTheDryInput) {
    writeUser("good", Signal{0.5f});
    cabinet.setFile("good");
    log.clear();
    cabinet.setFile("missing");
    EXPECT_FALSE(cabinet.isIRActive());
    const Lines warnings = log.startingWith("Warn IRBase");
    EXPECT_EQ(warnings, (Lines{"Warn IRBase: No IR found: /mnt/user-data/userIRs/missing.wav\n", kFailed}));
    EXPECT_EQ(play(cabinet, left, right), (Stereo{left, right}));
}

TEST_F(IRBaseTest, AnEmptyNameIsTriedAndFails) {
    cabinet.setFile("");
    EXPECT_TRUE(log.has("IRBase: Loading empty Ir file. \n"));
    EXPECT_TRUE(log.has("Warn IRBase: No IR found: /mnt/user-data/userIRs/.wav\n"));
    EXPECT_FALSE(cabinet.isIRActive());
    writeUser("", impulse(1));
    cabinet.setFile("");
    EXPECT_TRUE(cabinet.isIRActive());
}

TEST_F(IRBaseTest, NoneIsDryWithoutAComplaint) {
    writeUser("good", Signal{0.5f});
    for (const char* const none : {"none", "None"}) {
        cabinet.setFile("good");
        EXPECT_TRUE(cabinet.isIRActive());
        cabinet.setFile(none);
        EXPECT_FALSE(cabinet.isIRActive());
        EXPECT_EQ(play(cabinet, left, right), (Stereo{left, right}));
    }
    EXPECT_EQ(complaints(), Lines{});
}

TEST_F(IRBaseTest, WithoutAConvolverEveryLoadFails) {
    IRBase bare(kBlock, kRateHz, nullptr);
    writeUser("good", impulse(1));
    bare.setFile("good");
    EXPECT_EQ(complaints(), (Lines{"Warn IRBase: irProc not initialized", kFailed}));
    EXPECT_EQ(play(bare, left, right), (Stereo{left, right}));
    log.clear();
    bare.setFile("none");
    EXPECT_EQ(complaints(), Lines{});
}

TEST_F(IRBaseTest, TheCabinetHearsTheMeanOfBothInputsAndPlaysOnBothOutputs) {
    const Signal response = decayingNoise(4096, 3);
    writeUser("long", response);
    cabinet.setFile("long");
    open(cabinet);
    const Stereo out = play(cabinet, left, right);
    EXPECT_EQ(out.left, out.right);
    Signal mono(left.size());
    std::transform(left.begin(), left.end(), right.begin(), mono.begin(),
                   [](float l, float r) { return 0.5f * (l + r); });

    // The filters, open as they are, belong to the truth: those of a cabinet that is a wire.
    CabinetTone tone(kRateHz);
    Signal truth(mono.size());
    for (int n = 0; n < static_cast<int>(truth.size()); ++n)
        truth[static_cast<std::size_t>(n)] = static_cast<float>(convolvedSample(mono, response, n));
    tone.process(truth.data(), static_cast<int>(truth.size()));
    const float peak = *std::max_element(truth.begin(), truth.end());
    for (std::size_t n = 0; n < truth.size(); ++n)
        ASSERT_NEAR(out.left[n], truth[n], 2e-5f * peak) << n;
}

TEST_F(IRBaseTest, FiltersAndLevelStandBehindTheResponse) {
    writeUser("half", Signal{0.0f, 0.5f});
    cabinet.setFile("half");
    cabinet.setHPF(200.0f, true);
    cabinet.setLPF(3000.0f, true);
    cabinet.setOutputLevel(-6.0f, true);
    const Signal heard = play(cabinet, impulse(44096));
    for (const double hz : {50.0, 200.0, 1000.0, 3000.0, 10000.0}) {
        const std::complex<double> ideal =
            response::highPass(response::prototypeS(hz, 200.0, kRateHz), 0.7071) *
            response::lowPass(response::prototypeS(hz, 3000.0, kRateHz), 0.7071) * std::pow(10.0, -0.3) * 0.5;
        EXPECT_NEAR(std::abs(response::transform(heard, hz, kRateHz)), std::abs(ideal), 1e-4) << hz;
    }
}

TEST_F(IRBaseTest, FiltersKeepRampingWhileNoResponseIsActive) {
    cabinet.setHPF(400.0f, false);
    cabinet.setLPF(2000.0f, false);
    const Signal silence(44096);
    play(cabinet, silence);
    writeUser("wire", impulse(1));
    cabinet.setFile("wire");
    const Signal heard = play(cabinet, impulse(44096));
    for (const double hz : {100.0, 400.0, 2000.0, 6000.0}) {
        const std::complex<double> ideal =
            response::highPass(response::prototypeS(hz, 400.0, kRateHz), 0.7071) *
            response::lowPass(response::prototypeS(hz, 2000.0, kRateHz), 0.7071);
        EXPECT_NEAR(std::abs(response::transform(heard, hz, kRateHz)), std::abs(ideal), 1e-3) << hz;
    }
}

TEST_F(IRBaseTest, OutputsMayBeTheInputsOrOneBuffer) {
    writeUser("long", decayingNoise(300, 4));
    for (const char* const name : {"none", "long"}) {
        cabinet.setFile(name);
        const Stereo truth = play(cabinet, left, right);
        cabinet.setFile("none");
        play(cabinet, Signal(kBlock));  // the filters empty themselves
        cabinet.setFile(name);
        Stereo inPlace{left, right};
        for (std::size_t n = 0; n < left.size(); n += kBlock) {
            tvk::BackgroundJobs::waitUntilIdle();
            cabinet.process(inPlace.left.data() + n, inPlace.right.data() + n, inPlace.left.data() + n,
                            inPlace.right.data() + n);
        }
        EXPECT_EQ(inPlace, truth) << name;
    }
    Signal line(left.size());
    cabinet.setFile("none");
    for (std::size_t n = 0; n < left.size(); n += kBlock)
        cabinet.process(left.data() + n, left.data() + n, line.data() + n, line.data() + n);
    EXPECT_EQ(line, left);
}

TEST_F(IRBaseTest, SettersSayWhatTheyWereTold) {
    log.clear();
    cabinet.setHPF(80.0f, true);
    cabinet.setLPF(5000.0f, false);
    cabinet.setOutputLevel(-3.0f, false);
    ExternalCab external(kBlock, kRateHz, processor.get());
    external.setHPF(80.0f, false);
    external.setLPF(5000.0f, true);
    external.setOutputLevel(-3.0f, true);
    external.setFile("none");
    EXPECT_EQ(log.lines(),
              (Lines{"IRBase: setHPF(80.000000, true)", "IRBase: setLPF(5000.000000, false)",
                     "IRBase: setOutputLevel(-3.000000, false)", "ExternalCab: setHPF(80.000000, false)",
                     "ExternalCab: setLPF(5000.000000, true)", "ExternalCab: setOutputLevel(-3.000000, true)",
                     "IRBase: setFile(none)"}));
}

TEST_F(IRBaseTest, AnExternalCabIsTheSameStage) {
    writeUser("long", decayingNoise(500, 5));
    ExternalCab external(kBlock, kRateHz, processor.get());
    Stereo out[2];
    cabinet.setFile("long");
    cabinet.setHPF(150.0f, true);
    cabinet.setOutputLevel(-9.0f, true);
    out[0] = play(cabinet, left, right);
    external.setFile("long");
    external.setHPF(150.0f, true);
    external.setOutputLevel(-9.0f, true);
    out[1] = play(external, left, right);
    EXPECT_EQ(out[0], out[1]);
}

}  // namespace
