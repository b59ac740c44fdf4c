// Reads a whole WAV or AIFF file into samples.
//
// WAV: integer PCM of 8, 16, 24 or 32 bits, 32-bit float, plain or extensible header. AIFF and AIFC: integer
// PCM of the same depths in either byte order, 32-bit float. One or two channels; the file's rate has to be
// the system's, since nothing is resampled.
//
// A file is never trusted: every size in it is checked before it is used, at most 16 MiB are read, and memory
// is bounded by the file's size. A refused file leaves the reader empty and its reason in the log.
//
// Sources: the WAVE form of RIFF (Microsoft and IBM, 1991); Audio Interchange File Format AIFF-C (Apple,
// draft of 26 August 1991).
//
// Control threads, one at a time; blocks for the disk.
#pragma once

#include <string>
#include <vector>

#include "utility/OsFiles.h"

class AudioFileReader {
public:
    // systemSampleRateHz: the only rate that is accepted. maxChannels: files with more are refused.
    AudioFileReader(int systemSampleRateHz, int maxChannels, tvk::OsFiles& files = tvk::OsFiles::machine());

    // False, after a line in the log, for a file that cannot be read or is refused; nothing is loaded then.
    bool load(const std::string& path);

    bool isLoaded() const { return loaded_; }

    // Why the last load failed, as the log has it; empty when it did not.
    const std::string& getRefusal() const { return refusal_; }

    // Of the file loaded last. Without one each is an error in the log and answers 0.
    int getSampleRate() const;  // Hz
    int getBitDepth() const;    // 8, 16, 24 or 32
    int getNumChannels() const;
    int getNumSamplesPerChannel() const;

    // The first samples of channel 0, at most maxCount of them, -1 to 1. Returns how many were copied.
    int getSamples(float* dest, int maxCount) const;

private:
    bool readFile(const std::string& path, std::vector<unsigned char>& bytes);
    bool refuse(const std::string& reason);
    bool isThereAudio() const;

    tvk::OsFiles& files_;
    std::vector<std::vector<double>> samples_;  // one vector a channel
    const int systemSampleRate_;
    int sampleRate_ = 0;
    int bitDepth_ = 0;
    const int maxChannels_;
    bool loaded_ = false;
    std::string refusal_;
};
