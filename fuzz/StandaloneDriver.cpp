// Runs a fuzz target without a fuzzing engine, so that the ordinary sanitizer
// build and CI exercise it: each file named on the command line is one input;
// with no files, a fixed number of pseudo-random inputs from a fixed seed.
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size);

int main(int argc, char** argv) {
    if (argc > 1) {
        for (int i = 1; i < argc; ++i) {
            std::ifstream file(argv[i], std::ios::binary);
            if (!file) {
                std::fprintf(stderr, "cannot read %s\n", argv[i]);
                return 1;
            }
            const std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(file)),
                                                  std::istreambuf_iterator<char>());
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
        }
        std::printf("%d inputs replayed\n", argc - 1);
        return 0;
    }
    constexpr int kInputs = 2000;
    std::mt19937 random(20261123);
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < kInputs; ++i) {
        bytes.resize(random() % 4096);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("%d random inputs ran\n", kInputs);
    return 0;
}
