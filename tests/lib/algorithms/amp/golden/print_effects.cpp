// Prints the golden tables of the two-channel reverb amp's effects: with the argument "reverb" or "vibrato".
// Redirect them to arvel_reverb65_reverb.csv and arvel_reverb65_vibrato.csv after listening to what changed,
// and review the difference.
#include <cstdio>
#include <string>

#include "EffectFeatures.h"
#include "algorithms/reverb/SpringTankResponse.h"

int main(int argc, char** argv) {
    const std::string table = argc == 2 ? argv[1] : "";
    SpringTankResponse::setFile(PRODUCT_HOME "/tank/SpringTank.wav");
    if (table == "reverb") {
        std::puts(
            "# Tail after 20 ms of 1 kHz at 10 mV into the vibrato channel, at the speaker without its "
            "curve.\n"
            "# Made by arvel_reverb65_effects. Tolerance: 0.2 dB.\n"
            "knob,taper,volts_50_to_150_ms,volts_400_to_600_ms,volts_1000_to_1200_ms");
        for (const flagship::ReverbCase& c : flagship::reverbCases()) {
            const flagship::ReverbFeatures f = flagship::measure(c);
            std::printf("%s,%.6f,%.6f,%.6f\n", flagship::nameOf(c).c_str(), f.early, f.middle, f.late);
        }
        return 0;
    }
    if (table == "vibrato") {
        std::puts(
            "# Envelope of 1 kHz at 10 mV in the vibrato channel, at the speaker without its curve.\n"
            "# Made by arvel_reverb65_effects. Tolerances: 0.2 dB, 1 % of the rate.\n"
            "speed,intensity,most_volts,least_volts,rate_hz");
        for (const flagship::VibratoCase& c : flagship::vibratoCases()) {
            const flagship::VibratoFeatures f = flagship::measure(c);
            std::printf("%s,%.4f,%.4f,%.3f\n", flagship::nameOf(c).c_str(), f.most, f.least, f.rateHz);
        }
        return 0;
    }
    std::fputs("arvel_reverb65_effects: say which table, reverb or vibrato\n", stderr);
    return 2;
}
