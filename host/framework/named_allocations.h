/* The books of dtf_strdup() and plat_named_free(). */
#ifndef FRAMEWORK_NAMED_ALLOCATIONS_H
#define FRAMEWORK_NAMED_ALLOCATIONS_H

#include <cstddef>

namespace framework {

/* dtf_strdup() copies of this process that were not released yet; a leak check compares it before and after. */
std::size_t live_named_allocations();

} // namespace framework

#endif
