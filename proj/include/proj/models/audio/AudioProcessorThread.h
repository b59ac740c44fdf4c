// The audio thread: FIFO priority 49 on processor 1, paced by the blocking read of the sound device and by
// nothing else.
#pragma once

#include "utility/TarvekThread.h"

class AudioProcessor;

class AudioProcessorThread final : public TarvekThread {
public:
    // The processor outlives the thread. Does not start it.
    explicit AudioProcessorThread(AudioProcessor& audioProcessor);
    ~AudioProcessorThread() override;

protected:
    // Locks all memory, present and future; a refusal is a warning and the thread goes on.
    void init() override;
    void loop() override;

private:
    AudioProcessor& audioProcessor_;
};
