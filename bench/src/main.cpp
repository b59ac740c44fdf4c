// tarvek-bench: the cost of a 32-frame block of every part of the sound, with a guitar as its input.
#include <CLI/CLI.hpp>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <vector>

#include "Cases.h"
#include "Measure.h"
#include "Reference.h"
#include "utility/RealtimeThread.h"
#include "wav/GuitarFile.h"

namespace {

// A second of guitar: attacks and decays, and short enough to stay in the cache beside the unit under test.
constexpr int kGuitarBlocks = 86 * bench::Case::kBlocksPerTurn;

// The summary's rounds: enough to find each block undisturbed on a busy machine, none started after the time.
constexpr int kRounds = 10;
constexpr double kLastRoundSeconds = 25.0;
constexpr int kRepeatsPerRound = 5;
constexpr int kReferenceRepeatsPerRound = 100;

constexpr int kRefused = 2;  // exit status

std::vector<float> loadGuitar(const std::string& path) {
    const tvk::GuitarFile file(path, static_cast<int>(bench::kSampleRateHz));
    std::vector<float> guitar = file.input(0);
    guitar.resize(static_cast<std::size_t>(kGuitarBlocks) * bench::kBlockLength);
    return guitar;
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
    std::ofstream file(path);
    if (!file) throw std::runtime_error("cannot write " + path);
    const tvk::RealtimeThreadScope denormalsFlushed;
    const auto start = std::chrono::steady_clock::now();
    bench::ReferenceMeasurement reference;
    std::vector<bench::Measurement> measurements;
    for (const auto& named : bench::cases())
        measurements.emplace_back(named, guitar);
    for (int round = 0; round < kRounds; ++round) {
        reference.round(kReferenceRepeatsPerRound);
        for (auto& measurement : measurements)
            measurement.round(kRepeatsPerRound);
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        if (elapsed.count() > kLastRoundSeconds) break;
    }

    nlohmann::ordered_json costs;
    nlohmann::ordered_json ratios;
    nlohmann::ordered_json worst;
    std::printf("reference %.2f us: %s\n", reference.microseconds(), bench::Reference::name());
    std::printf("%-28s %10s %10s %12s\n", "cost of a 32-frame block", "us", "ratio", "worst/mean");
    for (const auto& measurement : measurements) {
        const double cost = measurement.meanMicroseconds();
        const double ratio = cost / reference.microseconds();
        costs[measurement.name()] = cost;
        ratios[measurement.name()] = ratio;
        worst[measurement.name()] = measurement.worstOverMean();
        std::printf("%-28s %10.3f %10.4f %12.2f\n", measurement.name().c_str(), cost, ratio,
                    measurement.worstOverMean());
    }
    // The amp with everything on: its audio thread, tank, the tank's tail, the cabinet's tail.
    double allThreads = 0.0;
    for (const char* part : {"flagship_audio_thread", "tank_front", "tank_tail", "ir_processor_4096_helper"})
        allThreads += costs.at(part).get<double>();
    costs["flagship_all_threads"] = allThreads;
    ratios["flagship_all_threads"] = allThreads / reference.microseconds();
    std::printf("%-28s %10.3f %10.4f\n", "flagship_all_threads", allThreads,
                allThreads / reference.microseconds());
    const long memory = peakMemoryKib();
    std::printf("peak memory %ld KiB\n", memory);
    const nlohmann::ordered_json summary{{"reference", bench::Reference::name()},
                                         {"reference_us", reference.microseconds()},
                                         {"ratios", ratios},
                                         {"us_per_block", costs},
                                         {"worst_block_over_mean", worst},
                                         {"peak_memory_kib", memory},
                                         {"binary_bytes", binarySizes()}};
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
                if (i % bench::Case::kBlocksPerTurn == 0) {
                    state.PauseTiming();
                    unit->control(i / bench::Case::kBlocksPerTurn);
                    state.ResumeTiming();
                }
                unit->process(guitar.data() + i * bench::kBlockLength);
                if (unit->hasBackground()) {
                    state.PauseTiming();
                    unit->background();
                    state.ResumeTiming();
                }
                i = i + 1 < kGuitarBlocks ? i + 1 : 0;
            }
        });
    }
}

int run(int argc, char** argv) {
    CLI::App app{"The cost of a 32-frame block of every part of the sound, with a guitar as its input."};
    std::string summaryPath;
    std::string guitarPath = TARVEK_BENCH_GUITAR;
    app.add_option("--summary", summaryPath,
                   "Write costs, and their ratios to an 8192-point transform pair, as JSON and end.\n"
                   "Example: tarvek-bench --summary bench.json");
    app.add_option("--guitar", guitarPath, "The recording to play.\nExample: tarvek-bench --guitar riff.wav")
        ->capture_default_str();
    app.allow_extras();
    app.footer("Other options go to Google Benchmark, for example --benchmark_filter=valve");
    CLI11_PARSE(app, argc, argv);

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
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return kRefused;
    registerBenchmarks(guitar);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tarvek-bench: %s\n", error.what());
        return kRefused;
    }
}
