// The amplifier with a desk's hardware: the product's runner on the virtual sound card.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>

#include "core/ProductProfile/ProductProfile.h"
#include "desk/BlockStatistics.h"
#include "desk/DeskClock.h"
#include "desk/DeskSession.h"
#include "desk/JobStatistics.h"
#include "desk/Options.h"
#include "desk/OutputWriter.h"
#include "desk/ProductRoot.h"
#include "desk/Refusal.h"
#include "desk/soundcard/Quiescence.h"
#include "desk/soundcard/VirtualCard.h"
#include "proj/runner/Runner.h"
#include "utility/BackgroundJobs.h"
#include "utility/Exception.h"
#include "utility/ProductPaths.h"
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

// Where the amplifier will look for it.
void refuseMissingCabinet(const std::string& name, const ProductRoot& root) {
    if (name == "none" || name == "None") return;
    ProductPaths::set(root.homeRoot.string(), root.userData.string());
    const bool isPath = !name.empty() && name.front() == '/';
    const std::string file = ProductPaths::resolve(
        (isPath ? name : std::string(ProductPaths::kUserData) + "/userIRs/" + name) + ".wav");
    if (!std::filesystem::is_regular_file(file))
        throw Refusal("--cabinet " + name + ": there is no " + file +
                      "; name a response without its .wav, or none");
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
    else if (!options.loop)
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
    if (options.cabinet) refuseMissingCabinet(*options.cabinet, root);
    const ProductProfile profile((root.homeRoot / "product_profile.json").string());
    settings.sensitiveGainDb = profile.getDreGainDeltaDb();
    VirtualCard& card = VirtualCard::instance();
    card.configure(std::move(settings));
    BlockStatistics blocks(
        card, std::chrono::nanoseconds(std::llround(VirtualCard::kPeriodFrames * 1e9 / kRateHz)));
    const JobStatistics jobs(card);
    OutputWriter writer(card, blocks, jobs, options.outFile, options.reportFile);

    DeskSession session(options, card, writer);
    DeskClock clock(card.virtualTime());
    const bool isVirtual = options.clock == VirtualCard::ClockMode::Virtual;
    Quiescence others;
    card.virtualTime().setAwaitRest([&others] {
        // Helpers look for work all the time: theirs is counted. In real time they have a block for a block's
        // job and longer for a tail's.
        BackgroundJobs::waitUntilIdle();
        others.await();
    });

    Platform platform = productPlatform();
    platform.homeRoot = root.homeRoot;
    platform.userData = root.userData;
    platform.clock = isVirtual ? &clock : nullptr;
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

int refuse(const char* reason) {
    std::fprintf(stderr, "tarvek-desk: %s\n", reason);
    return kRefused;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const std::optional<Options> options = Options::parse(argc, argv);
        return options ? play(*options) : 0;
    } catch (const std::exception& error) {
        return refuse(error.what());
    }
}
