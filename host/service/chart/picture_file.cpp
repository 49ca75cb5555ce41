#include "service/chart/picture.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>
#include <unistd.h>

namespace service::chart {

namespace {

[[noreturn]] void fail(const std::filesystem::path &file, const std::string &cause)
{
    throw picture_error(file.string() + ": " + cause);
}

/* What a path leads to over symbolic links, whether or not there is a file at their end. */
std::filesystem::path end_of_links(std::filesystem::path path, std::error_code &wrong)
{
    constexpr int most_links = 40; /* as the system follows */
    for (int i = 0; i <= most_links; ++i) {
        std::error_code missing; /* or not to be looked at, as writing will tell */
        if (!is_symlink(symlink_status(path, missing)))
            return path;
        const std::filesystem::path next = read_symlink(path, wrong);
        if (wrong)
            return path;
        path = path.parent_path() / next; /* next alone where it is absolute */
    }
    wrong = std::make_error_code(std::errc::too_many_symbolic_link_levels);
    return path;
}

/* Removes the file unless it got its name. */
struct unfinished_file {
    explicit unfinished_file(std::filesystem::path path) : name(std::move(path)) {}
    unfinished_file(const unfinished_file &) = delete;
    unfinished_file &operator=(const unfinished_file &) = delete;
    ~unfinished_file()
    {
        std::error_code ignored;
        std::filesystem::remove(name, ignored); /* after the renaming there is none */
    }

    std::filesystem::path name;
};

} // namespace

void write_picture(const std::filesystem::path &file, const std::string &text)
{
    std::error_code wrong;
    /* What a link leads to is replaced or made, not the link; what is no regular file (a device, a folder) never is. */
    const std::filesystem::path target = end_of_links(file, wrong);
    if (wrong)
        fail(file, wrong.message());
    std::error_code unseen;
    const std::filesystem::file_status before = status(target, unseen);
    if (before.type() == std::filesystem::file_type::none)
        fail(file, unseen.message());
    if (exists(before) && !is_regular_file(before))
        fail(file, "is no regular file");
    const unfinished_file fresh(target.string() + ".new-" + std::to_string(getpid()));
    errno = 0;
    std::ofstream stream(fresh.name, std::ios::binary);
    if (stream && exists(before))
        permissions(fresh.name, before.permissions(), wrong); /* before there is anything to read in it */
    if (wrong)
        fail(file, wrong.message());
    stream << text;
    stream.close();
    if (!stream)
        fail(file, errno != 0 ? std::strerror(errno) : "cannot write");
    std::filesystem::rename(fresh.name, target, wrong);
    if (wrong)
        fail(file, wrong.message());
}

} // namespace service::chart
