// The cabinet stage around a convolver: choice of the response, filters and level.
//
//   left, right -> (left + right) / 2 -> convolver -> low-pass -> high-pass -> level -> both outputs
//
// Without a response, both inputs go to their outputs as they are. That is so while none is chosen, after a
// load that failed, and while another unit owns the convolver's stream (IRStream), of which one warning
// tells. While a load runs, the convolver passes its input on.
//
// Names of responses are opaque and have no extension: ".wav" is always appended. A name that begins with "/"
// is a path, any other one lies in the directory of user responses. "None" and "none" are no response. Paths
// are the amplifier's; ProductPaths says where they lie.
//
// Threads: setters on control threads, one at a time; setFile blocks for the load. process on the audio
// thread.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "algorithms/cabsim/CabinetTone.h"
#include "algorithms/cabsim/IRStream.h"

class IRProcessor;

class IRBase {
public:
    // blockLength: samples per call, at sampleRate (Hz). irProcessor: not owned, may be null; it outlives the
    // object or its detach.
    IRBase(int blockLength, float sampleRate, IRProcessor* irProcessor);
    virtual ~IRBase() = default;
    IRBase(const IRBase&) = delete;
    IRBase& operator=(const IRBase&) = delete;

    // Loads the response and takes the convolver's stream; a name for none gives the stream up instead. A
    // failed load is a warning and leaves the dry signal.
    void setFile(const std::string& name);

    // isInit: there at once, else over 10 ms. Hz, Hz and dB.
    void setHPF(float hz, bool isInit);
    void setLPF(float hz, bool isInit);
    void setOutputLevel(float db, bool isInit);

    // One block. Each output may be its input, and the outputs may be one buffer.
    void process(const float* inL, const float* inR, float* outL, float* outR);

    const std::string& fileName() const { return fileName_; }
    bool isIRActive() const { return irActive_.load(std::memory_order_relaxed); }

protected:
    // The cabinet alone, into outL; false without one, then nothing is written.
    bool processCabinet(const float* inL, const float* inR, float* outL);
    void passDry(const float* inL, const float* inR, float* outL, float* outR) const;

    // The convolver goes before the object does.
    void detachIRProcessor() { stream_.detach(); }

    CabinetTone& tone() { return tone_; }

private:
    bool load();
    bool convolve(const float* inL, const float* inR, float* out);
    std::string path() const;

    const int blockLength_;
    std::vector<float> monoBuffer_;
    IRStream stream_;
    std::string fileName_;
    std::string directory_ = "/mnt/user-data/userIRs/";
    CabinetTone tone_;
    std::atomic<bool> irActive_{false};
};
