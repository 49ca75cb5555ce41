#include "standard_streams.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace cli {

void hold_standard_streams()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) != -1 || errno != EBADF)
            continue;
        /* The wrong way round, and the lowest descriptor that is free is this one. */
        if (::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) != stream)
            ::_exit(1);
    }
}

} // namespace cli
