/*
 * Runs a target over kept inputs and over variations of each, the same ones every time, without a fuzzer.
 * usage: PROGRAM FLOOR FOLDER
 */
#include "input.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace {

constexpr unsigned variations = 10;

/* Some bytes changed, and now and then a part cut off or more behind it. */
std::string varied(std::string bytes, std::mt19937 &random)
{
    if (random() % 4 == 0)
        bytes.resize(random() % (bytes.size() + 1));
    for (auto more = random() % 4 == 0 ? random() % 200 : 0; more > 0; --more)
        bytes += static_cast<char>(random());
    for (auto changes = random() % 8; changes > 0 && !bytes.empty(); --changes)
        bytes[random() % bytes.size()] = static_cast<char>(random());
    return bytes;
}

} // namespace

int main(int argc, char **argv)
try {
    if (argc != 3)
        return 2;
    unsigned long inputs = 0;
    for (const auto &entry : std::filesystem::directory_iterator(argv[2])) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string kept{std::istreambuf_iterator<char>(file), {}};
        std::mt19937 random(1);
        for (unsigned variation = 0; variation <= variations; ++variation) {
            const std::string bytes = variation == 0 ? kept : varied(kept, random);
            /* Shown when the input ends the process. */
            std::fprintf(stderr, "%s, variation %u\n", entry.path().c_str(), variation);
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
        }
        ++inputs;
    }
    std::printf("inputs=%lu with %u variations of each\n", inputs, variations);
    return inputs < std::stoul(argv[1]) ? 1 : 0;
} catch (const std::exception &failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
