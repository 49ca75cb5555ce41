#include "ostore/store_file.h"

#include "ostore/store_error.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <set>
#include <utility>

namespace ostore {

namespace {

/*
 * Files that are open as databases in this process. LMDB allows one environment per file and process: the locks of its
 * lock file are the process's, and closing a second environment would drop those of the first.
 */
std::mutex claims_mutex;
std::set<std::pair<dev_t, ino_t>> claims;

struct stat look_at(int descriptor, const std::string &name)
{
    struct stat facts {
    };
    if (fstat(descriptor, &facts) != 0)
        throw_store_error(name, "look at the file", errno);
    return facts;
}

/* Non-blocking for the case that the path names a pipe or device, which is refused later. */
int open_file(const std::string &path, bool create)
{
    return ::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | (create ? O_CREAT : 0), 0640);
}

} // namespace

store_file::store_file(const std::filesystem::path &path, bool create)
    : name_(path.string()), path_(path.string()), descriptor_(open_file(path_, create))
{
    if (descriptor_ < 0)
        throw_store_error(name_, create ? "create" : "open", errno);
    try {
        claim();
    } catch (...) {
        ::close(descriptor_);
        throw;
    }
}

store_file::store_file() : name_("(temporary)"), descriptor_(memfd_create("store", MFD_CLOEXEC))
{
    if (descriptor_ < 0)
        throw_store_error(name_, "create", errno);
    path_ = "/proc/self/fd/" + std::to_string(descriptor_);
}

store_file::~store_file()
{
    const std::lock_guard lock(claims_mutex);
    claims.erase({device_, inode_});
    ::close(descriptor_);
}

void store_file::claim()
{
    const struct stat facts = look_at(descriptor_, name_);
    if (!S_ISREG(facts.st_mode))
        throw store_error(store_fault::foreign, "store " + name_ + ": not a regular file");
    const std::lock_guard lock(claims_mutex);
    if (!claims.insert({facts.st_dev, facts.st_ino}).second)
        throw store_error(store_fault::misuse, "store " + name_ + ": already open in this process");
    device_ = facts.st_dev;
    inode_ = facts.st_ino;
}

std::size_t store_file::size() const { return static_cast<std::size_t>(look_at(descriptor_, name_).st_size); }

void store_file::resize(std::size_t size)
{
    if (ftruncate(descriptor_, static_cast<off_t>(size)) != 0)
        throw_store_error(name_, "fill up the file", errno);
}

void store_file::reserve_lock_file(std::size_t size) const
{
    const int descriptor = open_file(path_ + "-lock", true);
    if (descriptor < 0)
        throw_store_error(name_ + "-lock", "open", errno); /* LMDB would meet the same and name the store */
    const int code = posix_fallocate(descriptor, 0, static_cast<off_t>(size));
    ::close(descriptor);
    check_store(name_, "reserve its lock file", code);
}

void store_file::sync_folder() const
{
    const std::filesystem::path folder = std::filesystem::path(path_).parent_path();
    const int descriptor = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        throw_store_error(name_, "open its folder", errno);
    const int code = fsync(descriptor) == 0 ? 0 : errno;
    ::close(descriptor);
    check_store(name_, "sync its folder", code);
}

} // namespace ostore
