/* An input as a source of choices: what a target builds follows from the bytes, and a longer input builds more. */
#ifndef FUZZ_INPUT_H
#define FUZZ_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace fuzz {

class input
{
  public:
    input(const std::uint8_t *data, std::size_t size) : rest_(reinterpret_cast<const char *>(data), size) {}

    /* The next byte; 0 behind the end, which every target takes for "no more". */
    unsigned byte()
    {
        const unsigned next = rest_.empty() ? 0 : static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(rest_.empty() ? 0 : 1);
        return next;
    }
    std::size_t below(std::size_t limit) { return byte() % limit; }
    template <typename T, std::size_t size> const T &pick(const T (&of)[size]) { return of[below(size)]; }

    /* At most `size` bytes as they are. */
    std::string_view take(std::size_t size)
    {
        const std::string_view taken = rest_.substr(0, size);
        rest_.remove_prefix(taken.size());
        return taken;
    }
    std::string_view rest() { return take(rest_.size()); }
    bool empty() const { return rest_.empty(); }

  private:
    std::string_view rest_;
};

/* A finding: says what it is and ends the process, so that the input is kept. */
[[noreturn]] inline void report(std::string_view what, std::string_view detail)
{
    std::fprintf(stderr, "finding: %.*s: %.*s\n", static_cast<int>(what.size()), what.data(),
                 static_cast<int>(detail.size()), detail.data());
    std::abort();
}

} // namespace fuzz

/* What libFuzzer calls, and the replay of kept inputs. Always 0. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

#endif
