/* Where the writers put their text: into a buffer that is handed on when it is full, without a call per piece. */
#ifndef FRAMEWORK_TEXT_SINK_H
#define FRAMEWORK_TEXT_SINK_H

#include <array>
#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace framework {

/* Takes a document's text piece by piece; a piece is gone when the call returns. */
using text_receiver = std::function<void(std::string_view piece)>;

/* Appends the pieces to a string, which must outlive the receiver. */
inline text_receiver append_to(std::string &text)
{
    return [&text](std::string_view piece) { text.append(piece); };
}

/* Small enough to stay in the cache on its way, large enough that handing on costs nothing. */
class text_sink
{
  public:
    /* What room() can be asked for. */
    static constexpr std::size_t most_room = 4096;

    /* The receiver must outlive the sink. */
    explicit text_sink(const text_receiver &receiver) : receiver_(&receiver) {}

    /* At least `size` bytes to write to, up to most_room; taken() tells where what was written ends. */
    char *room(std::size_t size = most_room)
    {
        if (static_cast<std::size_t>(end() - at_) < size)
            flush();
        return at_;
    }
    void taken(char *written_end) { at_ = written_end; }

    void put(std::string_view text);

    /* A literal: its size is known, so that copying it is a few moves. */
    template <std::size_t size> void put(const char (&literal)[size])
    {
        taken(static_cast<char *>(std::memcpy(room(size), literal, size - 1)) + size - 1);
    }

    /* Spaces: mostly one copy of a fixed size, whatever their number. */
    void put_columns(std::size_t count)
    {
        constexpr char spaces[] = "                                                                ";
        constexpr std::size_t most = sizeof spaces - 1;
        while (count != 0) {
            const std::size_t part = count < most ? count : most;
            taken(static_cast<char *>(std::memcpy(room(most), spaces, most)) + part);
            count -= part;
        }
    }

    /* A line end and the spaces behind it. */
    void put_line(std::size_t columns)
    {
        constexpr char line[] = "\n                                                               ";
        constexpr std::size_t most = sizeof line - 1;
        const std::size_t first = columns < most ? columns : most - 1;
        taken(static_cast<char *>(std::memcpy(room(most), line, most)) + 1 + first);
        put_columns(columns - first);
    }

    /* Hands on what is left; the last thing to do. */
    void flush();

    /* What `write` puts, which is not handed on. */
    template <typename Write> std::string captured(Write write)
    {
        flush();
        std::string text;
        const text_receiver to_text = append_to(text);
        const text_receiver *const before = std::exchange(receiver_, &to_text);
        write();
        flush();
        receiver_ = before;
        return text;
    }

  private:
    static constexpr std::size_t capacity = std::size_t{64} << 10;

    char *end() const { return buffer_.get() + capacity; }

    const text_receiver *receiver_;
    std::unique_ptr<char[]> buffer_ = std::make_unique_for_overwrite<char[]>(capacity);
    char *at_ = buffer_.get();
};

/* Which characters of a text are not simply copied; NUL is always one of them. */
using special_characters = std::array<bool, 256>;

/* Copies up to `most` characters, and no special one; `text` moves behind them. Returns the end of the copy. */
inline char *copy_plain(char *to, const char *&text, const special_characters &special, std::size_t most)
{
    std::size_t size = 0;
    for (; size != most && !special[static_cast<unsigned char>(text[size])]; ++size)
        to[size] = text[size];
    text += size;
    return to + size;
}

/* U+FFFD in UTF-8, which stands for what is none. */
inline constexpr std::string_view replacement_character = "\xef\xbf\xbd";

/* Bytes of the UTF-8 character that a NUL-terminated text begins with (RFC 3629); 0 where it is none. */
std::size_t utf8_length(const char *text);

} // namespace framework

#endif
