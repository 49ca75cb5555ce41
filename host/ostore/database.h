/*
 * The store: one file of named tables, each a sorted map from a key to a block of bytes.
 *
 * A store lives in one LMDB file and a lock file beside it ("<file>-lock"). What follows from that, for users:
 *
 *   - Within a process a file can be open once; a second opening is refused.
 *   - Writers exclude each other across processes: beginning a write waits for the other writer to end, and a writer
 *     that was killed is no obstacle. Readers never wait, and see the state at their beginning until they end.
 *   - A commit is on the disk when it returns. A process killed at any moment leaves the state before or after it.
 *   - Keys have 1 to 511 bytes, values less than 4 GiB. Keys are ordered by their bytes.
 *   - A database may be used by several threads, a transaction by the thread that began it.
 *   - Neither databases nor transactions survive a fork() into the child.
 *
 * Everything here throws store_error (store_error.h).
 */
#ifndef OSTORE_DATABASE_H
#define OSTORE_DATABASE_H

#include "ostore/serving.h"
#include "ostore/store_error.h"
#include "ostore/store_file.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

struct MDB_env;
struct MDB_txn;

namespace ostore {

/* A table of an open database; a plain value, good while the database is open. */
struct table_id {
    unsigned int handle;
};

/* What was fetched: shows whether a read touched more than it needed. */
struct read_counts {
    std::uint64_t lookups = 0; /* single keys asked for */
    std::uint64_t records = 0; /* records handed out, by lookups and scans */
    std::uint64_t bytes = 0;   /* bytes of their values */
};

class database
{
  public:
    /* Every store has the table of the items that the system-database client reads. */
    static constexpr const char *items_table = "items";
    static constexpr std::size_t max_key_size = 511;
    /* How large a store can grow. Only address space: the file has the size of what it holds. Some room is left for
     * tools that cannot give a process more (valgrind). */
    static constexpr std::size_t default_map_size = sizeof(void *) > 4 ? std::size_t{16} << 30 : std::size_t{1} << 30;

    /*
     * Opens the store in `file`, making it first where there is none. `tables` are the tables wanted beside "items", up
     * to 30; those that the store lacks are added. A file that holds something else is refused and left alone.
     */
    static database create(const std::filesystem::path &file, const std::vector<std::string> &tables = {},
                           std::size_t map_size = default_map_size);

    /* The same for a store that must be there. */
    static database open(const std::filesystem::path &file, const std::vector<std::string> &tables = {},
                         std::size_t map_size = default_map_size);

    /* An empty store in memory that goes with the object. It can grow to 16 MiB: enough for an inventory, and no matter
     * for a process with little address space. */
    static constexpr std::size_t temporary_map_size = std::size_t{16} << 20;
    static database temporary(const std::vector<std::string> &tables = {});

    database(const database &) = delete;
    database &operator=(const database &) = delete;
    /* All transactions must have ended. */
    ~database() = default;

    /* A table by its name, which must be one of those given on opening. */
    table_id table(std::string_view name) const;
    table_id items() const { return table(items_table); }

    /* The file's name, for messages. */
    const std::string &file() const { return file_.name(); }

    /* What the transactions ended so far have fetched in all. */
    read_counts counts() const;

    /* Makes this the database that the client operations of this process read, each in a transaction of its own. */
    [[nodiscard]] serving serve() const { return serving(*this); }

  private:
    friend class transaction;
    friend class write_transaction;

    struct env_closer {
        void operator()(MDB_env *env) const;
    };
    enum class opening { existing, creating, anonymous };

    database(const std::filesystem::path &file, const std::vector<std::string> &tables, std::size_t map_size,
             opening how);
    void open_environment(std::size_t map_size, opening how);
    void fill_up(std::size_t map_size);
    std::size_t used_size() const;
    bool open_tables();
    void make_tables(opening how);
    void check_owner(MDB_txn *txn, unsigned int meta) const;
    void write_owner(MDB_txn *txn, unsigned int meta) const;

    store_file file_;
    std::unique_ptr<MDB_env, env_closer> env_;
    std::map<std::string, table_id, std::less<>> tables_;

    /* Kept by transactions. */
    mutable std::atomic<std::thread::id> writer_;
    mutable std::atomic<std::uint64_t> lookups_{0};
    mutable std::atomic<std::uint64_t> records_{0};
    mutable std::atomic<std::uint64_t> bytes_{0};
};

} // namespace ostore

#endif
