#include "text_sink.h"

namespace framework {

namespace {

bool is_continuation(unsigned char byte, unsigned char low = 0x80, unsigned char high = 0xbf)
{
    return byte >= low && byte <= high;
}

} // namespace

void text_sink::put(std::string_view text)
{
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, most_room);
        std::memcpy(room(piece.size()), piece.data(), piece.size());
        taken(at_ + piece.size());
        text.remove_prefix(piece.size());
    }
}

void text_sink::flush()
{
    if (at_ != buffer_.get())
        (*receiver_)({buffer_.get(), static_cast<std::size_t>(at_ - buffer_.get())});
    at_ = buffer_.get();
}

/* The second byte's bounds leave out overlong forms, surrogates and what lies beyond U+10FFFF. */
std::size_t utf8_length(const char *text)
{
    const auto *const byte = reinterpret_cast<const unsigned char *>(text);
    const unsigned char lead = byte[0];
    if (lead < 0x80)
        return lead == 0 ? 0 : 1;
    if (lead >= 0xc2 && lead <= 0xdf)
        return is_continuation(byte[1]) ? 2 : 0;
    if (lead >= 0xe0 && lead <= 0xef) {
        const unsigned char low = lead == 0xe0 ? 0xa0 : 0x80;
        const unsigned char high = lead == 0xed ? 0x9f : 0xbf;
        return is_continuation(byte[1], low, high) && is_continuation(byte[2]) ? 3 : 0;
    }
    if (lead >= 0xf0 && lead <= 0xf4) {
        const unsigned char low = lead == 0xf0 ? 0x90 : 0x80;
        const unsigned char high = lead == 0xf4 ? 0x8f : 0xbf;
        return is_continuation(byte[1], low, high) && is_continuation(byte[2]) && is_continuation(byte[3]) ? 4 : 0;
    }
    return 0;
}

} // namespace framework
