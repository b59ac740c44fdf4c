// tarvek-picture IN.wav OUT.wav PICTURE.svg: waveform and spectrum before and after the amplifier.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>

#include "picture/BeforeAfter.h"
#include "utility/Exception.h"
#include "wav/GuitarFile.h"

namespace {

constexpr int kRateHz = 44100;
constexpr int kRefused = 2;

int refuse(std::string reason) {
    std::replace(reason.begin(), reason.end(), '\n', ' ');
    std::fprintf(stderr, "tarvek-picture: %s\n", reason.c_str());
    return kRefused;
}

// The first channel of a file: of the guitar its normal input, of the amplifier's output the speaker feed.
tvk::picture::Recording record(const char* what, const std::string& path) {
    const tvk::GuitarFile file(path, kRateHz);
    return {std::string(what) + " (" + std::filesystem::path(path).filename().string() + ")", file.input(0)};
}

void save(const std::string& path, const std::string& text) {
    std::ofstream file(path);
    file << text;
    file.close();
    if (!file) TVK_THROW("cannot write %s", path.c_str());
}

}  // namespace

int main(int argc, char** argv) {
    std::string guitar;
    std::string amplifier;
    std::string picture;
    CLI::App app{
        "Draws waveform and spectrum of a guitar before and after the amplifier.\n"
        "Example: tarvek-picture guitar.wav amp.wav amp.svg",
        "tarvek-picture"};
    app.set_help_flag("-h,--help", "This text. Example: --help");
    app.add_option("IN.wav", guitar,
                   "The guitar, WAV at 44100 Hz; of two channels the first. Example: guitar.wav")
        ->required();
    app.add_option(
           "OUT.wav", amplifier,
           "What the amplifier played, from the same moment on; channel 0, the speaker feed, is drawn. "
           "Example: amp.wav")
        ->required();
    app.add_option("PICTURE.svg", picture, "The picture to write. Example: amp.svg")->required();
    try {
        app.parse(argc, argv);
        save(picture, tvk::picture::drawBeforeAfter(record("Before: guitar", guitar),
                                                    record("After: speaker feed", amplifier), kRateHz));
    } catch (const CLI::CallForHelp&) {
        std::printf("%s", app.help().c_str());
    } catch (const std::exception& error) {
        return refuse(error.what());
    }
    return 0;
}
