/*
 * The system-database client (ostore.h) over the database that this process serves. No exception leaves.
 */
#include "ostore.h"

#include "ostore/database.h"
#include "ostore/faults.h"
#include "ostore/parcel_format.h"
#include "ostore/usage.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

namespace ostore {

namespace {

/* What a handle points to. */
struct binding {
    std::string path; /* absolute, with its closing "/" */
};

/* Copies an item's bytes into a block that the caller frees. */
faultno copy_item(std::string_view item, void **data, std::uint32_t *length)
{
    /* Readers of a parcel's header are not told its length, so that much must be there. */
    if (item.size() < parcel_header_size)
        return fault_item_damaged;
    /* The caller releases it with the standard free(). NOLINTNEXTLINE(cppcoreguidelines-*) */
    void *block = std::malloc(item.size());
    if (block == nullptr)
        return fault_client_memory;
    std::memcpy(block, item.data(), item.size());
    *data = block;
    *length = static_cast<std::uint32_t>(item.size());
    count(&usage_counts::items_read);
    return FAULT_SUCCESS;
}

/* Runs an operation of the store and turns what it throws into a code. */
template <typename operation> faultno guarded(operation run) noexcept
{
    try {
        return run();
    } catch (const std::bad_alloc &) {
        return fault_client_memory;
    } catch (const std::exception &) {
        return fault_read_failed;
    }
}

} // namespace

} // namespace ostore

faultno _ostore_bind(void **handle, const char *path, uint32_t options)
{
    using namespace ostore;
    if (handle == nullptr)
        return fault_client_arguments;
    *handle = nullptr;
    const std::string_view subtree = path != nullptr ? path : "";
    if (options != 0 || !subtree.starts_with('/') || !subtree.ends_with('/'))
        return fault_client_arguments;
    if (subtree.size() >= database::max_key_size)
        return fault_path_too_long;
    if (!is_serving())
        return fault_not_served;
    return guarded([&] {
        *handle = std::make_unique<binding>(binding{std::string(subtree)}).release();
        count(&usage_counts::bound);
        return FAULT_SUCCESS;
    });
}

faultno ostore_item_get(void *handle, const char *item, uint32_t *, void **data, uint32_t *length, uint32_t options)
{
    using namespace ostore;
    if (handle == nullptr || item == nullptr || *item == '\0' || data == nullptr || length == nullptr || options != 0)
        return fault_client_arguments;
    return guarded([&] {
        const std::string key = static_cast<const binding *>(handle)->path + item;
        if (key.size() > database::max_key_size)
            return fault_path_too_long;
        return with_served_item(key, [&](std::string_view bytes) { return copy_item(bytes, data, length); });
    });
}

void _ostore_unbind(void *handle)
{
    using namespace ostore;
    const std::unique_ptr<binding> released(static_cast<binding *>(handle));
    if (released)
        count(&usage_counts::unbound);
}
