/* Bounded copies against a reference, with both ends of the destination guarded by pages that cannot be touched. */
#include "dtf.h"
#include "guarded_page.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(strings, copies_and_appends_keep_what_fits)
{
    guarded_page to;
    guarded_page from;
    std::size_t cases = 0;
    for (std::size_t size = 1; size <= 9; ++size) {
        for (std::size_t length = 0; length <= 11; ++length) {
            char *const source = from.last(length + 1);
            source[length] = '\0';
            const std::string text(source, length);
            const auto check = [&](int result, const char *destination, const std::string &whole) {
                EXPECT_EQ(destination, whole.substr(0, size - 1));
                EXPECT_EQ(result != 0, whole.size() > size - 1) << size << " " << length;
                ++cases;
            };
            char *destination = to.last(size);
            check(dtf_strcpy_s("test", destination, size, source), destination, text);
            for (std::size_t count = 0; count <= 12; ++count) {
                destination = to.last(size);
                check(dtf_strncpy_s("test", destination, size, source, count), destination, text.substr(0, count));
            }
            for (std::size_t there = 0; there < size; ++there) {
                destination = to.last(size);
                destination[there] = '\0';
                check(dtf_strcat_s("test", destination, size, source), destination, std::string(there, '#') + text);
            }
        }
    }
    EXPECT_GE(cases, 1900U);
}

TEST(strings, odd_arguments_are_answered)
{
    guarded_page to, from;
    for (std::size_t size = 0; size <= 3; ++size) {
        /* Three readable characters and no terminator. */
        EXPECT_NE(dtf_strncpy_s("test", to.last(size), size, from.last(3), 3), 0);
        EXPECT_NE(dtf_strcat_s("test", to.last(size), size, "") != 0, size != 0);
        char *const destination = to.last(size);
        EXPECT_EQ(dtf_strcpy_s("test", destination, size, nullptr) == 0 && *destination == '\0', size != 0);
        EXPECT_NE(dtf_strcpy_s("test", nullptr, size, "x"), 0);
    }
}

} // namespace
