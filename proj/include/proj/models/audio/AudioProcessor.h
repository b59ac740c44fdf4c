// The real-time path from the capture device through the preset's graph to the playback device, and the door
// through which the control side reaches the amplifier of the loaded preset.
//
//   write the block of the cycle before
//   read -> floats -> DC off, ranges combined -> graph -> 4 Hz fades -> words, kept for the next cycle
//
// Writing first fixes the latency at one period and keeps the computation out of the write's deadline.
//
// Threads: process on the audio thread alone. Everything else on control threads, which take turns: a preset
// load and a setter never overlap. The audio thread takes no lock.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "proj/models/audio/InputStage.h"
#include "proj/models/audio/OutputFade.h"
#include "proj/models/audio/PcmBuffer.h"

class AudioAlsaPcm;
class BlockTimer;
class DspUnitDatabase;
class IDspUnit;
class IParameter;
class IRProcessor;
class ProductProfile;
class SFAD_LoadPresetCabsim;
class UIStdDisplayDspUnit;

// The amplifier's controls on the panel, by their place in its display binding.
enum class AmpControl {
    NormalVolume = 0,
    NormalTreble = 1,
    NormalMiddle = 2,
    NormalBass = 3,
    NormalBrightSwitch = 4,
    VibratoVolume = 5,
    VibratoTreble = 6,
    VibratoMiddle = 7,
    VibratoBass = 8,
    VibratoBrightSwitch = 9,
    VibratoReverb = 10,
    VibratoReverbMute = 11,
    VibratoSpeed = 12,
    VibratoIntensity = 13,
    VibratoTremoloMute = 14
};

// What the engine is built for.
struct AudioProcessorSettings {
    std::string inputDevice;
    std::string outputDevice;
    std::uint32_t audioBlockLength;  // frames per period
    int audioFormat;                 // ALSA format code: 6 (S24_LE) or 10 (S32_LE)
    float audioSampleRate;           // Hz, a whole number
    std::string processorUtilizationFilename;
    BlockTimer* blockTimer = nullptr;  // not owned; none is null
};

class AudioProcessor {
public:
    // Opens the devices and sizes everything; the profile outlives the object. Throws tvk::Exception for a
    // format that is not supported, a device that cannot be set up, or missing memory.
    AudioProcessor(const AudioProcessorSettings& settings, const ProductProfile& productProfile);

    // Audio has ended by then.
    ~AudioProcessor();
    AudioProcessor(const AudioProcessor&) = delete;
    AudioProcessor& operator=(const AudioProcessor&) = delete;

    // One cycle; blocks until a period is captured. A failed read or write restarts both streams with silence
    // in the next cycle. No allocation, lock or log but the warning of a failed transfer.
    void process();

    // True from the first completed block on.
    bool isStarted() const { return started_.load(std::memory_order_relaxed); }

    // Replaces the graph by that of a preset's JSON text and binds the controls to its first unit. Throws the
    // parser's error, with the graph as it was, or the host's, with an empty graph; the setters then do
    // nothing.
    void loadPreset(const std::string& json);

    // A knob by its position, 0 to 1, and a switch. Without a preset they do nothing.
    void setKnob(AmpControl control, float position);
    void setSwitch(AmpControl control, bool on);

    // Parameters of the amplifier that no panel control is bound to. Without a preset they do nothing; an
    // amplifier that has no such parameter is a warning; one of another type is std::bad_cast.
    void setCabinet(const std::string& fileOrName);
    void setCabinetHPF(float frequencyHz);
    void setCabinetLPF(float frequencyHz);
    void setCabinetLevel(float levelDb);
    void setReverbTaper(int type);

    // Stored, without effect on the sound.
    void setMasterVolume(float value) { masterVolume_.store(value, std::memory_order_relaxed); }
    float getMasterVolume() const { return masterVolume_.load(std::memory_order_relaxed); }

    // The convolver that the cabinet units share, or null.
    std::shared_ptr<IRProcessor> getIrProcessor() const { return irProcessor_; }
    float getSampleRate() const { return sampleRate_; }
    long getXrunCount() const;

private:
    struct Buffers;

    void logSettings(const AudioProcessorSettings& settings) const;
    void openPcm(const AudioProcessorSettings& settings);
    void allocateBuffers();
    void wireGraph();

    void restartStreams();
    void startStreams();
    void fillAndStart();
    bool readPeriod();
    void computeBlock();
    void fadeIntoFrames();

    template <typename T>
    void setAmplifierParameter(const char* id, const T& value);

    const float sampleRate_;
    const std::uint32_t blockLength_;
    const std::chrono::nanoseconds periodTime_;
    const ProductProfile& productProfile_;
    BlockTimer* const blockTimer_;
    const std::shared_ptr<IRProcessor> irProcessor_;
    const std::unique_ptr<DspUnitDatabase> unitDatabase_;
    const std::unique_ptr<SFAD_LoadPresetCabsim> systemAudioDevice_;
    std::vector<float> inputBuffer0_;
    std::vector<float> inputBuffer1_;
    std::vector<float> summedInput_;
    InputStage inputStage_;
    OutputFade fade0_;
    OutputFade fade1_;
    int audioBitDepth_;
    std::unique_ptr<AudioAlsaPcm> audioAlsaPcm_;
    std::unique_ptr<Buffers> buffers_;
    std::size_t inputSampleCount_ = 0;
    std::size_t outputSampleCount_ = 0;
    const float* graphOutput0_ = nullptr;
    const float* graphOutput1_ = nullptr;

    // The audio thread's own.
    bool startRequested_ = true;
    bool restartRequested_ = false;
    bool readFailedBefore_ = false;

    std::atomic<bool> started_{false};
    std::atomic<float> masterVolume_{0.0f};

    // The control side's, under its mutex.
    std::mutex controlMutex_;
    IDspUnit* amplifierUnit_ = nullptr;
    std::unique_ptr<UIStdDisplayDspUnit> uiBinding_;
};
