#include <algorithm>

#include "CabinetFixture.h"
#include "algorithms/cabsim/CabSimQNS.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kNullRelease = "Warn Tried to release null IRProcessor object";

class CabSimQNSTest : public CabinetFixture {
protected:
    CabSimQNSTest() {
        for (const CabinetRow& row : cabinetTable())
            write(std::string(row.response) + ".wav", response(row.id));
        log.clear();
    }
    // A response for each row: a delayed and scaled impulse would do, noise shows more.
    static Signal response(const std::string& id) {
        return decayingNoise(1000, static_cast<unsigned>(id[0]));
    }
    static void makeFolder(const std::string& file) {
        std::filesystem::create_directories(
            std::filesystem::path(tvk::ProductPaths::resolve(file)).parent_path());
    }
    void write(const std::string& path, const Signal& samples) const {
        makeFolder(path);
        CabinetFixture::write(path, samples);
    }
    // A cabinet of full range: the tone's filters apart, nothing but the response.
    Signal alone(const std::string& id) const {
        CabSimQNS cabinet(kBlock, kRateHz);
        cabinet.initIRProc();
        cabinet.setCabSimID(id);
        return play(cabinet, in);
    }
    void fillPool(int count) {
        std::deque<std::shared_ptr<IRProcessor>> processors;
        for (int i = 0; i < count; ++i)
            processors.push_back(convolver());
        IRProcessorPool::fill(processors);
    }

    const Signal in = whiteNoise(1024, 5);
};

TEST_F(CabSimQNSTest, WithoutAPoolItSaysSoAndPassesItsInput) {
    {
        CabSimQNS cabinet(kBlock, kRateHz);
        log.clear();
        cabinet.initIRProc();
        cabinet.enableCabSim2();
        EXPECT_EQ(
            log.lines(),
            (Lines{"CabSimQNS: initIRProc()",
                   "Warn CabSimQNSWarn: IRProcessor pointer not available. Make Sure ObjPoolManager has been "
                   "instantiated with IRProcessor objects",
                   "CabSimQNS: enableCabSim2()", "CabSimQNS: initIRProcCab2()",
                   "Warn CabSimQNSWarn: IRProcessor pointer not available for second cab. Make Sure "
                   "ObjPoolManager has been instantiated with IRProcessor objects"}));
        cabinet.setCabSimID("Arvel");
        EXPECT_EQ(play(cabinet, in), in);
        log.clear();
    }
    EXPECT_EQ(log.lines(), Lines{kNullRelease});
}

TEST_F(CabSimQNSTest, APoolOfOneHasNoneForTheSecondCabinet) {
    fillPool(1);
    const Signal arvel = alone("Arvel");
    CabSimQNS cabinet(kBlock, kRateHz);
    log.clear();
    cabinet.initIRProc();
    EXPECT_EQ(complaints(), Lines{});
    cabinet.enableCabSim2();
    EXPECT_EQ(complaints(),
              Lines{"Warn CabSimQNS: Failed to acquire IRProcessor object from ObjPoolManager cab 2"});
    cabinet.setCabSimID("Arvel");
    EXPECT_EQ(play(cabinet, in), arvel);
    IRProcessorPool::fill({});
    log.clear();
    cabinet.initIRProc();
    EXPECT_EQ(complaints(),
              Lines{"Warn CabSimQNS: Failed to acquire IRProcessor object from ObjPoolManager"});
}

TEST_F(CabSimQNSTest, PlaysTheRowsResponse) {
    fillPool(1);
    CabSimQNS cabinet(kBlock, kRateHz);
    cabinet.initIRProc();
    log.clear();
    cabinet.setCabSimID("Lisko");
    EXPECT_EQ(log.startingWith("CabSimQNS: "), Lines{"CabSimQNS: setCabSimID(Lisko)"});
    EXPECT_EQ(cabinet.first().cabId(), "Lisko");
    const Signal out = play(cabinet, in);
    Signal truth(in.size());
    for (int n = 0; n < static_cast<int>(in.size()); ++n)
        truth[static_cast<std::size_t>(n)] = static_cast<float>(convolvedSample(in, response("Lisko"), n));
    CabinetTone(kRateHz).process(truth.data(), static_cast<int>(truth.size()));
    for (std::size_t n = 0; n < truth.size(); ++n)
        ASSERT_NEAR(out[n], truth[n], 2e-4f) << n;
}

