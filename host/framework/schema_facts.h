/*
 * The little of the YANG modules that trees alone do not tell: which elements are lists and what keys them, which
 * leaves JSON writes without quotes (RFC 7951, section 6), and which module has which namespace. The modules themselves
 * are in yang/; a test compares the two.
 */
#ifndef FRAMEWORK_SCHEMA_FACTS_H
#define FRAMEWORK_SCHEMA_FACTS_H

#include "dtf.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace framework {

enum class schema_kind : std::uint8_t {
    container,
    list,
    text_leaf,  /* a JSON string: text, enumerations, 64-bit integers, decimal64 */
    bare_leaf,  /* a JSON number or boolean: integers up to 32 bits, booleans */
    empty_leaf, /* of YANG type empty: [null] */
};

/* One data node of a module. All of a module's nodes are in the module's own namespace. */
struct schema_node {
    std::string_view tag;
    schema_kind kind;
    bool is_key; /* a key leaf of the list it stands in */
    std::span<const schema_node> children;

    /* The child of that name, or null. */
    const schema_node *child(std::string_view name) const;
};

struct schema_module {
    std::string_view name;
    const char *ns; /* namespace URI */
    std::span<const schema_node> top;
};

std::span<const schema_module> schema_modules();

/* Null for a module that is not ours. */
const schema_module *find_module_by_name(std::string_view name);
const schema_module *find_module_by_namespace(std::string_view ns);

/* The node of an absolute schema path (tags joined by "/"), or null. A closing "/" is ignored. */
const schema_node *find_schema_node(std::string_view path);

/*
 * What is known of `node`, a child of `above`. `facts_above` is what is known of `above`: null where nothing is, or
 * where `above` is a virtual root (a node without tag), whose children are top-level nodes.
 */
const schema_node *schema_of(const dtf_datatree &node, const dtf_datatree &above, const schema_node *facts_above);

/* Whether two namespaces are the same; a node may have none. */
bool same_namespace(const char *a, const char *b);

} // namespace framework

#endif
