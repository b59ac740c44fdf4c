// Stand-ins for the amplifier's folders with responses in them, convolvers, and a player of blocks.
#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "algorithms/cabsim/IRProcessor.h"
#include "algorithms/cabsim/IRProcessorPool.h"
#include "support/DirectConvolution.h"
#include "support/LogRecorder.h"
#include "support/SoundFileBytes.h"
#include "support/TemporaryFolder.h"
#include "support/YieldingClock.h"
#include "utility/BackgroundJobs.h"
#include "utility/ProductPaths.h"

class CabinetFixture : public testing::Test {
protected:
    static constexpr int kBlock = 32;
    static constexpr float kRateHz = 44100.0f;
    using Signal = std::vector<float>;

    struct Stereo {
        Signal left;
        Signal right;
        bool operator==(const Stereo&) const = default;
    };

    CabinetFixture() {
        std::filesystem::create_directories(folder.path() / "data" / "userIRs");
        std::filesystem::create_directories(folder.path() / "home" / "IRs");
        tvk::ProductPaths::set(folder.file("home"), folder.file("data"));
    }
    ~CabinetFixture() override {
        IRProcessorPool::clear();
        tvk::ProductPaths::set(tvk::ProductPaths::kHomeRoot, tvk::ProductPaths::kUserData);
    }

    static std::shared_ptr<IRProcessor> convolver() {
        return std::make_shared<IRProcessor>(kBlock, 4096, 128, 64, 128, 3, "cabSim", 49, kRateHz);
    }

    // A response of 32-bit floats, by its path on the amplifier.
    void write(const std::string& path, const Signal& response) const {
        soundfile::Wav wav{.tag = 3, .bits = 32};
        for (const float sample : response)
            wav.data += soundfile::le(std::bit_cast<std::uint32_t>(sample), 4);
        soundfile::write(tvk::ProductPaths::resolve(path), wav.bytes());
    }
    void writeUser(const std::string& name, const Signal& response) const {
        write("/mnt/user-data/userIRs/" + name + ".wav", response);
    }

    std::vector<std::string> complaints() const { return log.complaints(); }

    // Whole blocks, with every helper done before each.
    template <typename Cabinet>
    static Stereo play(Cabinet& cabinet, const Signal& left, const Signal& right) {
        Stereo out{Signal(left.size()), Signal(left.size())};
        for (std::size_t n = 0; n < left.size(); n += kBlock) {
            tvk::BackgroundJobs::waitUntilIdle();
            cabinet.process(left.data() + n, right.data() + n, out.left.data() + n, out.right.data() + n);
        }
        return out;
    }
    template <typename Cabinet>
    static Signal play(Cabinet& cabinet, const Signal& both) {
        const Stereo out = play(cabinet, both, both);
        EXPECT_EQ(out.left, out.right);
        return out.left;
    }

    static Signal impulse(int length) {
        Signal signal(static_cast<std::size_t>(length));
        signal[0] = 1.0f;
        return signal;
    }

    LogRecorder log;
    TemporaryFolder folder;
    YieldingClock clock;
};
