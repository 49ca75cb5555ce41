#pragma once
#include <cstdio>
#include <gtest/gtest.h>
#include <string>

/* Counts the cases of a loop, prints how many there were, and fails below its floor or where one was wrong. A crash
 * ends the program before its figure is printed. */
struct figure {
    const char *name;
    std::size_t floor, cases = 0, wrong = 0, unbalanced = 0, leaks = 0, wrong_code = 0;
    void expect(const std::string &difference)
    {
        ++cases;
        if (difference.empty())
            return;
        const auto tells = [&](const char *words) { return difference.find(words) != std::string::npos; };
        unbalanced += tells(" hierarchy\n") || tells(" output list\n") || tells(" instance-tree stack\n");
        leaks +=
            tells(" tokens\n") || tells(" walks\n") || tells(" bindings\n") || tells(" blocks\n") || tells(" copies\n");
        wrong_code += tells("expected rc=");
        if (++wrong <= 3)
            ADD_FAILURE() << name << ": " << difference;
    }
    ~figure()
    {
        std::printf("%s=%zu wrong=%zu unbalanced=%zu leaks=%zu wrong_code=%zu\n", name, cases, wrong, unbalanced, leaks,
                    wrong_code);
        EXPECT_GE(cases, floor) << name;
        EXPECT_EQ(wrong, 0u) << name;
    }
};
