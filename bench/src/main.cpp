// tarvek-bench: the cost of a 32-frame block of every part of the sound, with a guitar as its input.
#include <CLI/CLI.hpp>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sys/resource.h>

#include "Cases.h"
#include "Measure.h"
#include "Reference.h"
#include "utility/RealtimeThread.h"
#include "wav/GuitarFile.h"

namespace {

// Long enough for loud and quiet playing, short enough to stay in the cache beside the unit under test.
constexpr int kGuitarBlocks = 1378;
constexpr int kRepeats = 60;

std::vector<float> loadGuitar(const std::string& path) {
    const tvk::GuitarFile file(path, static_cast<int>(bench::kSampleRateHz));
    std::vector<float> guitar = file.input(0);
    guitar.resize(static_cast<std::size_t>(kGuitarBlocks * bench::kBlockLength));
    return guitar;
}

std::string defaultGuitar() {
    const std::filesystem::path folder = TARVEK_BENCH_GUITAR;
    std::vector<std::string> files;
    if (std::filesystem::is_directory(folder)) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.path().extension() == ".wav") files.push_back(entry.path().string());
        }
    }
    std::sort(files.begin(), files.end());
    return files.empty() ? (folder / "guitar.wav").string() : files.front();
}

long peakMemoryKib() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

nlohmann::ordered_json binarySizes() {
    nlohmann::ordered_json sizes;
    const auto folder = std::filesystem::canonical("/proc/self/exe").parent_path();
    for (const char* program : {"tarvek", "tarvek-desk", "tarvek-render", "tarvek-bench"}) {
        if (std::filesystem::exists(folder / program))
            sizes[program] = std::filesystem::file_size(folder / program);
    }
    return sizes;
}

void writeSummary(const std::string& path, const std::vector<float>& guitar) {
    nlohmann::ordered_json costs;
    nlohmann::ordered_json worst;
    const tvk::RealtimeThreadScope denormalsFlushed;
    double reference = bench::measureReference(40);
    for (const auto& named : bench::cases()) {
        const auto unit = named.make();
        const bench::Cost cost = bench::measure(*unit, guitar, kRepeats);
        costs[named.name] = cost.meanMicroseconds;
        worst[named.name] = cost.worstOverMean;
        // Spread over the run, so that a machine that slows down slows both sides of a ratio.
        reference = std::min(reference, bench::measureReference(5));
    }

    nlohmann::ordered_json ratios;
    std::printf("reference %.2f us: %s\n%-28s %10s %10s %12s\n", reference, bench::Reference::name(),
                "cost of a 32-frame block", "us", "ratio", "worst/mean");
    for (const auto& [name, cost] : costs.items()) {
        ratios[name] = cost.get<double>() / reference;
        std::printf("%-28s %10.3f %10.4f %12.2f\n", name.c_str(), cost.get<double>(),
                    ratios[name].get<double>(), worst[name].get<double>());
    }
    std::printf("peak memory %ld KiB\n", peakMemoryKib());

    const nlohmann::ordered_json summary{{"reference", bench::Reference::name()},
                                         {"reference_us", reference},
                                         {"ratios", ratios},
                                         {"us_per_block", costs},
                                         {"worst_block_over_mean", worst},
                                         {"peak_memory_kib", peakMemoryKib()},
                                         {"binary_bytes", binarySizes()}};
    std::ofstream file(path);
    file << summary.dump(2) << '\n';
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

void registerBenchmarks(const std::vector<float>& guitar) {
    benchmark::RegisterBenchmark("reference_fft_8192_pair", [](benchmark::State& state) {
        bench::Reference reference;
        for (auto _ : state)
            reference.run();
    });
    for (const auto& named : bench::cases()) {
        benchmark::RegisterBenchmark(named.name.c_str(), [&named, &guitar](benchmark::State& state) {
            const tvk::RealtimeThreadScope denormalsFlushed;
            const auto unit = named.make();
            int i = 0;
            for (auto _ : state) {
                unit->process(guitar.data() + i * bench::kBlockLength, i);
                i = i + 1 < kGuitarBlocks ? i + 1 : 0;
            }
        });
    }
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"The cost of a 32-frame block of every part of the sound, with a guitar as its input."};
    std::string summaryPath;
    std::string guitarPath = defaultGuitar();
    app.add_option("--summary", summaryPath,
                   "Write costs, and their ratios to an 8192-point transform pair, as JSON and end.\n"
                   "Example: tarvek-bench --summary bench.json");
    app.add_option("--guitar", guitarPath, "The recording to play.\nExample: tarvek-bench --guitar riff.wav")
        ->capture_default_str();
    app.allow_extras();
    app.footer("Other options go to Google Benchmark, for example --benchmark_filter=valve");
    CLI11_PARSE(app, argc, argv);

    try {
        const std::vector<float> guitar = loadGuitar(guitarPath);
        if (!summaryPath.empty()) {
            writeSummary(summaryPath, guitar);
            return 0;
        }
        std::vector<std::string> extras = app.remaining();
        std::vector<char*> arguments{argv[0]};
        for (std::string& extra : extras)
            arguments.push_back(extra.data());
        int count = static_cast<int>(arguments.size());
        benchmark::Initialize(&count, arguments.data());
        if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
        registerBenchmarks(guitar);
        benchmark::RunSpecifiedBenchmarks();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tarvek-bench: %s\n", error.what());
        return 2;
    }
    return 0;
}
