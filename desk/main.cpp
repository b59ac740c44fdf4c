// The amplifier with a desk's hardware: the product's runner on the virtual sound card.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/personality.h>
#include <unistd.h>
#include <utility>

#include "core/ProductProfile/ProductProfile.h"
#include "desk/BlockStatistics.h"
#include "desk/ClockDoor.h"
#include "desk/DeskClock.h"
#include "desk/DeskPlatform.h"
#include "desk/DeskSession.h"
#include "desk/Endpoints.h"
#include "desk/JobStatistics.h"
#include "desk/Options.h"
#include "desk/OutputWriter.h"
#include "desk/Peers.h"
#include "desk/ProductRoot.h"
#include "desk/Refusal.h"
#include "desk/soundcard/Quiescence.h"
#include "desk/soundcard/VirtualCard.h"
#include "proj/runner/Runner.h"
#include "utility/BackgroundJobs.h"
#include "utility/Clock.h"
#include "utility/Exception.h"
#include "wav/GuitarFile.h"

namespace {

using namespace tvk;
using namespace tvk::desk;

constexpr int kRateHz = 44100;
constexpr int kRefused = 2;
// Long enough for what the amplifier still has to say after the guitar's last sample.
constexpr std::uint64_t kTailFrames = kRateHz;

bool isSameFile(const std::optional<std::string>& one, const std::optional<std::string>& other) {
    std::error_code missing;
    return one && other &&
           (std::filesystem::path(*one).lexically_normal() ==
                std::filesystem::path(*other).lexically_normal() ||
            std::filesystem::equivalent(*one, *other, missing));
}

void refuseOverwriting(const Options& options) {
    if (isSameFile(options.inFile, options.outFile))
        throw Refusal("--out would overwrite the guitar of --in");
    if (isSameFile(options.inFile, options.reportFile))
        throw Refusal("--report would overwrite the guitar of --in");
    if (isSameFile(options.outFile, options.reportFile))
        throw Refusal("--report and --out are the same file");
}

// Before anything is written, so that a refusal leaves an older file as it is.
void refuseUnwritable(const char* option, const std::optional<std::string>& file) {
    namespace fs = std::filesystem;
    if (!file) return;
    const fs::path path(*file);
    const fs::path folder = path.has_parent_path() ? path.parent_path() : ".";
    if (fs::is_directory(path)) throw Refusal(std::string(option) + " " + *file + ": is a folder");
    if (!fs::is_directory(folder)) throw Refusal(std::string(option) + " " + *file + ": no such folder");
    const bool isWritable = access(fs::exists(path) ? path.c_str() : folder.c_str(), W_OK) == 0;
    if (!isWritable) throw Refusal(std::string(option) + " " + *file + ": cannot be written");
}

VirtualCard::Settings cardSettings(const Options& options) {
    VirtualCard::Settings settings;
    settings.clock = options.clock;
    settings.rateHz = kRateHz;
    settings.loop = options.loop;
    settings.faults = options.faults;
    // The end of a run is the same in every run, however late it is noticed.
    settings.transportEnds = [] { VirtualCard::instance().virtualTime().hold(); };
    std::uint64_t guitarFrames = 0;
    if (options.inFile) {
        const GuitarFile guitar(*options.inFile, kRateHz);
        settings.guitars = {guitar.input(0), guitar.input(1)};
        guitarFrames = guitar.frames();
    }
    if (options.seconds)
        settings.transportFrames =
            std::max<std::uint64_t>(static_cast<std::uint64_t>(std::llround(*options.seconds * kRateHz)), 1);
    else if (options.inFile && !options.loop)
        settings.transportFrames = guitarFrames + kTailFrames;
    return settings;
}

int play(const Options& options) {
    refuseOverwriting(options);
    refuseUnwritable("--out", options.outFile);
    refuseUnwritable("--report", options.reportFile);
    VirtualCard::installConfiguration();
    VirtualCard::Settings settings = cardSettings(options);
    const ProductRoot root = ProductRoot::open(options.root);
    const Endpoints endpoints(options.root);
    const ProductProfile profile((root.homeRoot / "product_profile.json").string());
    settings.sensitiveGainDb = profile.getDreGainDeltaDb();
    VirtualCard& card = VirtualCard::instance();
    card.configure(std::move(settings));
    BlockStatistics blocks(
        card, std::chrono::nanoseconds(std::llround(VirtualCard::kPeriodFrames * 1e9 / kRateHz)));
    const JobStatistics jobs(card);
    OutputWriter writer(card, blocks, jobs, options.outFile, options.reportFile);

    DeskClock deskClock(card.virtualTime());
    const bool isVirtual = options.clock == VirtualCard::ClockMode::Virtual;
    Clock& clock = isVirtual ? deskClock : Clock::current();
    Quiescence others;
    if (isVirtual) others.shareProcessor();
    card.virtualTime().setAwaitRest([&others] {
        // Helpers look for work all the time: theirs is counted. In real time they have a block for a block's
        // job and longer for a tail's.
        BackgroundJobs::waitUntilIdle();
        others.await();
    });

    std::optional<ClockDoor> clockDoor;
    if (options.isHeld) clockDoor.emplace(endpoints.clock(), card.virtualTime());
    Peers::Setting setting;
    if (!options.isPanelExternal) setting.controlProcessor.emplace(options.pins);
    setting.isHostPlugged = options.isHostPlugged;
    setting.script = options.script;
    Peers peers(endpoints, isVirtual ? &card.virtualTime() : nullptr, std::move(setting));
    DeskSession session(options, endpoints, peers, card, writer);

    Platform platform = deskPlatform(root, endpoints, peers, clock);
    platform.panelReplayed = [&session] { session.panelReplayed(); };
    platform.blockTimer = &blocks;
    platform.session = [&](Model& model, StopSignal& stop) {
        struct Release {
            VirtualTime& time;
            ~Release() { time.release(); }
        } const release{card.virtualTime()};
        session.run(model, stop);
    };
    return applicationMain(platform);
}

// Some of the amplifier's log lines show addresses; a run that repeats has the same ones.
void settleAddresses(char** argv) {
    const int now = personality(0xffffffff);
    if (now == -1 || (now & ADDR_NO_RANDOMIZE) != 0) return;
    if (personality(static_cast<unsigned long>(now) | ADDR_NO_RANDOMIZE) == -1) return;
    // By its own path, which gives the process its name.
    std::error_code unknown;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", unknown);
    if (!unknown) execv(program.c_str(), argv);
}

int refuse(const char* reason) {
    std::fprintf(stderr, "tarvek-desk: %s\n", reason);
    return kRefused;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const std::optional<Options> options = Options::parse(argc, argv);
        if (!options) return 0;
        StopSignal::block();
        if (options->clock == VirtualCard::ClockMode::Virtual) settleAddresses(argv);
        return play(*options);
    } catch (const std::exception& error) {
        return refuse(error.what());
    }
}
