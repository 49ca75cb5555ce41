/* Memory that is about to be written from one end to the other. */
#ifndef FRAMEWORK_FIRST_TOUCH_H
#define FRAMEWORK_FIRST_TOUCH_H

#include <cstddef>

namespace framework {

/*
 * Asks the system for the pages of new memory at once, instead of one exception each when they are touched; for
 * megabytes, of which nearly all will be used. A wish: without it the memory is as good, only slower.
 */
void touch_ahead(void *memory, std::size_t size);

} // namespace framework

#endif
