/* Requests of every kind, one after the other in one process, that leave nothing behind. */
#include "edit_device.h"

#include "device/load.h"
#include "service/get.h"
#include "service/request_plan.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <unistd.h>

extern "C" __attribute__((weak)) std::size_t __sanitizer_get_current_allocated_bytes();

namespace {

/* Bytes of memory in use: of the heap where the sanitizer counts them, else what the system gave the process. */
std::size_t memory_in_use()
{
    if (__sanitizer_get_current_allocated_bytes != nullptr)
        return __sanitizer_get_current_allocated_bytes();
    std::size_t size = 0, pages = 0;
    std::ifstream("/proc/self/statm") >> size >> pages;
    return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

/* CHMON_REQUESTS sets how many there are. */
TEST(many_requests, use_no_more_memory)
{
    const char *const wanted = std::getenv("CHMON_REQUESTS");
    const unsigned requests = wanted == nullptr ? 4000 : static_cast<unsigned>(std::atoi(wanted));
    const temporary_folder folder;
    device::folder device = device::folder::create(folder.path / "device");
    edits::fill(device);
    const service::plugin mapper;
    service::get_options get;
    get.filter = folder.path / "filter.xml";
    std::ofstream(*get.filter) << edits::document("<channel-monitor><name>0/1-CHMON-PRE</name></channel-monitor>");
    service::plan_options plan;
    plan.document = *get.filter;
    const std::string create = edits::document("<channel-monitor><name>0/2-CHMON-PRE</name></channel-monitor>"),
                      refused = edits::document("<channel-monitor><name>0/2-CHMON-PRE</name><x/></channel-monitor>");
    std::size_t before = 0, errors = 0;
    for (unsigned n = 0; n < requests; ++n) {
        if (n == requests / 4)
            before = memory_in_use();
        if (n % 4 == 0)
            service::get_document(mapper, device, get);
        else if (n % 4 == 1)
            service::plan_document(mapper, plan);
        else
            try {
                edits::edit(mapper, device, folder.path, n % 4 == 2 ? create : refused, service::edit_operation::merge,
                            n % 1000 != 2);
            } catch (const service::netconf_error &) {
                ++errors;
            }
    }
    const auto grown = static_cast<std::ptrdiff_t>(memory_in_use() - before);
    std::printf("requests=%u refused=%zu growth=%td\n", requests, errors, grown);
    EXPECT_EQ(errors, requests / 4);
    EXPECT_LT(grown, __sanitizer_get_current_allocated_bytes != nullptr ? 4096 : 1 << 20);
}

} // namespace
