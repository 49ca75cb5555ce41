/* The text of packed entries, but for their values: the writers make it once for all entries of a shape. */
#ifndef FRAMEWORK_READY_ENTRY_H
#define FRAMEWORK_READY_ENTRY_H

#include "packed_entries.h"
#include "text_sink.h"

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace framework {

class ready_entry
{
  public:
    /* Ready for nothing. */
    ready_entry() = default;

    /* `write` writes the entry of the shape to the sink, with values that are plain in XML and in JSON. */
    template <typename Write> ready_entry(text_sink &sink, entry_shape &shape, Write write)
    {
        const std::vector<std::string> marks = set_marks(shape);
        take_apart(sink.captured(write), marks.size());
    }

    /*
     * Writes an entry with these values. False, and nothing is written, where one holds a special character, and where
     * the text is too long to be kept ready.
     */
    bool write(text_sink &sink, std::span<const std::string_view> values, const special_characters &special) const
    {
        std::size_t size = size_;
        for (const std::string_view value : values)
            size += value.size();
        if (size > text_sink::most_room)
            return false;
        char *to = sink.room(size);
        for (const piece &before : pieces_) {
            to = put(to, before.text);
            const std::string_view value = values[before.value];
            const char *from = value.data();
            to = copy_plain(to, from, special, value.size());
            if (from != value.data() + value.size())
                return false;
        }
        sink.taken(put(to, end_));
        return true;
    }

  private:
    static std::vector<std::string> set_marks(entry_shape &shape);
    void take_apart(const std::string &text, std::size_t value_count);

    /* A text, and the value behind it. */
    struct piece {
        std::string text;
        std::size_t value;
    };

    static char *put(char *to, const std::string &text) { return to + text.copy(to, text.size()); }

    /* Of the pieces and the end; more than there is room for where nothing is ready. */
    std::size_t size_ = text_sink::most_room + 1;
    std::vector<piece> pieces_;
    std::string end_;
};

/* Those that a writer has made, by shape, what the text depends on besides, and level. */
using ready_entries = std::map<std::tuple<const entry_shape *, const void *, std::size_t>, ready_entry>;

/*
 * Writes the packed entries of a node: `write_whole` writes one (const dtf_datatree &), and where a ready text does it,
 * that is written. `make_ready` gives it for a shape.
 */
template <typename Make, typename Write>
void write_packed(text_sink &sink, const special_characters &special, const dtf_datatree &packed, Make make_ready,
                  Write write_whole)
{
    const entry_shape *shape = nullptr;
    const ready_entry *ready = nullptr;
    for (packed_cursor cursor(packed); cursor.next();) {
        if (&cursor.shape() != shape) {
            shape = &cursor.shape();
            ready = &make_ready(cursor.shape());
        }
        if (!ready->write(sink, cursor.values(), special))
            write_whole(cursor.entry());
    }
}

} // namespace framework

#endif
