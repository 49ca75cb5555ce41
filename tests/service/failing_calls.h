/* Calls by which a store reaches its disk, one of which fails: the program's own definitions are found before libc's.
 */
#ifndef TESTS_SERVICE_FAILING_CALLS_H
#define TESTS_SERVICE_FAILING_CALLS_H

namespace failing {

/* What the chosen call does: an error with an errno, a write of half of its bytes, or the process's end before it. */
enum class how { io_error, no_space, half, death };

/* From now on the `at`th call (from 1; 0: none) does that, once or, where `on` says so, with all that follow it. */
void arm(unsigned at, how fails, bool on = false);

/* Calls since then. */
unsigned calls();

} // namespace failing

#endif
