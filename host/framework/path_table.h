/*
 * Schema paths, parsed once per walk. A plug-in names the same few dozen paths, literals of its own, for every leaf it
 * adds: the table knows them by their addresses. A path that may change, in a buffer, is looked up by its text.
 */
#ifndef FRAMEWORK_PATH_TABLE_H
#define FRAMEWORK_PATH_TABLE_H

#include "arena.h"
#include "dtf.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace framework {

/* `node_kind` of a list entry, and the bit of `kind_flags` that says it holds. */
inline constexpr std::uint32_t list_entry_kind = 4;
inline constexpr std::uint8_t kind_is_set = 0x04;

inline bool is_list_entry(const dtf_datatree &node)
{
    return (node.kind_flags & kind_is_set) != 0 && node.node_kind == list_entry_kind;
}

/* A list of one of the models, as the landing of added nodes sees it. */
struct list_schema {
    std::string path;
    std::vector<std::string_view> keys;
    /* The list describes configuration, so that an entry without its keys is none (RFC 7950, 7.8.2). */
    bool needs_keys = false;

    bool is_key(std::string_view tag) const;
};

struct path_segment {
    /*
     * A new node for the segment, still without namespace, value and children. Its tag lies in the memory of the output
     * tree, one address per text: within one tree, equal tags are equal pointers.
     */
    dtf_datatree blank;
    /* The list whose entry this segment names; null for a container or a leaf. */
    const list_schema *list;

    const char *tag() const { return blank.tag; }
    /* The segment is a key leaf of the list before it. */
    bool is_key() const { return blank.is_key != 0; }
};

struct parsed_path {
    std::string text;
    std::vector<path_segment> segments;
    /* One tag without a leading "/": a child of the node it is added to. */
    bool relative = false;
    /* A closing "/": the path names the list entry itself. */
    bool closing_slash = false;
    /* A node below a list entry, all of whose lists are named before it. */
    bool is_below_list = false;
    /* How many segments are list entries, and the number of segments down to the last of them. */
    std::uint32_t list_count = 0;
    std::uint32_t lists_end = 0;

    /* True when the list at `ancestor` is above the node that this path names. */
    bool is_below(const parsed_path &ancestor) const;
};

class path_table
{
  public:
    /* Tags are kept in `memory`, where the output tree that uses them lives. */
    explicit path_table(arena &memory) : memory_(&memory) {}

    /*
     * The parsed form of `path`, which stays for the life of the table; null for a path that names nothing (empty, an
     * empty segment) or is deeper than `max_segments`.
     */
    const parsed_path *find(const char *path)
    {
        const literal &known = literals_[slot_of(path)];
        return known.address == path ? known.path : look_up(path);
    }

    /* Makes the last segment of `path` a list in all parsed paths; for lists that the schema facts do not know. */
    void mark_list(const parsed_path &path);

    static constexpr std::size_t max_segments = 16;

  private:
    struct literal {
        const char *address = nullptr;
        const parsed_path *path = nullptr;
    };

    const parsed_path *look_up(const char *path);
    const parsed_path *parse(std::string_view text);
    const char *intern(std::string_view tag);
    const list_schema *list_at(std::string_view path);
    void bind_lists(parsed_path &path);

    /* Literals lie close together and differ in their low bits. */
    static std::size_t slot_of(const char *path)
    {
        const auto address = reinterpret_cast<std::uintptr_t>(path);
        return (address ^ (address >> 7)) % slots;
    }

    static constexpr std::size_t slots = 128;

    arena *memory_;
    std::vector<literal> literals_ = std::vector<literal>(slots); /* not on the stack that a walk needs */
    /* All addresses met, with null for those of buffers. */
    std::unordered_map<const char *, const parsed_path *> by_address_;
    std::unordered_map<std::string_view, std::unique_ptr<parsed_path>> by_text_;
    std::map<std::string, std::unique_ptr<list_schema>, std::less<>> lists_;
    std::unordered_set<std::string_view> tags_;
};

} // namespace framework

#endif
