#include <initializer_list>

#include "CardFixture.h"
#include "desk/soundcard/Fault.h"

using tvk::desk::Fault;

namespace {

// Reads and writes until a call fails or `periods` have passed; returns the number of whole periods.
struct Outcome {
    int periods = 0;
    long readResult = kFrames;
    long writeResult = kFrames;
};

}  // namespace

class FaultyCard : public Card {
protected:
    void startWith(std::initializer_list<const char*> faults) {
        VirtualCard::Settings settings;
        settings.guitars = {std::vector<float>(100000, 0.25f), {}};
        for (const char* const fault : faults)
            settings.faults.push_back(Fault::parse(fault));
        configure(settings);
        open();
        begin();
        card().beginTransport();
    }

    Outcome runUntilTrouble(int most) {
        Outcome outcome;
        Period period;
        while (outcome.periods < most) {
            outcome.readResult = read(period);
            if (outcome.readResult != kFrames) return outcome;
            outcome.writeResult = write(silence_);
            if (outcome.writeResult != kFrames) return outcome;
            ++outcome.periods;
        }
        return outcome;
    }

    void restart() {
        snd_pcm_drop(capture_);
        snd_pcm_drop(playback_);
        ASSERT_EQ(snd_pcm_prepare(capture_), 0);
        ASSERT_EQ(snd_pcm_prepare(playback_), 0);
        begin();
    }
};

TEST_F(FaultyCard, CaptureXrunFailsTheReadOfItsPeriodOnce) {
    startWith({"xrun-capture@5"});
    const Outcome outcome = runUntilTrouble(100);
    EXPECT_EQ(outcome.periods, 5);
    EXPECT_EQ(outcome.readResult, -EPIPE);
    EXPECT_EQ(card().counters().captureXruns, 1);
    restart();
    EXPECT_EQ(runUntilTrouble(100).periods, 100);
}

TEST_F(FaultyCard, FaultsStrikeInTheOrderOfTheirPeriodsHoweverTheyAreGiven) {
    startWith({"xrun-capture@30", "gone@10+10", "xrun-capture@5"});
    EXPECT_EQ(runUntilTrouble(100).periods, 5);
    restart();
    EXPECT_LT(runUntilTrouble(100).periods, 10);
    EXPECT_EQ(card().counters().captureXruns, 1);
    card().virtualTime().waitUntil(card().virtualTime().now() + std::chrono::nanoseconds(10 * 725624));
    restart();
    EXPECT_LT(runUntilTrouble(100).periods, 20);
    EXPECT_EQ(card().counters().captureXruns, 2);
    restart();
    EXPECT_EQ(runUntilTrouble(100).periods, 100);
}

TEST_F(FaultyCard, PlaybackXrunFailsTheWriteAfterTheReadOfItsPeriodOnce) {
    startWith({"xrun-playback@5"});
    const Outcome outcome = runUntilTrouble(100);
    EXPECT_EQ(outcome.periods, 5);
    EXPECT_EQ(outcome.readResult, kFrames);
    EXPECT_EQ(outcome.writeResult, -EPIPE);
    EXPECT_EQ(card().counters().playbackXruns, 1);
    restart();
    EXPECT_EQ(runUntilTrouble(100).periods, 100);
}

TEST_F(FaultyCard, ShortReadGivesHalfAPeriodAndThenFails) {
    startWith({"short-read@5"});
    const Outcome outcome = runUntilTrouble(100);
    EXPECT_EQ(outcome.periods, 5);
    EXPECT_EQ(outcome.readResult, kFrames / 2);
    Period period;
    EXPECT_EQ(read(period), -EPIPE);
    EXPECT_EQ(card().counters().captureXruns, 1);
    restart();
    EXPECT_EQ(runUntilTrouble(100).periods, 100);
}

TEST_F(FaultyCard, GoneCardRefusesEverythingUntilItIsBack) {
    startWith({"gone@5+10"});
    const Outcome outcome = runUntilTrouble(100);
    EXPECT_EQ(outcome.periods, 5);
    EXPECT_LT(outcome.readResult, 0);
    const auto goneAt = card().virtualTime().now();
    snd_pcm_drop(capture_);
    EXPECT_EQ(snd_pcm_prepare(capture_), -ENODEV);
    Period period;
    EXPECT_LT(read(period), 0);
    EXPECT_LT(write(silence_), 0);
    card().virtualTime().waitUntil(goneAt + std::chrono::nanoseconds(10 * 725624));
    restart();
    EXPECT_EQ(runUntilTrouble(100).periods, 100);
}

TEST_F(FaultyCard, LostTimeIsSilenceInTheOutput) {
    startWith({"gone@5+10"});
    runUntilTrouble(100);
    card().virtualTime().waitUntil(card().virtualTime().now() + std::chrono::nanoseconds(10 * 725624));
    restart();
    runUntilTrouble(4);
    // Five periods before, the one that failed, ten lost, four after: card time and output never part.
    EXPECT_EQ(output().size(), 20u * kFrames);
}
