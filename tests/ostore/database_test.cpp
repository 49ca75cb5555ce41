/* The store: what is committed stays, what is not never was, and what is no store is refused. */
#include "ostore/transaction.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>
#include <lmdb.h>

#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

namespace {

using ostore::database;

/* The kind of store_error that `run` ends with; its text must name the file and fit one line. */
template <typename operation> std::string fault_of(operation run)
{
    static constexpr const char *names[]{"missing", "foreign", "damaged", "permission",
                                         "full",    "bad_key", "misuse",  "failed"};
    try {
        run();
    } catch (const ostore::store_error &error) {
        const std::string text = error.what();
        EXPECT_TRUE(text.starts_with("store ") && text.find('\n') == std::string::npos) << text;
        return names[static_cast<int>(error.kind())];
    }
    return "none";
}

std::string key_of(int number) { return "key/" + std::to_string(10000 + number); }

void fill(const database &store, int records, std::size_t size)
{
    ostore::write_transaction txn(store);
    for (int i = 0; i < records; ++i)
        txn.put(store.items(), key_of(i), std::string(size, 'v'));
    txn.commit();
}

TEST(database, readers_see_one_state_and_aborted_changes_never_were)
{
    const temporary_folder folder;
    const auto store = database::create(folder.path / "store.mdb", {"config"});
    const auto config = store.table("config");
    {
        ostore::write_transaction first(store);
        first.put(config, "a", "1");
        EXPECT_EQ(fault_of([&] { ostore::write_transaction second(store); }), "misuse");
        first.commit();
        EXPECT_EQ(fault_of([&] { first.put(config, "a", "2"); }), "misuse");
    }
    const ostore::read_transaction before(store);
    {
        ostore::write_transaction change(store);
        change.put(config, "a", "2");
        change.put(config, "b", "3");
        EXPECT_EQ(change.get(config, "a"), "2");
        change.commit();
        ostore::write_transaction aborted(store);
        EXPECT_TRUE(aborted.erase(config, "a"));
        EXPECT_FALSE(aborted.erase(config, "a"));
    }
    EXPECT_EQ(before.get(config, "a"), "1");
    EXPECT_EQ(before.size(config), 1u);
    const ostore::read_transaction after(store);
    EXPECT_EQ(after.get(config, "a"), "2");
    EXPECT_EQ(after.get(store.items(), "a"), std::nullopt) << "tables are apart";
    EXPECT_EQ(fault_of([&] { store.table("none"); }), "misuse");
    ostore::write_transaction keys(store);
    keys.put(config, std::string(511, 'k'), "v");
    for (const std::string &key : {std::string(512, 'k'), std::string()}) {
        EXPECT_EQ(fault_of([&] { keys.put(config, key, "v"); }), "bad_key");
        EXPECT_EQ(fault_of([&] { keys.get(config, key); }), "bad_key");
        EXPECT_EQ(fault_of([&] { keys.erase(config, key); }), "bad_key");
    }
}

TEST(database, scans_and_erasures_take_the_prefix_and_no_more)
{
    const auto store = database::temporary({"t"});
    const auto table = store.table("t");
    constexpr int records = 5000;
    ostore::write_transaction txn(store);
    for (int i = 0; i < records; ++i)
        txn.put(table, key_of(i), std::string(static_cast<std::size_t>(i % 300), 'v'));
    int next = 2000;
    for (ostore::cursor at(txn, table, "key/12"); at.next(); ++next)
        EXPECT_EQ(at.key(), key_of(next));
    EXPECT_EQ(next, 3000);
    EXPECT_EQ(txn.counts().records, 1000u) << "a scan fetches what it hands out";
    EXPECT_EQ(txn.erase_all(table, "key/12"), 1000u);
    EXPECT_EQ(txn.size(table), records - 1000u);
    EXPECT_EQ(txn.erase_all(table, "key/9"), 0u);
    EXPECT_EQ(txn.get(table, "key/11999").has_value() && txn.get(table, "key/13000").has_value(), true);
    EXPECT_EQ(txn.erase_all(table), records - 1000u);
    EXPECT_FALSE(ostore::cursor(txn, table).next());
}

/* Writes one record with LMDB's own means. */
void write_foreign(const std::filesystem::path &file, const char *table, std::string key, std::string value)
{
    MDB_env *env = nullptr;
    MDB_txn *txn = nullptr;
    MDB_dbi dbi = 0;
    MDB_val at{key.size(), key.data()};
    MDB_val bytes{value.size(), value.data()};
    mdb_env_create(&env);
    mdb_env_set_maxdbs(env, 4);
    ASSERT_EQ(mdb_env_open(env, file.c_str(), MDB_NOSUBDIR, 0640), 0);
    ASSERT_EQ(mdb_txn_begin(env, nullptr, 0, &txn), 0);
    ASSERT_EQ(mdb_dbi_open(txn, table, table ? MDB_CREATE : 0, &dbi), 0);
    ASSERT_EQ(mdb_put(txn, dbi, &at, &bytes, 0), 0);
    ASSERT_EQ(mdb_txn_commit(txn), 0);
    mdb_env_close(env);
}

TEST(database, what_is_no_store_of_ours_is_refused_and_left_alone)
{
    const temporary_folder folder;
    const auto file = [&](const char *name) { return folder.path / name; };
    std::ofstream(file("text")) << std::string(9000, 'x');
    std::ofstream(file("short")) << "x";
    std::ofstream(file("empty")).flush();
    ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
    write_foreign(file("other"), nullptr, "some", "thing");
    write_foreign(file("named"), nullptr, "meta", "thing");
    write_foreign(file("tables"), "meta", "some", "thing");
    (void)database::create(file("owner"));
    write_foreign(file("owner"), "meta", "owner", "another");
    (void)database::create(file("format"));
    write_foreign(file("format"), "meta", "format", "2");

    for (const char *name : {"text", "short", "pipe", "other", "named", "tables", "owner", "format"}) {
        EXPECT_EQ(fault_of([&] { database::open(file(name)); }), "foreign") << name;
        EXPECT_NE(fault_of([&] { database::create(file(name)); }), "none") << name;
    }
    EXPECT_EQ(std::filesystem::file_size(file("text")), 9000u);
    EXPECT_EQ(fault_of([&] { database::open(file("empty")); }), "foreign");
    EXPECT_EQ(fault_of([&] { database::create(file("empty")); }), "none") << "an interrupted creation heals";
    EXPECT_EQ(fault_of([&] { database::open(file("none")); }), "missing");
    EXPECT_EQ(fault_of([&] { database::create(file("none") / "store.mdb"); }), "missing");
    EXPECT_FALSE(std::filesystem::exists(file("none")));
    const auto store = database::create(file("twice"));
    EXPECT_EQ(fault_of([&] { database::open(file("twice")); }), "misuse");
}

TEST(database, a_full_map_changes_nothing)
{
    const temporary_folder folder;
    const auto store = database::create(folder.path / "store.mdb", {}, 1 << 20);
    EXPECT_EQ(fault_of([&] { fill(store, 2000, 2000); }), "full");
    EXPECT_EQ(ostore::read_transaction(store).size(store.items()), 0u);
    EXPECT_EQ(fault_of([&] { fill(store, 10, 2000); }), "none");
}

/* A hole in the file or its end cut off: what is damaged is said to be, what is not is read. */
TEST(database, lost_pages_are_answered)
{
    const temporary_folder folder;
    const auto file = folder.path / "store.mdb";
    {
        const auto store = database::create(file);
        fill(store, 1000, 100);
    }
    std::ostringstream whole;
    whole << std::ifstream(file, std::ios::binary).rdbuf();
    constexpr std::size_t page = 4096;
    std::map<std::string, int> outcomes;
    const auto read_damaged = [&](const std::string &bytes) {
        std::ofstream(file, std::ios::binary) << bytes;
        ++outcomes[fault_of([&] {
            const auto store = database::open(file, {"further"});
            const ostore::read_transaction txn(store);
            std::size_t records = 0;
            for (ostore::cursor at(txn, store.items()); at.next(); ++records)
                ASSERT_EQ(at.value(), std::string(100, 'v'));
            ASSERT_EQ(records, 1000u);
        })];
    };
    read_damaged(whole.str());
    EXPECT_EQ(outcomes["none"], 1);
    for (std::size_t at = page; at < whole.str().size(); at += page) {
        read_damaged(whole.str().substr(0, at));
        read_damaged(whole.str().replace(at, page, page, '\0'));
    }
    for (const auto &[outcome, times] : outcomes) {
        std::printf("lost pages: %s %d times\n", outcome.c_str(), times);
        EXPECT_TRUE(outcome == "none" || outcome == "damaged" || outcome == "foreign") << outcome;
    }
    EXPECT_GE(outcomes["damaged"], 40);
}

TEST(database, temporary_leaves_nothing)
{
    const temporary_folder folder;
    setenv("TMPDIR", folder.path.c_str(), 1);
    const auto store = database::temporary(), other = database::temporary();
    unsetenv("TMPDIR");
    ostore::write_transaction txn(store);
    txn.put(store.items(), "k", std::string(100000, 'v'));
    txn.commit();
    EXPECT_EQ(ostore::read_transaction(store).get(store.items(), "k")->size(), 100000u);
    EXPECT_EQ(ostore::read_transaction(other).get(other.items(), "k"), std::nullopt);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path));
}

} // namespace
