/* Names and texts of result codes, the framework's own codes among them. */
#ifndef FRAMEWORK_FAULTS_H
#define FRAMEWORK_FAULTS_H

#include "dtf.h"

namespace framework {

/* Codes of the framework itself. A plug-in passes them on unchanged. */

/* A node was not pushed: the node hierarchy holds DTF_HIERARCHY_MAX levels. */
constexpr faultno fault_hierarchy_full = 0xaaf3a200;
/* A list frame or an instance-tree entry was not pushed. */
constexpr faultno fault_stack_full = 0xaaf3a400;
/* A schema path that names nothing, or that is deeper than path_table::max_segments. */
constexpr faultno fault_bad_path = 0xaaf3a600;
/* A list key of a request differs from the leaf it refers to. */
constexpr faultno fault_leafref_mismatch = 0xaaf3a800;
constexpr faultno fault_no_memory = 0xaaf3aa00;

/* The code's name, such as "FAULT_SKIP_ENTRY"; null for a code nobody registered. */
const char *fault_name(faultno code);

/*
 * Makes fault_name() and fault_strerror() know a further code (a client library's, say). Both texts must stay for
 * the life of the process. A code registered twice keeps its first texts. Safe from any thread.
 */
void register_fault(faultno code, const char *name, const char *text);

} // namespace framework

#endif
