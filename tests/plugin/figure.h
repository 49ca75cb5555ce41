#pragma once
#include <cstdio>
#include <gtest/gtest.h>
#include <string>

/* Counts the cases of a loop, prints how many there were, and fails below its floor or where one was wrong. */
struct figure {
    const char *name;
    std::size_t floor, cases = 0, wrong = 0;
    void expect(const std::string &difference)
    {
        ++cases;
        if (!difference.empty() && ++wrong <= 3)
            ADD_FAILURE() << name << ": " << difference;
    }
    ~figure()
    {
        std::printf("%s=%zu wrong=%zu\n", name, cases, wrong);
        EXPECT_GE(cases, floor) << name;
        EXPECT_EQ(wrong, 0u) << name;
    }
};
