#include "ostore/database.h"

#include "ostore/lmdb_value.h"

#include <cerrno>
#include <limits>
#include <optional>
#include <utility>

namespace ostore {

namespace {

/* Whose store it is and in which format its tables are, in a table of its own. */
constexpr const char *meta_table = "meta";
constexpr std::string_view owner_key = "owner";
constexpr std::string_view owner = "chmon";
constexpr std::string_view format_key = "format";
constexpr std::string_view format = "1";

constexpr MDB_dbi max_tables = 32;
/* Room for processes reading at once; the lock file has 64 bytes for each. */
constexpr unsigned int max_readers = 1022;

/* Bytes of a lock file for so many readers: 64 each, and as much again for its head as for two or three. */
constexpr std::size_t lock_file_size = std::size_t{64} * (max_readers + 2);

/* An LMDB transaction that ends with its scope, for work on the tables themselves. */
class scoped_txn
{
  public:
    scoped_txn(MDB_env *env, unsigned int flags, const std::string &name) : name_(name)
    {
        check_store(name_, "begin a transaction", mdb_txn_begin(env, nullptr, flags, &txn_));
    }
    scoped_txn(const scoped_txn &) = delete;
    scoped_txn &operator=(const scoped_txn &) = delete;
    ~scoped_txn() { mdb_txn_abort(txn_); }

    MDB_txn *get() const { return txn_; }

    void commit() { check_store(name_, "write", mdb_txn_commit(std::exchange(txn_, nullptr))); }

    /* A table, or nothing where the store has none of that name. */
    std::optional<MDB_dbi> open(const char *table, unsigned int flags = 0) const
    {
        MDB_dbi handle = 0;
        const int code = mdb_dbi_open(txn_, table, flags, &handle);
        if (code == MDB_NOTFOUND)
            return std::nullopt;
        check_store(name_, "open its tables", code);
        return handle;
    }

