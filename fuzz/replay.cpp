/*
 * Runs a target over kept inputs and over CHMON_VARIATIONS (20) of each, the same ones every time, without a fuzzer.
 * The process must not grow meanwhile. usage: PROGRAM FLOOR FOLDER
 */
#include "input.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

extern "C" __attribute__((weak)) std::size_t __sanitizer_get_current_allocated_bytes();

namespace {

/* Half of them a kept input with some bytes changed, maybe cut; the others, and what is added, are any bytes. */
std::string varied(const std::string &kept, std::mt19937 &random)
{
    std::string bytes = random() % 2 == 0 ? kept : "";
    if (random() % 4 == 0)
        bytes.resize(random() % (bytes.size() + 1));
    for (auto changes = random() % 8; changes > 0 && !bytes.empty(); --changes)
        bytes[random() % bytes.size()] = static_cast<char>(random());
    for (auto more = bytes.empty() || random() % 4 == 0 ? random() % 500 : 0; more > 0; --more)
        bytes += static_cast<char>(random());
    return bytes;
}

/* Bytes of memory in use: of the heap where the sanitizer counts them, else what the system gave the process. */
std::size_t memory_in_use()
{
    if (__sanitizer_get_current_allocated_bytes != nullptr)
        return __sanitizer_get_current_allocated_bytes();
    std::size_t size = 0, pages = 0;
    std::ifstream("/proc/self/statm") >> size >> pages;
    return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

void run(const std::string &bytes)
{
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
}

} // namespace

int main(int argc, char **argv)
try {
    if (argc != 3)
        return 2;
    const char *const wanted = std::getenv("CHMON_VARIATIONS");
    const unsigned long variations = wanted == nullptr ? 20 : std::stoul(wanted);
    std::vector<std::string> kept;
    for (const auto &file : std::set<std::filesystem::path>(std::filesystem::directory_iterator(argv[2]), {})) {
        std::ifstream stream(file, std::ios::binary);
        kept.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
        std::fprintf(stderr, "%s\n", file.c_str()); /* shown when the input ends the process */
        run(kept.back());
    }
    std::mt19937 random(1);
    std::size_t before = 0;
    for (unsigned long round = 0; round < variations; ++round) {
        if (round == variations / 4)
            before = memory_in_use();
        for (std::size_t n = 0; n < kept.size(); ++n) {
            const std::string bytes = varied(kept[n], random);
            std::fprintf(stderr, "variation %lu of the input %zu of them\n", round, n);
            run(bytes);
        }
    }
    const auto grown = static_cast<std::ptrdiff_t>(memory_in_use() - before);
    std::printf("inputs=%zu variations=%zu growth=%td\n", kept.size(), kept.size() * variations, grown);
    return kept.size() < std::stoul(argv[1]) ||
           grown > (__sanitizer_get_current_allocated_bytes != nullptr ? 4096 : 1 << 20);
} catch (const std::exception &failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
