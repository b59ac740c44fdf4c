// Runs a fuzzer's function on seeds, and on inputs made of them by cutting, doubling, overwriting and
// joining, with random numbers that are the same in every run.
//
// What the inputs leave in memory is looked at too: the heap may not have grown between the first half and
// the second.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kLongestInput = 4096;
constexpr std::size_t kGrowthBytes = std::size_t{1} << 20;

std::vector<Bytes> seedsOf(const std::string& folder) {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    std::vector<Bytes> seeds;
    for (const auto& path : paths) {
        std::ifstream file(path, std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return seeds;
}

class Mutator {
public:
    explicit Mutator(const std::vector<Bytes>& seeds) : seeds_(seeds) {}

    Bytes next() {
        Bytes input = seeds_[upTo(seeds_.size())];
        for (std::size_t steps = 1 + upTo(6); steps > 0; --steps)
            mutate(input);
        if (input.size() > kLongestInput) input.resize(kLongestInput);
        return input;
    }

private:
    using Offset = Bytes::difference_type;

    // 0 to count - 1; 0 for no count.
    std::size_t upTo(std::size_t count) { return count == 0 ? 0 : random_() % count; }
    Offset placeIn(const Bytes& bytes) { return static_cast<Offset>(upTo(bytes.size() + 1)); }

    void mutate(Bytes& input) {
        const Offset from = placeIn(input);
        const Offset to = std::min<Offset>(from + static_cast<Offset>(upTo(16)), std::ssize(input));
        const Bytes piece(input.begin() + from, input.begin() + to);
        switch (upTo(7)) {
            case 0:
                if (!input.empty()) input[upTo(input.size())] ^= static_cast<std::uint8_t>(1u << upTo(8));
                return;
            case 1:
                if (!input.empty()) input[upTo(input.size())] = static_cast<std::uint8_t>(random_());
                return;
            case 2:
                input.insert(input.begin() + from, static_cast<std::uint8_t>(random_()));
                return;
            case 3:
                input.erase(input.begin() + from, input.begin() + to);
                return;
            case 4:
                input.insert(input.begin() + placeIn(input), piece.begin(), piece.end());
                return;
            case 5:
                input.resize(static_cast<std::size_t>(from));
                return;
            default: {
                const Bytes& other = seeds_[upTo(seeds_.size())];
                input.insert(input.begin() + from, other.begin() + placeIn(other), other.end());
            }
        }
    }

    const std::vector<Bytes>& seeds_;
    std::mt19937 random_{1};
};

std::size_t heapBytes() {
    return mallinfo2().uordblks;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s SEEDS COUNT\n", argv[0]);
        return 2;
    }
    const std::vector<Bytes> seeds = seedsOf(argv[1]);
    const long count = std::atol(argv[2]);
    if (seeds.empty() || count < 2) {
        std::fprintf(stderr, "no seeds, or not two inputs\n");
        return 2;
    }
    for (const Bytes& seed : seeds)
        LLVMFuzzerTestOneInput(seed.data(), seed.size());
    Mutator mutator(seeds);
    std::size_t before = 0;
    for (long i = 0; i < count; ++i) {
        if (i == count / 2) before = heapBytes();
        const Bytes input = mutator.next();
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    const std::size_t after = heapBytes();
    std::printf("%zu seeds, %ld mutations, heap %zu and then %zu bytes\n", seeds.size(), count, before,
                after);
    std::fflush(nullptr);
    // Threads of the function's objects may still run.
    std::_Exit(after <= before + kGrowthBytes ? 0 : 1);
}
