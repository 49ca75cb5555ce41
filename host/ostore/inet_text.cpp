#include "parcel.h"

#include <arpa/inet.h>

#include <array>

/*
 * Byte order: the address as a struct in_addr holds it, its first byte in memory written first, which is how the
 * parcel library stores it in a token. The buffer is the calling thread's own.
 */
const char *inet_ntoa_r(uint32_t address)
{
    thread_local std::array<char, INET_ADDRSTRLEN> text{};
    const in_addr bytes{address};
    return inet_ntop(AF_INET, &bytes, text.data(), text.size());
}
