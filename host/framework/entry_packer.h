/* Packs list entries (packed_entries.h) while a walk adds them. */
#ifndef FRAMEWORK_ENTRY_PACKER_H
#define FRAMEWORK_ENTRY_PACKER_H

#include "arena.h"
#include "dtf.h"
#include "packed_entries.h"
#include "path_table.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace framework {

/*
 * An entry's shape is the sequence of paths that were added to it. The packer keeps all sequences it has met as a tree
 * of steps, and mostly the next addition is the step that followed the last time.
 */
class entry_packer
{
  public:
    /* Entries and shapes are made in `memory`, where the tree is. */
    explicit entry_packer(arena &memory) : memory_(&memory), steps_(1) {}

    /*
     * The first step of entries of the list that `path` names; 0 where there are too many steps. May throw
     * std::bad_alloc; the next begin() does not then, while `to` has room.
     */
    std::uint32_t first_step(const parsed_path &path, const char *ns);

    /* Begins an entry at the end of `to`; one that is open is ended. When std::bad_alloc is thrown, nothing is done. */
    void begin(packed_entries &to, std::uint32_t first_step);

    /*
     * Adds a node below the list of `path`, the open entry's, with the value if it is not null. False where there are
     * too many shapes, or too much text; then, and when std::bad_alloc is thrown, nothing is done.
     */
    bool add(const parsed_path &path, const char *ns, const char *value);

    /* Counts the open entry, if there is one. */
    void end();

    /* Opens the entry again that was ended last, in `to`. */
    void reopen(packed_entries &to);

    bool is_open() const { return entries_ != nullptr; }

  private:
    struct step {
        const parsed_path *path = nullptr;
        const char *ns = nullptr;
        bool has_value = false;
        std::uint32_t before = 0;
        std::uint32_t next = 0;    /* a step that can come after this one; 0 for none */
        std::uint32_t sibling = 0; /* another that can come after `before` */
        /* Of entries whose last step this is. */
        entry_shape *shape = nullptr;
    };

    std::uint32_t find_step(std::uint32_t before, const parsed_path &path, const char *ns, bool has_value)
    {
        std::uint32_t found = steps_[before].next;
        while (found != 0 &&
               !(steps_[found].path == &path && steps_[found].ns == ns && steps_[found].has_value == has_value))
            found = steps_[found].sibling;
        return found != 0 ? found : add_step(before, path, ns, has_value);
    }
    std::uint32_t add_step(std::uint32_t before, const parsed_path &path, const char *ns, bool has_value);
    entry_shape *make_shape(std::uint32_t last) const;
    void make_room(std::size_t size);
    void make_spares();

    /* Each has a shape of its own, with the nodes of all steps to it. */
    static constexpr std::size_t most_steps = 256;

    arena *memory_;
    /* The first stands for no step. */
    std::vector<step> steps_;
    /* What the open entry is added to; null where none is open. */
    packed_entries *entries_ = nullptr;
    std::uint32_t at_ = 0; /* the last step of the open entry */
    char *begin_ = nullptr;
    char *next_ = nullptr;
    std::size_t left_ = 0;
    std::size_t block_size_ = 0;
    /* The last run, and the end of its values. */
    packed_run *run_ = nullptr;
    const char *run_end_ = nullptr;
    /* For the case that the open entry begins one: then its end needs no memory. And the one after that. */
    packed_run *spare_run_ = nullptr;
    packed_run *next_spare_run_ = nullptr;
};

} // namespace framework

#endif
