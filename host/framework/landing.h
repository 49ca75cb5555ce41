/*
 * Where an added schema path lands in the output tree.
 *
 * A schema path does not say which entry of a list it means: it means the one that stands for the list entry the walk
 * is at. For every current list entry of the walk there is a list frame, and a frame remembers, for each output list,
 * the entry that was added last while the frame was the innermost. A path is followed from the entry that the innermost
 * frame has for one of the path's lists; from there on, what is missing is created. So a place is found in the depth of
 * the tree, whatever the number of entries.
 */
#ifndef FRAMEWORK_LANDING_H
#define FRAMEWORK_LANDING_H

#include "arena.h"
#include "dtf.h"
#include "path_table.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace framework {

/* Where a list entry of the output is: its child indexes from the root, since nodes move when siblings are added. */
struct entry_place {
    const list_schema *list = nullptr;
    std::array<std::uint32_t, path_table::max_segments> steps{};
    std::uint8_t depth = 0;
    /* Named by the plug-in as a new entry, and no key leaf was added to it since. */
    bool awaits_key = false;
    /* A short cut to the node, true as long as `moves` is the landing's. */
    dtf_datatree *node = nullptr;
    std::uint64_t moves = 0;
};

/* What an addition gives the last node of its path. */
struct addition {
    const char *ns = nullptr;
    const char *value = nullptr;
    const dtf_datatree *source = nullptr;
    std::uint32_t source_index = 0;
    /* The edit operation that the list entry takes with its first key leaf; 0 for none. */
    std::uint32_t entry_operation = 0;
    bool new_list_entry = false;
    /* An empty value asks for the leaf and gives it none (the requests of reads). */
    bool empty_is_valueless = false;
};

/* What came of an addition. */
struct landed {
    dtf_datatree *node = nullptr;
    bool created = false;
    /* Set when the node is the first key leaf, with a value, of an entry that was named as new in the innermost frame.
     */
    const entry_place *keyed_entry = nullptr;
};

class landing
{
  public:
    /* `out` is the root of the output tree; its nodes are made in `memory`. Both must outlive the landing. */
    landing(dtf_datatree &out, arena &memory);

    /*
     * Adds `path` (absolute). Throws std::bad_alloc with the tree as it was. The nodes are valid until the next
     * addition, the entry until the next change of the frames.
     */
    landed add(const parsed_path &path, const addition &what);

    /*
     * The same for the additions that a walk over device data consists of: a node below the entry that the innermost
     * frame added last, without a source. Null, and nothing done, where it is another one, also where no such node can
     * be (is_below_list).
     */
    dtf_datatree *add_to_last_entry(const parsed_path &path, const char *ns, const char *value);

    /* Opens the frame of a list entry; frames that the list at `schema` is not below are closed first. False when full.
     */
    bool open_frame(const parsed_path &schema, std::uint8_t hierarchy_len, bool withdraw_keyless);

    /* Closes the frames that were opened at a deeper hierarchy. */
    void close_frames_below(std::uint8_t hierarchy_len, bool withdraw_keyless);

    /* The list whose entry the walk is at; null outside all lists. */
    const parsed_path *current_list() const { return open_ == 1 ? nullptr : frames_[open_ - 1].schema; }

    /* Makes an entry the only one that the innermost frame remembers. */
    void make_current(const entry_place &place);

    dtf_datatree &out() { return *out_; }

  private:
    /* Frames beyond the first, which stands for the walk as a whole. */
    static constexpr std::size_t max_frames = DTF_HIERARCHY_MAX;

    struct frame {
        const parsed_path *schema = nullptr;
        /* That of the frame outside of it. */
        const parsed_path *schema_above = nullptr;
        std::uint8_t hierarchy_len = 0;
        /* Innermost list last. */
        std::vector<entry_place> places;
    };

    /* A node on the way along a path. Made for every addition, so it is not cleared first. */
    struct position {
        dtf_datatree *node;
        std::size_t depth;
        /* The entry that the way starts from, null for the root; it has the first `start_depth` steps. */
        const entry_place *start;
        std::size_t start_depth;
        std::array<std::uint32_t, path_table::max_segments> steps;
    };

    dtf_datatree *create_below(dtf_datatree &above, const path_segment *missing, const path_segment *end,
                               const char *ns);
    dtf_datatree *existing_child(const dtf_datatree &parent, const char *tag) const;
    dtf_datatree &new_child(dtf_datatree &parent, std::uint32_t &usual_children, const path_segment &segment,
                            const char *ns);
    void make_room(dtf_datatree &parent, std::uint32_t usual_children);
    void enter_start(position &here, const parsed_path &path, std::size_t limit);
    bool enter_existing(position &here, const char *tag) const;
    void create_rest(position &here, const parsed_path &path, const addition &what);
    dtf_datatree &node_at(const position &here, std::size_t depth) const;
    static void complete_steps(position &here);
    void remember_created(const position &here, const parsed_path &path, std::size_t first, bool names_new_entry);
    void remember(const position &here, std::size_t depth, const list_schema &list, bool awaits_key);
    const entry_place *take_awaiting(const list_schema &list);
    void close_innermost(bool withdraw_keyless);
    void withdraw(const entry_place &place);
    dtf_datatree *node_of(entry_place &place);

    dtf_datatree *out_;
    arena *memory_;
    /* The output held nodes before the walk, whose tags are not the path table's. */
    bool foreign_tags_;
    /* How many children the root had last; for other nodes the path table counts that. */
    std::uint32_t roots_children_ = 0;
    /* How often a child array with nodes in it has moved. */
    std::uint64_t moves_ = 0;
    /* The first `open_` are open; closed ones are kept for their memory. */
    std::vector<frame> frames_;
    std::size_t open_ = 1;
};

} // namespace framework

#endif
