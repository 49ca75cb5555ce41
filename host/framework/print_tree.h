/* A data tree as text, for the debug log. */
#ifndef FRAMEWORK_PRINT_TREE_H
#define FRAMEWORK_PRINT_TREE_H

#include "dtf.h"
#include "sinks.h"

namespace framework {

/* Writes `label` and then one line per node, indented by depth. `tree` may be null. */
void print_tree(debug_log &log, const dtf_datatree *tree, const char *label);

} // namespace framework

#endif
