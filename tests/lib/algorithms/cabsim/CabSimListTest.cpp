#include <cmath>

#include "CabinetFixture.h"
#include "algorithms/cabsim/CabSimList.h"
#include "algorithms/cabsim/CabSimListStereo.h"
#include "algorithms/cabsim/CabinetTable.h"
#include "lib/math/Response.h"

namespace {

using Lines = std::vector<std::string>;

class CabSimListTest : public CabinetFixture {
protected:
    static Signal run(CabSimList& list, const Signal& in) {
        Signal out(in.size());
        for (std::size_t n = 0; n < in.size(); n += kBlock)
            list.process(&in[n], &out[n], kBlock);
        return out;
    }

    CabSimList list{kBlock, kRateHz};
    const Signal noise = whiteNoise(640, 1);
};

TEST_F(CabSimListTest, StartsAsAWireAndNoneIsOne) {
    EXPECT_EQ(run(list, noise), noise);
    EXPECT_TRUE(list.setCabSim("Arvel"));
    EXPECT_NE(run(list, noise), noise);
    EXPECT_TRUE(list.setCabSim("None"));
    EXPECT_EQ(run(list, noise), noise);
    EXPECT_EQ(log.lines(), (Lines{"CabSimList: setCabSim(Arvel)", "CabSimList: setCabSim(None)"}));
}

TEST_F(CabSimListTest, EveryAmplifierHasACabinetThatTakesBothEndsAway) {
    for (const CabinetRow& row : cabinetTable()) {
        ASSERT_TRUE(list.setCabSim(row.id));
        const Signal heard = run(list, impulse(44096));
        const auto db = [&](double hz) {
            return 20.0 * std::log10(std::abs(response::transform(heard, hz, kRateHz)));
        };
        const double middle = db(1000.0);
        EXPECT_LT(db(30.0), middle - 12.0) << row.id;
        EXPECT_LT(db(12000.0), middle - 15.0) << row.id;
        for (double hz = 100.0; hz < 5000.0; hz *= 1.1) {
            EXPECT_LT(db(hz), 0.0) << row.id << " at " << hz;
            EXPECT_NEAR(db(hz), middle, 12.0) << row.id << " at " << hz;
        }
    }
}

TEST_F(CabSimListTest, AnUnknownNameIsTheCallersToTellAndChangesNothing) {
    ASSERT_TRUE(list.setCabSim("Lisko"));
    CabSimList other(kBlock, kRateHz);
    ASSERT_TRUE(other.setCabSim("Lisko"));
    EXPECT_FALSE(list.setCabSim("57cvn"));
    EXPECT_FALSE(list.setCabSim(""));
    EXPECT_EQ(run(list, noise), run(other, noise));
    EXPECT_EQ(complaints(), Lines{});
}

TEST_F(CabSimListTest, ACabinetComesInEmpty) {
    ASSERT_TRUE(list.setCabSim("Sorrel"));
    const Signal first = run(list, noise);
    ASSERT_TRUE(list.setCabSim("None"));
    run(list, noise);
    ASSERT_TRUE(list.setCabSim("Sorrel"));
    EXPECT_EQ(run(list, noise), first);
}

TEST_F(CabSimListTest, TheStereoFormIsTheMonoFormOnEachChannel) {
    const Signal right = whiteNoise(640, 2);
    CabSimListStereo stereo(kBlock, kRateHz);
    EXPECT_FALSE(stereo.setCabSim("Elsewhere"));
    ASSERT_TRUE(stereo.setCabSim("Corvin"));
    Stereo out{Signal(noise.size()), Signal(noise.size())};
    for (std::size_t n = 0; n < noise.size(); n += kBlock)
        stereo.process(&noise[n], &right[n], &out.left[n], &out.right[n], kBlock);
    CabSimList other(kBlock, kRateHz);
    ASSERT_TRUE(list.setCabSim("Corvin"));
    ASSERT_TRUE(other.setCabSim("Corvin"));
    EXPECT_EQ(out, (Stereo{run(list, noise), run(other, right)}));
}

}  // namespace
