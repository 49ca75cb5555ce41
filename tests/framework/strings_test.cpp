/* Bounded copies against a reference, with both ends of the destination guarded by pages that cannot be touched. */
#include "dtf.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <string_view>

namespace {

/* One page whose end is followed by memory that faults. */
class guarded_page
{
  public:
    guarded_page() : size_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE)))
    {
        base_ =
            static_cast<char *>(mmap(nullptr, 2 * size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(base_ + size_, size_, PROT_NONE);
    }
    guarded_page(const guarded_page &) = delete;
    guarded_page &operator=(const guarded_page &) = delete;
    ~guarded_page() { munmap(base_, 2 * size_); }

    /* The last `size` bytes, filled with a pattern without terminator. */
    char *last(std::size_t size)
    {
        std::memset(base_, '#', size_);
        return base_ + size_ - size;
    }

  private:
    std::size_t size_;
    char *base_;
};

struct expectation {
    std::string text;
    bool cut;
};

expectation bounded(std::string_view head, std::string_view tail, std::size_t size)
{
    const std::string whole = std::string(head) + std::string(tail);
    return {whole.substr(0, size - 1), whole.size() > size - 1};
}

TEST(strings, copies_and_appends_keep_what_fits)
{
    guarded_page to;
    guarded_page from;
    std::size_t cases = 0;
    for (std::size_t size = 1; size <= 9; ++size) {
        for (std::size_t length = 0; length <= 11; ++length) {
            char *const source = from.last(length + 1);
            source[length] = '\0';
            const std::string_view text(source, length);
            const auto check = [&](int result, const char *destination, const expectation &wanted) {
                EXPECT_EQ(destination, wanted.text);
                EXPECT_EQ(result != 0, wanted.cut) << size << " " << length;
                ++cases;
            };
            char *destination = to.last(size);
            check(dtf_strcpy_s("test", destination, size, source), destination, bounded("", text, size));
            for (std::size_t count = 0; count <= 12; ++count) {
                destination = to.last(size);
                check(dtf_strncpy_s("test", destination, size, source, count), destination,
                      bounded("", text.substr(0, count), size));
            }
            for (std::size_t there = 0; there < size; ++there) {
                destination = to.last(size);
                destination[there] = '\0';
                check(dtf_strcat_s("test", destination, size, source), destination,
                      bounded(std::string(there, '#'), text, size));
            }
        }
    }
    EXPECT_GE(cases, 1900U);
}

TEST(strings, nothing_is_written_outside_odd_destinations)
{
    guarded_page page;
    for (std::size_t size = 0; size <= 3; ++size) {
        /* Exactly `count` readable characters, no terminator behind them. */
        char *const source = page.last(3);
        guarded_page to;
        char *const destination = to.last(size);
        EXPECT_EQ(dtf_strncpy_s("test", destination, size, source, 3) != 0, size < 4);
        EXPECT_NE(dtf_strcat_s("test", to.last(size), size, "") != 0, size != 0);
        if (size != 0) {
            EXPECT_EQ(dtf_strcpy_s("test", destination, size, nullptr), 0);
            EXPECT_STREQ(destination, "");
        }
        EXPECT_NE(dtf_strcpy_s("test", nullptr, size, "x"), 0);
    }
}

} // namespace
