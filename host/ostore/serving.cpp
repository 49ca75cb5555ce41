#include "ostore/serving.h"

#include "ostore/faults.h"
#include "ostore/transaction.h"

#include <atomic>
#include <mutex>

namespace ostore {

namespace {

/* What is served: a database or a transaction. The mutex keeps it from ending under a reader. */
std::mutex served_mutex;
const database *served_store = nullptr;
const transaction *served_txn = nullptr;
/* The same as a flag, for the presence test, which must not wait. */
std::atomic<bool> served{false};

void set_served(const database *store, const transaction *txn)
{
    const std::lock_guard lock(served_mutex);
    if (served)
        throw store_error(store_fault::misuse, "a database is being served already");
    served_store = store;
    served_txn = txn;
    served = true;
}

faultno look_up(const transaction &txn, table_id items, std::string_view key,
                const std::function<faultno(std::string_view)> &take)
{
    const auto value = txn.get(items, key);
    return value ? take(*value) : fault_item_not_found;
}

} // namespace

serving::serving(const database &store) { set_served(&store, nullptr); }

serving::serving(const transaction &txn) { set_served(&txn.store(), &txn); }

serving::~serving()
{
    const std::lock_guard lock(served_mutex);
    served_store = nullptr;
    served_txn = nullptr;
    served = false;
}

bool is_serving() noexcept { return served; }

faultno with_served_item(std::string_view key, const std::function<faultno(std::string_view)> &take)
{
    const std::lock_guard lock(served_mutex);
    if (!served)
        return fault_not_served;
    const table_id items = served_store->items();
    if (served_txn != nullptr)
        return look_up(*served_txn, items, key, take);
    return look_up(read_transaction(*served_store), items, key, take);
}

} // namespace ostore
