#include "algorithms/reverb/MeasuredSpringTank.h"

#include <algorithm>
#include <utility>

#include "../amp/Scale.h"
#include "tables/SpringTankCurves.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "MeasuredSpringTank";

constexpr int kRate = 3;
constexpr int kFilterLength = 10;
constexpr float kDriveHighPassHz = 180.0f;
constexpr float kDriveGain = 1.4272498f;
constexpr float kSpringsGain = 0.00039810708f;  // -68 dB
constexpr float kRecoveryHighPassHz = 370.0f;
constexpr float kRecoveryLowPassHz = 1000.0f;
constexpr float kRampSeconds = 0.02f;

// The tail's thread runs beside the tank's.
constexpr const char* kTailThreadName = "AudRvbBackThrd";
constexpr int kTailCpu = 3;

}  // namespace

MeasuredSpringTank::Stage::Stage(int blockLength, float inputRange, float outputMin, float outputMax,
                                 const tables::ValveCurve& curve)
    : sampler(blockLength, kRate, kFilterLength),
      transfer(sampler.planesLength(), inputRange, outputMin, outputMax, curve.segments, curve.breakpoints),
      planes(static_cast<std::size_t>(sampler.planesLength())) {}

void MeasuredSpringTank::Stage::process(float* buffer) {
    sampler.upToPlanes(buffer, planes.data());
    transfer.process(planes.data());
    sampler.downFromPlanes(planes.data(), buffer);
}

MeasuredSpringTank::MeasuredSpringTank(int blockLength, float sampleRate,
                                       std::shared_ptr<const PreparedResponse> response)
    : blockLength_(blockLength),
      driveHighPass_(kDriveHighPassHz, sampleRate),
      drive_(blockLength, tables::kSpringTankDriveRange, tables::kSpringTankDriveMin,
             tables::kSpringTankDriveMax, tables::kSpringTankDrive),
      recoveryHighPass_(kRecoveryHighPassHz, sampleRate),
      recoveryLowPass_(kRecoveryLowPassHz, sampleRate),
      recovery_(blockLength, tables::kSpringTankRecoveryRange, tables::kSpringTankRecoveryMin,
                tables::kSpringTankRecoveryMax, tables::kSpringTankRecovery),
      level_(kRampSeconds, sampleRate),
      mute_(kRampSeconds, sampleRate),
      sent_(static_cast<std::size_t>(blockLength)),
      returned_(static_cast<std::size_t>(blockLength)),
      levels_(static_cast<std::size_t>(blockLength)),
      mutes_(static_cast<std::size_t>(blockLength)) {
    mute_.setTarget(1.0f);
    mute_.snap(1.0f);
    if (response) convolver_.emplace(blockLength, std::move(response), kTailCpu, kTailThreadName, sampleRate);
}

void MeasuredSpringTank::process(const float* in, float* out) {
    const int n = blockLength_;
    float* const sent = sent_.data();
    float* const returned = returned_.data();
    std::copy_n(in, n, sent);
    driveHighPass_.process(sent, n);
    drive_.process(sent);
    scale(sent, kDriveGain, n);
    if (convolver_) convolver_->process(sent, returned, n);
    scale(returned, kSpringsGain, n);
    recoveryHighPass_.process(returned, n);
    recoveryLowPass_.process(returned, n);
    recovery_.process(returned);
    level_.process(levels_.data(), n);
    mute_.process(mutes_.data(), n);
    for (int i = 0; i < n; ++i)
        out[i] = returned[i] * levels_[static_cast<std::size_t>(i)] * mutes_[static_cast<std::size_t>(i)];
}

void MeasuredSpringTank::setLevel(float gain, bool init) {
    level_.setTarget(gain);
    if (init) level_.snap(gain);
}

void MeasuredSpringTank::setMute(bool on, bool init) {
    tvk::log::debug(kTag, "Reverb Mute: %s", on ? "on" : "off");
    const float gain = on ? 0.0f : 1.0f;
    mute_.setTarget(gain);
    if (init) mute_.snap(gain);
}
