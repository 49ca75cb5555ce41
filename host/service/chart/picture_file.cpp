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
    /* What a link leads to is replaced, not the link; and what is no regular file (a device, a folder) never is. */
    const std::filesystem::path target = std::filesystem::weakly_canonical(file, wrong);
    if (wrong)
        fail(file, wrong.message());
    if (std::filesystem::exists(target) && !std::filesystem::is_regular_file(target))
        fail(file, "is no regular file");
    const unfinished_file fresh(target.string() + ".new-" + std::to_string(getpid()));
    errno = 0;
    std::ofstream stream(fresh.name, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream)
        fail(file, errno != 0 ? std::strerror(errno) : "cannot write");
    std::filesystem::rename(fresh.name, target, wrong);
    if (wrong)
        fail(file, wrong.message());
}

} // namespace service::chart