TEST_F(CabSimQNSTest, NonePassesBothChannels) {
    fillPool(1);
    CabSimQNS cabinet(kBlock, kRateHz);
    cabinet.initIRProc();
    cabinet.setCabSimID("Arvel");
    log.clear();
    cabinet.setCabSimID("None");
    EXPECT_EQ(complaints(), Lines{});
    const Signal right = whiteNoise(1024, 6);
    EXPECT_EQ(play(cabinet, in, right), (Stereo{in, right}));
}

TEST_F(CabSimQNSTest, AnUnknownIdIsAWarningAndKeepsTheCabinet) {
    fillPool(1);
    const Signal arvel = alone("Arvel");
    CabSimQNS cabinet(kBlock, kRateHz);
    cabinet.initIRProc();
    cabinet.setCabSimID("Arvel");
    log.clear();
    cabinet.setCabSimID("Elsewhere");
    EXPECT_EQ(
        complaints(),
        Lines{"Warn Cabinet initialized with string not found in CabSimQNS::setCabSimIDList: Elsewhere"});
    EXPECT_EQ(cabinet.first().cabId(), "Arvel");
    EXPECT_EQ(play(cabinet, in), arvel);
}

TEST_F(CabSimQNSTest, ARowWithoutItsFileIsUnknown) {
    fillPool(1);
    std::filesystem::remove(tvk::ProductPaths::resolve(std::string(cabinetTable()[0].response) + ".wav"));
    CabSimQNS cabinet(kBlock, kRateHz);
    cabinet.initIRProc();
    log.clear();
    cabinet.setCabSimID(cabinetTable()[0].id);
    EXPECT_EQ(complaints().size(), 1u);
    EXPECT_EQ(cabinet.first().cabId(), "None");
}

TEST_F(CabSimQNSTest, TwoCabinetsBlend) {
    fillPool(2);
    const Signal arvel = alone("Arvel");
    const Signal sorrel = alone("Sorrel");
    CabSimQNS cabinet(kBlock, kRateHz);
    cabinet.initIRProc();
    cabinet.enableCabSim2();
    for (const float blend : {0.0f, 0.25f, 1.0f}) {
        cabinet.setCabSimID("None");
        cabinet.setCabSimIDCab2("None");
        play(cabinet, Signal(kBlock));  // the filters empty themselves
        cabinet.setCabSimID("Arvel");
        cabinet.setCabSimIDCab2("Sorrel");
        cabinet.setBlend(blend, true);
        const Signal out = play(cabinet, in);
        for (std::size_t n = 0; n < out.size(); ++n)
            ASSERT_NEAR(out[n], (1.0f - blend) * arvel[n] + blend * sorrel[n], 2e-6f) << blend << " at " << n;
    }
    EXPECT_EQ(complaints(), Lines{});
}

TEST_F(CabSimQNSTest, ADisabledSecondCabinetIsGoneWithItsConvolver) {
    fillPool(2);
    const std::shared_ptr<IRProcessor> second = IRProcessorPool::take(1);
    const Signal arvel = alone("Arvel");
    CabSimQNS cabinet(kBlock, kRateHz);
    cabinet.initIRProc();
    cabinet.setCabSimID("Arvel");
    cabinet.setBlend(1.0f, true);
    cabinet.enableCabSim2();
    EXPECT_EQ(second.use_count(), 3);
    log.clear();
    cabinet.disableCabSim2();
    EXPECT_EQ(log.lines(), Lines{"CabSimQNS: disableCabSim2()"});
    EXPECT_EQ(second.use_count(), 2);
    EXPECT_EQ(play(cabinet, in), arvel);
    log.clear();
    cabinet.disableCabSim2();
    EXPECT_EQ(complaints(), Lines{kNullRelease});
}

TEST_F(CabSimQNSTest, PanTakesOneSideAwayAndLeavesTheOther) {
    fillPool(1);
    const Signal arvel = alone("Arvel");
    for (const auto& [pan, leftGain, rightGain] :
         {std::tuple{-1.0f, 1.0f, 0.0f}, {0.0f, 1.0f, 1.0f}, {0.5f, 0.5f, 1.0f}, {7.0f, 0.0f, 1.0f}}) {
        CabSimQNS cabinet(kBlock, kRateHz);
        cabinet.initIRProc();
        cabinet.setCabSimID("Arvel");
        cabinet.first().setPan(pan, true);
        const Stereo out = play(cabinet, in, in);
        for (std::size_t n = 0; n < in.size(); ++n) {
            ASSERT_NEAR(out.left[n], leftGain * arvel[n], 2e-6f);
            ASSERT_NEAR(out.right[n], rightGain * arvel[n], 2e-6f);
        }
    }
}

}  // namespace
