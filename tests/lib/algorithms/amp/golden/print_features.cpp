// Prints the golden table of the two-channel reverb amp's sound. Redirect it to arvel_reverb65.csv after
// listening to what changed, and review the difference.
#include <cstdio>

#include "FlagshipFeatures.h"

int main() {
    std::puts(
        "# Sound of the two-channel reverb amp at the power amp's output, without the speaker's curve: a "
        "sine at\n"
        "# the jack of one channel. Made by arvel_reverb65_features.\n"
        "# Tolerances: rms 0.1 dB; thd a twentieth of itself and 0.01 points; each harmonic 6 % of its "
        "amplitude\n"
        "# and 0.0001 of the fundamental, which is -80 dB.\n"
        "channel,knobs,hz,millivolts,rms_volts,thd_percent,h2_db,h3_db,h4_db,h5_db");
    for (const flagship::Case& c : flagship::cases()) {
        const Harmonics h = flagship::measure(c);
        std::printf("%s,%.4f,%.3f,%.1f,%.1f,%.1f,%.1f\n", flagship::nameOf(c).c_str(), h.rms, 100.0 * h.thd(),
                    h.db(2), h.db(3), h.db(4), h.db(5));
    }
}
