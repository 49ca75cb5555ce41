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
#include "entry_packer.h"
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
     * Adds a new list entry in packed form: behind another one of the same list, which is inside another list. False,
     * and nothing added, elsewhere.
     */
    bool add_packed_entry(const parsed_path &path, const char *ns)
    {
        if (packing_.path != &path || packing_.ns != ns || packing_.frame != open_ - 1)
            return start_packing(path, ns);
        packer_.begin(*packing_.entries, packing_.first_step);
        return true;
    }

    /* Adds a node below it. False, and nothing done, where the walk has left it, or the node is not below it. */
    bool add_packed_value(const parsed_path &path, const char *ns, const char *value)
    {
        return packer_.is_open() && path.is_below_list &&
               path.segments[path.lists_end - 1].list == packing_.path->segments.back().list &&
               packer_.add(path, ns, value);
    }

    /* Opens the frame of a list entry; frames that the list at `schema` is not below are closed first. False when full.
     */
    bool open_frame(const parsed_path &schema, std::uint8_t hierarchy_len, bool withdraw_keyless);

    /* Closes the frames that were opened at a deeper hierarchy. */
    void close_frames_below(std::uint8_t hierarchy_len, bool withdraw_keyless);

    /* Ends the walk: closes what is open. */
    void finish(bool withdraw_keyless);

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

    /* A node on the way along a path, and its child indexes from the root. */
    struct position {
        dtf_datatree *node = nullptr;
        std::size_t depth = 0;
        std::array<std::uint32_t, path_table::max_segments> steps{};
    };

    /* Where packed entries are added. It holds until something else is created, or what leads there is forgotten. */
    struct packing {
        const parsed_path *path = nullptr; /* of the entry; null where all this does not hold */
        const char *ns = nullptr;
        std::uint32_t first_step = 0;
        position parent;
        packed_entries *entries = nullptr; /* the last child of the parent stands for them */
        std::size_t frame = 0;             /* the innermost then */
    };

    bool start_packing(const parsed_path &path, const char *ns);
    packed_entries *packed_behind(dtf_datatree &parent, const parsed_path &path, const char *ns);
    void unpack_open();
    dtf_datatree &add_segment(dtf_datatree &parent, const path_segment &segment, const char *ns);
    position follow(const parsed_path &path, std::size_t limit) const;
    void create_rest(position &here, const parsed_path &path, const addition &what);
    void remember_created(const position &here, const parsed_path &path, std::size_t first, bool names_new_entry);
    void remember(frame &by, const position &here, std::size_t depth, const list_schema &list, bool awaits_key);
    const entry_place *take_awaiting(const list_schema &list);
    void close_innermost(bool withdraw_keyless);
    void withdraw(const entry_place &place);
    dtf_datatree *node_of(const entry_place &place) const;

    dtf_datatree *out_;
    arena *memory_;
    /* The first `open_` are open; closed ones are kept for their memory. */
    std::vector<frame> frames_;
    std::size_t open_ = 1;
    entry_packer packer_;
    /* Holds while an entry is open in the packer. */
    packing packing_;
};

} // namespace framework

#endif
