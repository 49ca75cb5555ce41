/* Where the writers put their text: the end of a string, without a call or a bounds check per byte. */
#ifndef FRAMEWORK_TEXT_SINK_H
#define FRAMEWORK_TEXT_SINK_H

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace framework {

/* Appends to a string, which holds all of it (and nothing more) only after the sink's end. */
class text_sink
{
  public:
    explicit text_sink(std::string &out) : out_(out), used_(out.size()) {}
    text_sink(const text_sink &) = delete;
    text_sink &operator=(const text_sink &) = delete;
    ~text_sink() { out_.resize(used_); }

    void put(std::string_view text)
    {
        if (out_.size() - used_ < text.size())
            grow(text.size());
        std::memcpy(out_.data() + used_, text.data(), text.size());
        used_ += text.size();
    }

    void put_spaces(std::size_t count)
    {
        if (out_.size() - used_ < count)
            grow(count);
        std::memset(out_.data() + used_, ' ', count);
        used_ += count;
    }

  private:
    /* The string grows geometrically; of its new room a part at a time is cleared, while it is near in the cache. */
    void grow(std::size_t least) { out_.resize(used_ + least + step); }

    static constexpr std::size_t step = std::size_t{32} << 10;

    std::string &out_;
    std::size_t used_;
};

/* U+FFFD in UTF-8, which stands for what is none. */
inline constexpr std::string_view replacement_character = "\xef\xbf\xbd";

/* Bytes of the UTF-8 character that a NUL-terminated text begins with (RFC 3629); 0 where it is none. */
std::size_t utf8_length(const char *text);

} // namespace framework

#endif
