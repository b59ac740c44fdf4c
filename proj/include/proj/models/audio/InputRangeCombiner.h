// One guitar out of its two analogue ranges: the sensitive one while it is not near clipping, the robust one
// when it is, with a crossfade between them.
//
//   |sensitive| -> envelope -> hysteresis (up at 0.5, down at 0.25) -> target 0 or 1 -> 100 Hz one-pole -> g
//   y = robust * g + sensitive * ratio * (1 - g),   ratio = 10^(-0.05 * delta)
//
// The envelope rises with a corner of 1000 Hz and falls with one of 1 Hz: it is there before the clipping and
// stays through the notes of a phrase. The state of the hysteresis is the caller's, since both inputs of the
// amplifier share one: a loud signal on either moves both, which keeps them on one range.
//
// Audio thread.
#pragma once

class InputRangeCombiner {
public:
    // deltaDb: how much more gain the sensitive range has.
    InputRangeCombiner(float sampleRateHz, float deltaDb);

    // One sample of each range; 1.0 is full scale of the converter. isLoud is read and written.
    float process(float sensitive, float robust, bool& isLoud);

private:
    float followEnvelope(float level);
    float rangeTarget(bool& isLoud) const;

    float ratio_;
    float attack_;
    float release_;
    float envelope_ = 0.0f;
    float gainPole_;
    float gain_ = 0.0f;
};
