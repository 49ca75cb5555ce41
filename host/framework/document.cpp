#include "document.h"

#include "json_reader.h"
#include "xml_reader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace framework {

namespace {

constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";
constexpr std::string_view white_space = " \t\r\n";

std::string without_controls(std::string text)
{
    std::ranges::replace_if(
        text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }, '?');
    return text;
}

/* An open file; standard input is borrowed, every other one closed. */
class open_file
{
  public:
    explicit open_file(const std::string &path) : descriptor_(path == "-" ? STDIN_FILENO : open_path(path)) {}
    open_file(const open_file &) = delete;
    open_file &operator=(const open_file &) = delete;
    ~open_file()
    {
        if (descriptor_ > STDIN_FILENO)
            ::close(descriptor_);
    }
    int get() const { return descriptor_; }

  private:
    static int open_path(const std::string &path) { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC); }

    int descriptor_;
};

[[noreturn]] void fail_system(const std::string &name)
{
    throw read_error(name + ": cannot read: " + std::strerror(errno));
}

[[noreturn]] void fail_too_large(const std::string &name, std::size_t limit)
{
    throw parse_error(name + ": document is larger than the limit of " + std::to_string(limit) + " bytes");
}

/* Uninitialised, but for the padding behind `size`: pages of a large buffer are first touched by the read itself. */
std::shared_ptr<char[]> make_buffer(std::size_t size)
{
    std::unique_ptr<char[]> bytes = std::make_unique_for_overwrite<char[]>(size + document_text::padding);
    std::memset(bytes.get() + size, 0, document_text::padding);
    return bytes;
}

/* A first guess of the size: that of a regular file, and for a pipe something to begin with. */
std::size_t expected_size(int descriptor, const std::string &name, std::size_t limit)
{
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0)
        fail_system(name);
    if (S_ISDIR(status.st_mode))
        throw read_error(name + ": cannot read: it is a directory");
    const auto size = static_cast<std::size_t>(std::max<off_t>(status.st_size, 0));
    if (size > limit)
        fail_too_large(name, limit);
    return S_ISREG(status.st_mode) ? size : std::size_t{64} << 10;
}

/* Reads up to `room` bytes; 0 at the end. */
std::size_t read_some(int descriptor, char *to, std::size_t room, const std::string &name)
{
    for (;;) {
        const ssize_t got = ::read(descriptor, to, room);
        if (got >= 0)
            return static_cast<std::size_t>(got);
        if (errno != EINTR)
            fail_system(name);
    }
}

} // namespace

parse_error::parse_error(const std::string &what) : std::runtime_error(without_controls(what)) {}

document_text make_document_text(std::string_view text, std::string name)
{
    document_text document{std::move(name), make_buffer(text.size()), text.size()};
    std::ranges::copy(text, document.bytes.get());
    return document;
}

document_text read_document_text(const std::string &path, std::size_t size_limit)
{
    document_text text{path == "-" ? "standard input" : path, nullptr, 0};
    const open_file file(path);
    if (file.get() < 0)
        fail_system(text.name);
    /* One byte more than expected, so that the end of the file is seen without growing the buffer. */
    std::size_t room = expected_size(file.get(), text.name, size_limit) + 1;
    text.bytes = make_buffer(room);
    while (const std::size_t got = read_some(file.get(), text.bytes.get() + text.size, room - text.size, text.name)) {
        text.size += got;
        if (text.size > size_limit)
            fail_too_large(text.name, size_limit);
        if (text.size < room)
            continue;
        room *= 2;
        auto larger = make_buffer(room);
        std::memcpy(larger.get(), text.bytes.get(), text.size);
        text.bytes = std::move(larger);
    }
    std::memset(text.bytes.get() + text.size, 0, document_text::padding);
    return text;
}

std::size_t byte_order_mark_size(const document_text &text)
{
    return text.view().starts_with(byte_order_mark) ? byte_order_mark.size() : 0;
}

document_format format_of(const document_text &text)
{
    const std::string_view rest = content_of(text);
    const std::size_t first = rest.find_first_not_of(white_space);
    if (first == std::string_view::npos)
        throw parse_error(text.name + ": the document is empty");
    if (rest[first] == '<')
        return document_format::xml;
    if (rest[first] == '{' || rest[first] == '[')
        return document_format::json;
    fail_at(text, static_cast<std::size_t>(rest.data() - text.bytes.get()) + first,
            "neither XML nor JSON: a document begins with '<' or '{'");
}

dtf_datatree parse_document(const document_text &text, arena &memory, const document_options &options)
{
    if (text.size > options.size_limit)
        fail_too_large(text.name, options.size_limit);
    return format_of(text) == document_format::xml ? read_xml(text, memory, options) : read_json(text, memory, options);
}

dtf_datatree read_document(const std::string &path, arena &memory, const document_options &options)
{
    return parse_document(read_document_text(path, options.size_limit), memory, options);
}

void fail_at(const document_text &text, std::size_t offset, const std::string &what)
{
    fail_at(text, offset, 1 + std::ranges::count(text.view().substr(0, offset), '\n'), what);
}

void fail_at(const document_text &text, std::size_t offset, std::ptrdiff_t line, const std::string &what)
{
    const std::string_view before = text.view().substr(0, offset);
    const std::size_t column = before.size() - (before.rfind('\n') + 1) + 1; /* npos + 1 is 0: the first line */
    throw parse_error(text.name + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + what);
}

} // namespace framework
