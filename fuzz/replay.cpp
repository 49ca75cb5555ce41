/* Runs a target over kept inputs, without a fuzzer. usage: PROGRAM FLOOR FOLDER */
#include "input.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

int main(int argc, char **argv)
try {
    if (argc != 3)
        return 2;
    unsigned long inputs = 0;
    for (const auto &entry : std::filesystem::directory_iterator(argv[2])) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        std::fprintf(stderr, "%s\n", entry.path().c_str()); /* shown when the input ends the process */
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
        ++inputs;
    }
    std::printf("inputs=%lu\n", inputs);
    return inputs < std::stoul(argv[1]) ? 1 : 0;
} catch (const std::exception &failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
