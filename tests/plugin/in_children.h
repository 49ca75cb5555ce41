/* Loops run in child processes, so that what ends a process is counted like any other fault. */
#pragma once
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

/* Counts that a process and its children write together. They stay as long as the process. */
template <typename counts> counts &shared_with_children()
{
    void *const page = mmap(nullptr, sizeof(counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return *new (page) counts{};
}

/* Calls f(i) for each i below `count`, in `children` processes one after the other. The number of those that did not
 * end by themselves: by a signal (a byte beyond a guarded page; a loop without end, after two minutes and a second for
 * each i), by a sanitizer's finding, or otherwise. What fails in a child fails the test. */
template <typename function> std::size_t count_crashes(std::size_t count, std::size_t children, function f)
{
    constexpr int failed = 77;
    std::size_t crashes = 0;
    for (std::size_t child = 0; child < children; ++child) {
        std::fflush(nullptr);
        const pid_t process = fork();
        if (process == 0)
            [&]() noexcept {
                prctl(PR_SET_PDEATHSIG, SIGKILL);
                alarm(static_cast<unsigned>(120 + count / children));
                for (std::size_t i = count * child / children; i < count * (child + 1) / children; ++i)
                    f(i);
                std::exit(testing::Test::HasFailure() ? failed : 0);
            }();
        int status = 0;
        waitpid(process, &status, 0);
        const bool ended = WIFEXITED(status) && (WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == failed);
        EXPECT_EQ(status, 0) << "cases " << count * child / children << " to " << count * (child + 1) / children;
        crashes += !ended;
    }
    return crashes;
}
