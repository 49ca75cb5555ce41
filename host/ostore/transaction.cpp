#include "ostore/transaction.h"

#include "ostore/lmdb_value.h"

namespace ostore {

namespace {

/* A key as LMDB takes it, refused where its length cannot be a key's. */
MDB_val as_key(const std::string &file, std::string_view key)
{
    if (key.empty())
        throw store_error(store_fault::bad_key, "store " + file + ": empty key");
    if (key.size() > database::max_key_size)
        throw store_error(store_fault::bad_key, "store " + file + ": key of " + std::to_string(key.size()) +
                                                    " bytes is longer than " + std::to_string(database::max_key_size));
    return as_value(key);
}

/* Nobody else looks whether a reader's process is still there. */
void clear_dead_readers(MDB_env *env)
{
    int cleared = 0;
    mdb_reader_check(env, &cleared);
}

} // namespace

transaction::transaction(const database &store, access how) : store_(store)
{
    const unsigned int flags = how == access::read ? MDB_RDONLY : 0;
    /* Readers that were killed keep their state's pages from being used again, and the file would grow without end. */
    if (how == access::write)
        clear_dead_readers(store.env_.get());
    int code = mdb_txn_begin(store.env_.get(), nullptr, flags, &txn_);
    if (code == MDB_READERS_FULL) {
        clear_dead_readers(store.env_.get()); /* they keep their places, too */
        code = mdb_txn_begin(store.env_.get(), nullptr, flags, &txn_);
    }
    check_store(store.file(), "begin a transaction", code);
}

transaction::~transaction()
{
    mdb_txn_abort(txn_);
    store_.lookups_ += counts_.lookups;
    store_.records_ += counts_.records;
    store_.bytes_ += counts_.bytes;
}

MDB_txn *transaction::handle() const
{
    if (txn_ == nullptr)
        throw store_error(store_fault::misuse, "store " + store_.file() + ": the transaction has ended");
    return txn_;
}

std::optional<std::string_view> transaction::get(table_id table, std::string_view key) const
{
    MDB_val wanted = as_key(store_.file(), key);
    MDB_val found{};
    ++counts_.lookups;
    const int code = mdb_get(handle(), table.handle, &wanted, &found);
    if (code == MDB_NOTFOUND)
        return std::nullopt;
    check_store(store_.file(), "read", code);
    ++counts_.records;
    counts_.bytes += found.mv_size;
    return as_view(found);
}

std::size_t transaction::size(table_id table) const
{
    MDB_stat stat{};
    check_store(store_.file(), "read", mdb_stat(handle(), table.handle, &stat));
    return stat.ms_entries;
}

namespace {

/* Passes the store on unless its writer is this very thread, which would wait for itself. */
const database &not_writing(const database &store, const std::atomic<std::thread::id> &writer)
{
    if (writer == std::this_thread::get_id())
        throw store_error(store_fault::misuse, "store " + store.file() + ": this thread is writing already");
    return store;
}

} // namespace

write_transaction::write_transaction(const database &store)
    : transaction(not_writing(store, store.writer_), access::write)
{
    store.writer_ = std::this_thread::get_id();
}

write_transaction::~write_transaction()
{
    /* Before the lock goes with the base, so that the next writer's mark is not wiped out. */
    if (txn_ != nullptr)
        store_.writer_ = std::thread::id();
}

void write_transaction::put(table_id table, std::string_view key, std::string_view value)
{
    MDB_val at = as_key(store_.file(), key);
    MDB_val bytes = as_value(value);
    check_store(store_.file(), "write", mdb_put(handle(), table.handle, &at, &bytes, 0));
}

bool write_transaction::erase(table_id table, std::string_view key)
{
    MDB_val at = as_key(store_.file(), key);
    const int code = mdb_del(handle(), table.handle, &at, nullptr);
    if (code == MDB_NOTFOUND)
        return false;
    check_store(store_.file(), "write", code);
    return true;
}

std::size_t write_transaction::erase_all(table_id table, std::string_view prefix)
{
    std::size_t erased = 0;
    if (prefix.empty()) {
        erased = size(table);
        check_store(store_.file(), "write", mdb_drop(handle(), table.handle, 0));
        return erased;
    }
    const read_counts before = counts_;
    for (cursor at(*this, table, prefix); at.next(); ++erased)
        check_store(store_.file(), "write", mdb_cursor_del(at.cursor_, 0));
    counts_ = before;
    return erased;
}

void write_transaction::commit()
{
    MDB_txn *txn = handle();
    txn_ = nullptr;
    store_.writer_ = std::thread::id();
    check_store(store_.file(), "write", mdb_txn_commit(txn));
}

cursor::cursor(const transaction &txn, table_id table, std::string_view prefix) : txn_(txn), prefix_(prefix)
{
    if (!prefix.empty())
        as_key(txn.store().file(), prefix);
    check_store(txn.store().file(), "read", mdb_cursor_open(txn.handle(), table.handle, &cursor_));
}

cursor::~cursor()
{
    /* The end of a write transaction has closed its cursors. */
    if (txn_.txn_ != nullptr)
        mdb_cursor_close(cursor_);
}

bool cursor::next()
{
    txn_.handle();
    MDB_val key = as_value(prefix_);
    MDB_val value{};
    const MDB_cursor_op first = prefix_.empty() ? MDB_FIRST : MDB_SET_RANGE;
    const int code = mdb_cursor_get(cursor_, &key, &value, started_ ? MDB_NEXT : first);
    started_ = true;
    if (code == MDB_NOTFOUND || (code == 0 && !as_view(key).starts_with(prefix_)))
        return false;
    check_store(txn_.store().file(), "read", code);
    key_ = as_view(key);
    value_ = as_view(value);
    ++txn_.counts_.records;
    txn_.counts_.bytes += value.mv_size;
    return true;
}

} // namespace ostore
