#pragma once
#include "in_children.h"
#include <string>
#include <vector>

/* Every text that is put together of one part from each row. */
inline std::vector<std::string> products(const std::vector<std::vector<std::string>> &rows)
{
    std::vector<std::string> all = {""};
    for (const auto &row : rows) {
        std::vector<std::string> longer;
        for (const std::string &before : all)
            for (const std::string &part : row)
                longer.push_back(before + part);
        all = std::move(longer);
    }
    return all;
}

/* Counts the cases of a loop and what was wrong with them; at its end it prints the counts, from the kind `first` on,
 * and fails below its floor or where one was wrong. */
struct figure {
    enum kind { unbalanced, leaks, wrong_code, crashes, wrong, kinds };
    static constexpr const char *words[kinds] = {"unbalanced", "leaks", "wrong_code", "crashes", "wrong"};
    struct counts {
        std::size_t cases, of[kinds];
    };
    const char *name;
    std::size_t floor;
    kind first = wrong;
    counts &so_far = shared_with_children<counts>();

    /* One case: "" or what was wrong with it. */
    void expect(const std::string &difference)
    {
        ++so_far.cases;
        const auto tells = [&](const char *text) { return difference.find(text) != std::string::npos; };
        so_far.of[unbalanced] += tells(" hierarchy\n") || tells(" output list\n") || tells(" instance-tree stack\n");
        so_far.of[leaks] +=
            tells(" tokens\n") || tells(" walks\n") || tells(" bindings\n") || tells(" blocks\n") || tells(" copies\n");
        so_far.of[wrong_code] += tells("expected rc=");
        so_far.of[wrong] += !difference.empty();
        if (!difference.empty() && so_far.of[wrong] <= 3)
            ADD_FAILURE() << name << ": " << difference;
    }
    template <typename value, typename account>
    void equal(const value &is, const account &expected, const std::string &given)
    {
        expect(is == expected ? "" : given + " gives " + testing::PrintToString(is));
    }
    /* Calls f(i) for each i below `count` in child processes, until enough is wrong. */
    template <typename function> void in_children(std::size_t count, function f)
    {
        so_far.of[crashes] += count_crashes(count, 8, [&](std::size_t i) {
            if (so_far.of[wrong] < 3)
                f(i);
        });
    }
    ~figure()
    {
        std::printf("%s=%zu", name, so_far.cases);
        for (std::size_t i = first; i < kinds; ++i)
            std::printf(" %s=%zu", words[i], so_far.of[i]);
        std::printf("\n");
        EXPECT_GE(so_far.cases, floor) << name;
        EXPECT_EQ(so_far.of[wrong] + so_far.of[crashes], 0u) << name;
    }
};
