// Sets hardware and software parameters of one open stream.
#pragma once

#include "core/Audio/AudioAlsaPcm.h"

// 0, or the negative code of the step that failed, which is an error line in the log. The rate has to be met
// exactly: audio at another rate would be detuned.
int setPcmParameters(snd_pcm_t* handle, const PcmConfiguration& configuration);
