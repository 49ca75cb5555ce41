/* Sizes of the plug-in's text buffers, terminator included. */
#ifndef TEXT_SIZE_H
#define TEXT_SIZE_H

#include <cstddef>

/* A monitor's name in any of its forms. */
constexpr size_t name_size = 20;
/* A value, or a path in a data tree. */
constexpr size_t value_size = 200;
/* A path in the system database. */
constexpr size_t item_path_size = 256;

#endif
