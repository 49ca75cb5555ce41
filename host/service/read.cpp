#include "service/read.h"

#include "service/fetch.h"
#include "service/filter_request.h"
#include "service/key_order.h"
#include "service/native_mapping.h"
#include "service/native_request.h"
#include "service/request_plan.h"
#include "service/stop_watch.h"
#include "service/subtree_filter.h"
#include "service/tree_access.h"

#include "framework/tree.h"

#include "device/native_reader.h"

#include <vector>

namespace service {

namespace {

/* The native request of all that a filter asks for. */
dtf_datatree plan(const plugin &mapper, const dtf_datatree *filter, std::uint32_t kind, framework::arena &memory,
                  const walk_options &walks)
{
    std::vector<dtf_datatree> requests;
    if (filter == nullptr)
        requests.push_back(whole_request());
    else
        requests = requests_of(*filter, memory);
    dtf_datatree native{};
    for (const dtf_datatree &request : requests) {
        const request_plan planned(mapper, request, kind, memory, walks);
        for (const dtf_datatree &top : children_of(planned.native()))
            framework::add_child(memory, native) = top;
    }
    return native;
}

} // namespace

dtf_datatree read(const plugin &mapper, const ostore::transaction &state, const dtf_datatree *filter,
                  std::uint32_t kind, framework::arena &memory, const walk_options &walks, read_costs *costs)
{
    /* Both walks look controllers up in the inventory: they see it as the rest of the read sees the device. */
    const ostore::serving inventory = state.serve();
    read_costs cost;
    stop_watch watch;
    const native_wishes wishes(plan(mapper, filter, kind, memory, walks));
    cost.plan = watch.lap();

    const ostore::read_counts before = state.counts();
    const dtf_datatree native =
        device::naming_store(state, [&] { return fetch_native(device::native_reader(state), wishes, memory); });
    cost.records = state.counts().records - before.records;
    cost.bytes = state.counts().bytes - before.bytes;
    cost.fetch = watch.lap();

    dtf_datatree reply{};
    if (!children_of(native).empty())
        reply = map_native(mapper, native, "device", memory, kind, walks);
    cost.map = watch.lap();

    if (filter != nullptr)
        reply = cut_to_filter(reply, *filter, memory);
    put_keys_first(reply);
    cost.filter = watch.lap();
    if (costs != nullptr)
        *costs = cost;
    return reply;
}

} // namespace service