  private:
    const std::string &name_;
    MDB_txn *txn_ = nullptr;
};

/*
 * LMDB found a page that cannot be, and would end the process after this call. Leaving by an exception keeps the
 * process and says which file it was; the library's frames hold nothing that an aborted transaction does not release.
 */
[[noreturn]] void on_assertion(MDB_env *env, const char *)
{
    throw_store_error(*static_cast<const std::string *>(mdb_env_get_userctx(env)), "read", MDB_CORRUPTED);
}

} // namespace

database database::create(const std::filesystem::path &file, const std::vector<std::string> &tables,
                          std::size_t map_size)
{
    return database(file, tables, map_size, opening::creating);
}

database database::open(const std::filesystem::path &file, const std::vector<std::string> &tables, std::size_t map_size)
{
    return database(file, tables, map_size, opening::existing);
}

database database::temporary(const std::vector<std::string> &tables)
{
    return database({}, tables, temporary_map_size, opening::anonymous);
}

void database::env_closer::operator()(MDB_env *env) const { mdb_env_close(env); }

database::database(const std::filesystem::path &file, const std::vector<std::string> &tables, std::size_t map_size,
                   opening how)
    : file_(how == opening::anonymous ? store_file() : store_file(file, how == opening::creating))
{
    if (how == opening::existing && file_.size() == 0)
        throw_store_error(file_.name(), "open", MDB_INVALID);
    for (const std::string &name : tables)
        tables_.emplace(name, table_id{0});
    tables_.emplace(items_table, table_id{0});
    open_environment(map_size, how);
    if (!open_tables())
        make_tables(how);
    if (how == opening::creating)
        file_.sync_folder();
}

void database::open_environment(std::size_t map_size, opening how)
{
    MDB_env *env = nullptr;
    check_store(file(), "open", mdb_env_create(&env));
    env_.reset(env);
    mdb_env_set_userctx(env, const_cast<std::string *>(&file_.name()));
    mdb_env_set_assert(env, on_assertion);
    check_store(file(), "open", mdb_env_set_maxdbs(env, max_tables));
    check_store(file(), "open", mdb_env_set_maxreaders(env, max_readers));
    check_store(file(), "open", mdb_env_set_mapsize(env, map_size));
    if (how != opening::anonymous)
        file_.reserve_lock_file(lock_file_size);
    /* MDB_NOTLS: a read transaction belongs to its object, so that one thread can hold several. */
    const unsigned int private_file = how == opening::anonymous ? MDB_NOLOCK | MDB_NOSYNC : 0;
    const int code = mdb_env_open(env, file_.path().c_str(), MDB_NOSUBDIR | MDB_NOTLS | private_file, 0640);
    if (code == ENOMEM)
        throw store_error(store_fault::failed, "store " + file() + ": cannot open: it takes " +
                                                   std::to_string(map_size) +
                                                   " bytes of address space, if it is not damaged");
    check_store(file(), "open", code);
    int cleared = 0;
    check_store(file(), "clear dead readers", mdb_reader_check(env, &cleared));
    fill_up(map_size);
}

/* Bytes of the file that the store's pages may lie in. */
std::size_t database::used_size() const
{
    MDB_envinfo info{};
    MDB_stat stat{};
    check_store(file(), "look at the store", mdb_env_info(env_.get(), &info));
    check_store(file(), "look at the store", mdb_env_stat(env_.get(), &stat));
    const std::size_t most_pages = std::numeric_limits<std::size_t>::max() / stat.ms_psize;
    return info.me_last_pgno < most_pages ? (info.me_last_pgno + 1) * stat.ms_psize : most_pages * stat.ms_psize;
}

/*
 * A file that was cut short would raise a bus error when a page behind its end is read. Filled up with zeros, such a
 * page is recognised as damage instead. Not every short file is damaged: a transaction may give pages up again that
 * it never wrote. The writers' lock keeps other processes from growing the file meanwhile. A size that no store of
 * this map can have had is damage.
 */
void database::fill_up(std::size_t map_size)
{
    if (used_size() <= file_.size())
        return;
    if (used_size() > map_size)
        throw_store_error(file(), "open", MDB_CORRUPTED);
    const scoped_txn txn(env_.get(), 0, file());
    if (const std::size_t used = used_size(); used > file_.size())
        file_.resize(used);
}

/* Finds all tables without writing; false when some are missing, the owner's record perhaps among them. */
bool database::open_tables()
{
    scoped_txn txn(env_.get(), MDB_RDONLY, file());
    const auto meta = txn.open(meta_table);
    if (!meta)
        return false;
    check_owner(txn.get(), *meta);
    for (auto &[name, table] : tables_) {
        const auto handle = txn.open(name.c_str());
        if (!handle)
            return false;
        table.handle = *handle;
    }
    txn.commit();
    return true;
}

/* Makes what open_tables() missed: the owner's record, in a store that is still empty, and tables. */
void database::make_tables(opening how)
{
    scoped_txn txn(env_.get(), 0, file());
    auto meta = txn.open(meta_table);
    if (!meta) {
        MDB_stat stat{};
        check_store(file(), "look at its tables", mdb_stat(txn.get(), *txn.open(nullptr), &stat));
        if (stat.ms_entries != 0 || how == opening::existing)
            throw_store_error(file(), "open", MDB_INCOMPATIBLE);
        meta = txn.open(meta_table, MDB_CREATE);
        write_owner(txn.get(), *meta);
    }
    check_owner(txn.get(), *meta);
    for (auto &[name, table] : tables_)
        table.handle = *txn.open(name.c_str(), MDB_CREATE);
    txn.commit();
}

void database::check_owner(MDB_txn *txn, unsigned int meta) const
{
    const auto wanted = [&](std::string_view field, std::string_view value) {
        MDB_val key = as_value(field);
        MDB_val found{};
        const int code = mdb_get(txn, meta, &key, &found);
        if (code == MDB_NOTFOUND)
            throw_store_error(file(), "open", MDB_INCOMPATIBLE);
        check_store(file(), "read its owner", code);
        const std::string text(as_view(found));
        if (text != value)
            throw store_error(store_fault::foreign, "store " + file() + ": " + std::string(field) + " is '" + text +
                                                        "', expected '" + std::string(value) + "'");
    };
    wanted(owner_key, owner);
    wanted(format_key, format);
}

void database::write_owner(MDB_txn *txn, unsigned int meta) const
{
    for (const auto &[field, text] : {std::pair{owner_key, owner}, std::pair{format_key, format}}) {
        MDB_val key = as_value(field);
        MDB_val value = as_value(text);
        check_store(file(), "write its owner", mdb_put(txn, meta, &key, &value, 0));
    }
}

table_id database::table(std::string_view name) const
{
    const auto found = tables_.find(name);
    if (found == tables_.end())
        throw store_error(store_fault::misuse, "store " + file() + ": no table '" + std::string(name) + "' is open");
    return found->second;
}

read_counts database::counts() const { return {lookups_, records_, bytes_}; }

} // namespace ostore
