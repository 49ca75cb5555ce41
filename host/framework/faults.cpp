#include "faults.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <mutex>
#include <shared_mutex>
#include <vector>

namespace framework {

namespace {

struct fault_text {
    faultno code;
    const char *name;
    const char *text;
};

/* The codes known from the start, and those registered later. */
struct fault_table {
    std::shared_mutex mutex;
    std::vector<fault_text> texts{
        {FAULT_SUCCESS, "FAULT_SUCCESS", "success"},
        {FAULT_INVALID_ARGS, "FAULT_INVALID_ARGS", "a required argument is missing or not allowed here"},
        {FAULT_TREE_ERROR, "FAULT_TREE_ERROR", "malformed data tree"},
        {FAULT_UNSUPPORTED_TAG, "FAULT_UNSUPPORTED_TAG", "the request holds an element that is not supported"},
        {FAULT_LIST_KEY_ERROR, "FAULT_LIST_KEY_ERROR", "a list key is missing, empty or given twice"},
        {FAULT_KEY_DELETE, "FAULT_KEY_DELETE", "a list key cannot be deleted"},
        {FAULT_SKIP_ENTRY, "FAULT_SKIP_ENTRY", "the list entry does not map and is left out"},
        {FAULT_UNSUPPORTED_AUGMENT, "FAULT_UNSUPPORTED_AUGMENT", "the request adds an element of a foreign namespace"},
        {fault_hierarchy_full, "FAULT_HIERARCHY_FULL", "the data tree is nested too deeply"},
        {fault_stack_full, "FAULT_STACK_FULL", "too many list entries are nested"},
        {fault_bad_path, "FAULT_BAD_PATH", "a schema path cannot be followed"},
        {fault_leafref_mismatch, "FAULT_LEAFREF_MISMATCH", "a list key differs from the leaf that it refers to"},
        {fault_no_memory, "FAULT_NO_MEMORY", "out of memory"},
    };
};

fault_table &table()
{
    static fault_table the_table;
    return the_table;
}

/* Null for an unknown code. The caller holds the lock. */
const fault_text *find(const std::vector<fault_text> &texts, faultno code)
{
    const auto found =
        std::find_if(texts.begin(), texts.end(), [code](const auto &entry) { return entry.code == code; });
    return found == texts.end() ? nullptr : &*found;
}

} // namespace

const char *fault_name(faultno code)
{
    const std::shared_lock lock(table().mutex);
    const fault_text *const known = find(table().texts, code);
    return known == nullptr ? nullptr : known->name;
}

void register_fault(faultno code, const char *name, const char *text)
{
    const std::unique_lock lock(table().mutex);
    if (find(table().texts, code) == nullptr)
        table().texts.push_back({code, name, text});
}

} // namespace framework

extern "C" const char *fault_strerror(faultno code)
{
    const std::shared_lock lock(framework::table().mutex);
    if (const auto *const known = framework::find(framework::table().texts, code))
        return known->text;
    thread_local std::array<char, 32> unknown;
    std::snprintf(unknown.data(), unknown.size(), "unknown fault 0x%08" PRIx32, code);
    return unknown.data();
}
