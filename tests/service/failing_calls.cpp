#include "failing_calls.h"

#include <cerrno>
#include <csignal>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

namespace failing {

namespace {

unsigned chosen = 0, made = 0;
how manner = how::io_error;
bool lasting = false;

/* Counts a call, and ends the process where this is the one to die at. */
bool fails()
{
    if (chosen == 0 || ++made < chosen || (made > chosen && !lasting))
        return false;
    if (manner == how::death)
        ::raise(SIGKILL);
    errno = manner == how::no_space ? ENOSPC : EIO;
    return true;
}

template <typename function> function real(const char *name)
{
    return reinterpret_cast<function>(::dlsym(RTLD_NEXT, name));
}

/* A write that may fail or write a half of what it should. */
template <typename writing> ssize_t write_some(std::size_t size, const writing &write)
{
    if (!fails())
        return write(size);
    return manner == how::half && size > 1 ? write(size / 2) : -1;
}

} // namespace

void arm(unsigned at, how fails, bool on)
{
    chosen = at;
    made = 0;
    manner = fails;
    lasting = on;
}

unsigned calls() { return made; }

} // namespace failing

extern "C" {

ssize_t pwrite(int file, const void *bytes, std::size_t size, off_t at)
{
    static const auto real = failing::real<ssize_t (*)(int, const void *, std::size_t, off_t)>("pwrite");
    return failing::write_some(size, [&](std::size_t part) { return real(file, bytes, part, at); });
}

/* A half is the first of its blocks here. */
ssize_t writev(int file, const iovec *blocks, int count)
{
    static const auto real = failing::real<ssize_t (*)(int, const iovec *, int)>("writev");
    const auto whole = static_cast<std::size_t>(count);
    return failing::write_some(whole, [&](std::size_t part) { return real(file, blocks, static_cast<int>(part)); });
}

int fdatasync(int file)
{
    static const auto real = failing::real<int (*)(int)>("fdatasync");
    return failing::fails() ? -1 : real(file);
}

int fsync(int file)
{
    static const auto real = failing::real<int (*)(int)>("fsync");
    return failing::fails() ? -1 : real(file);
}

int posix_fallocate(int file, off_t at, off_t size)
{
    static const auto real = failing::real<int (*)(int, off_t, off_t)>("posix_fallocate");
    return failing::fails() ? errno : real(file, at, size);
}
}
