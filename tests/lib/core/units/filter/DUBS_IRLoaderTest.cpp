#include <gtest/gtest.h>
#include <typeinfo>

#include "core/System/DspArchive.h"
#include "core/units/filter/DUBS_IRLoader.h"
#include "lib/algorithms/cabsim/CabinetFixture.h"

namespace {

using Lines = std::vector<std::string>;

class IRLoaderTest : public CabinetFixture {
protected:
    IRLoaderTest() { IRProcessorPool::fill({processor}); }

    std::unique_ptr<DUBS_IRLoader> loader() const {
        return std::make_unique<DUBS_IRLoader>("DUBS_IRLoader", kBlock, kRateHz);
    }
    template <typename T>
    static void set(DUBS_IRLoader& unit, const char* name, const T& value) {
        dynamic_cast<Parameter<T>&>(*unit.getParameter(name)).set(value);
    }
    static void load(DUBS_IRLoader& unit, const std::string& json) {
        DspArchive archive(json);
        unit.initDerived(archive);
    }
    static Stereo through(DUBS_IRLoader& unit, Signal left, Signal right) {
        Stereo out{Signal(left.size()), Signal(left.size())};
        for (std::size_t n = 0; n < left.size(); n += kBlock) {
            tvk::BackgroundJobs::waitUntilIdle();
            unit.process(&left[n], &right[n], &out.left[n], &out.right[n]);
        }
        return out;
    }

    const std::shared_ptr<IRProcessor> processor = convolver();
    const Signal left = whiteNoise(1024, 1);
    const Signal right = whiteNoise(1024, 2);
};

TEST_F(IRLoaderTest, HasTheAmplifiersCabinetControls) {
    const auto unit = loader();
    EXPECT_EQ(dynamic_cast<Parameter<std::string>&>(*unit->getParameter("idCabinet")).get(), "none");
    EXPECT_EQ(dynamic_cast<Parameter<float>&>(*unit->getParameter("idCabinetHPF")).get(), 20.0f);
    EXPECT_EQ(dynamic_cast<Parameter<float>&>(*unit->getParameter("idCabinetLPF")).get(), 20000.0f);
    EXPECT_EQ(dynamic_cast<Parameter<float>&>(*unit->getParameter("idCabinetLevel")).get(), -12.0f);
    EXPECT_EQ(complaints(), Lines{});
}

TEST_F(IRLoaderTest, PassesBothChannelsWithoutACabinet) {
    EXPECT_EQ(through(*loader(), left, right), (Stereo{left, right}));
}

TEST_F(IRLoaderTest, IsTheCabinetStageOfTheAmps) {
    writeUser("My Cabinet", decayingNoise(700, 3));
    Stereo truth;
    {
        UserIRQNS cabinet(kBlock, kRateHz);
        cabinet.setFile("My Cabinet");
        cabinet.setHPF(90.0f, true);
        cabinet.setLPF(6000.0f, true);
        cabinet.setOutputLevel(-4.0f, true);
        truth = play(cabinet, left, right);
    }
    const auto unit = loader();
    load(*unit, R"({"idCabinet":"My Cabinet","idCabinetHPF":90,"idCabinetLPF":6000,"idCabinetLevel":-4})");
    EXPECT_EQ(through(*unit, left, right), truth);
    DspArchive stored("{}");
    unit->getArchiveDerived(stored);
    EXPECT_EQ(
        DspArchive(stored.toString()).toString(),
        DspArchive(
            R"({"idCabinet":"My Cabinet","idCabinetHPF":90.0,"idCabinetLPF":6000.0,"idCabinetLevel":-4.0})")
            .toString());
}

TEST_F(IRLoaderTest, SaysWhatItSetAndLoads) {
    const auto unit = loader();
    log.clear();
    set(*unit, "idCabinet", std::string("None"));
    set(*unit, "idCabinetHPF", 100.0f);
    load(*unit, R"({"idCabinetLPF":5000,"idCabinetLevel":-6})");
    EXPECT_EQ(log.startingWith("DUBS_IRLoader: "),
              (Lines{"DUBS_IRLoader: setCabinet(None)", "DUBS_IRLoader: setCabinetHPF(100.000)",
                     "DUBS_IRLoader: initCabinet(None)", "DUBS_IRLoader: initCabinetHPF(100.000)",
                     "DUBS_IRLoader: initCabinetLPF(5000.000)", "DUBS_IRLoader: initCabinetLevel(-6.000)"}));
}

TEST_F(IRLoaderTest, ValuesOutOfRangeAreLimited) {
    const auto unit = loader();
    const auto limited = [&](const char* name, float value) {
        log.clear();
        set(*unit, name, value);
        return log.startingWith("IRBase: ");
    };
    EXPECT_EQ(limited("idCabinetHPF", 600.0f), Lines{"IRBase: setHPF(500.000000, false)"});
    EXPECT_EQ(limited("idCabinetHPF", 1.0f), Lines{"IRBase: setHPF(20.000000, false)"});
    EXPECT_EQ(limited("idCabinetLPF", 30000.0f), Lines{"IRBase: setLPF(20000.000000, false)"});
    EXPECT_EQ(limited("idCabinetLPF", 999.0f), Lines{"IRBase: setLPF(1000.000000, false)"});
    EXPECT_EQ(limited("idCabinetLevel", 3.0f), Lines{"IRBase: setOutputLevel(0.000000, false)"});
    EXPECT_EQ(limited("idCabinetLevel", -40.0f), Lines{"IRBase: setOutputLevel(-36.000000, false)"});
}

TEST_F(IRLoaderTest, AFailedLoadGivesTheDryInput) {
    writeUser("good", decayingNoise(100, 4));
    const auto unit = loader();
    set(*unit, "idCabinet", std::string("good"));
    EXPECT_NE(through(*unit, left, right).left, left);
    set(*unit, "idCabinet", std::string("missing"));
    EXPECT_EQ(through(*unit, left, right), (Stereo{left, right}));
}

}  // namespace
