/*
 * Reading and writing a database. A transaction must end before its database closes.
 *
 * Every std::string_view handed out points into the store's map: it holds until the transaction ends and, in a write
 * transaction, until its next change.
 */
#ifndef OSTORE_TRANSACTION_H
#define OSTORE_TRANSACTION_H

#include "ostore/database.h"

#include <optional>
#include <string>
#include <string_view>

struct MDB_cursor;

namespace ostore {

/* What read and write transactions have in common: reading. */
class transaction
{
  public:
    transaction(const transaction &) = delete;
    transaction &operator=(const transaction &) = delete;

    /* The value of a key, if the table holds it. */
    std::optional<std::string_view> get(table_id table, std::string_view key) const;

    /* Number of records in a table. */
    std::size_t size(table_id table) const;

    /* The database it reads. */
    const database &store() const { return store_; }

    /* What this transaction has fetched so far. */
    const read_counts &counts() const { return counts_; }

    /* Makes the client operations of this process read through this transaction, hence its state of the store. They
     * must then be called by this transaction's thread. */
    [[nodiscard]] serving serve() const { return serving(*this); }

  protected:
    enum class access { read, write };
    transaction(const database &store, access how);
    ~transaction();

    /* The LMDB transaction; throws after it has ended. */
    MDB_txn *handle() const;

  private:
    friend class cursor;
    friend class write_transaction;

    const database &store_;
    MDB_txn *txn_ = nullptr;
    mutable read_counts counts_;
};

/* A view of the store as it is now. Waits for nobody. */
class read_transaction : public transaction
{
  public:
    explicit read_transaction(const database &store) : transaction(store, access::read) {}
};

/* A change of the store, all or nothing: without commit() it never happened. Waits for other writers; a second one
 * begun by the same thread would wait for itself and is refused. */
class write_transaction : public transaction
{
  public:
    explicit write_transaction(const database &store);
    write_transaction(const write_transaction &) = delete;
    write_transaction &operator=(const write_transaction &) = delete;
    ~write_transaction();

    /* Stores a record, in place of one with the same key. */
    void put(table_id table, std::string_view key, std::string_view value);

    /* Removes a record; false when there was none. */
    bool erase(table_id table, std::string_view key);

    /* Removes all records whose key begins with `prefix`, all of the table where it is empty; gives their number. */
    std::size_t erase_all(table_id table, std::string_view prefix = {});

    /* Makes the changes lasting and ends the transaction. When it throws, nothing has changed. */
    void commit();
};

/*
 * The records of a table whose keys begin with a prefix, in order of their keys:
 *
 *     for (cursor at(transaction, table, "Ots0/1/0/0/"); at.next();)
 *         use(at.key(), at.value());
 *
 * Must go before its transaction does. A change that the same transaction makes meanwhile may move it.
 */
class cursor
{
  public:
    cursor(const transaction &txn, table_id table, std::string_view prefix = {});
    cursor(const cursor &) = delete;
    cursor &operator=(const cursor &) = delete;
    ~cursor();

    /* Goes to the next record, the first one to begin with; false when there is none. */
    bool next();

    std::string_view key() const { return key_; }
    std::string_view value() const { return value_; }

  private:
    friend class write_transaction;

    const transaction &txn_;
    MDB_cursor *cursor_ = nullptr;
    std::string prefix_;
    std::string_view key_;
    std::string_view value_;
    bool started_ = false;
};

} // namespace ostore

#endif
