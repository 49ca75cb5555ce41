/* The client operations over a served database, the presence test, and the keys of the inventory's items. */
#include "ostore.h"
#include "ostore/faults.h"
#include "ostore/inventory_item.h"
#include "ostore/parcel_format.h"
#include "ostore/transaction.h"
#include "ostore/usage.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

namespace {

using ostore::database;

void put(const database &store, std::string_view key, std::string_view value)
{
    ostore::write_transaction txn(store);
    txn.put(store.items(), key, value);
    txn.commit();
}

/* Binds, gets and unbinds; the bytes read, or the text of the code. */
std::string fetch(const char *path, const std::string &item)
{
    void *handle = nullptr;
    void *data = nullptr;
    std::uint32_t word = 7, length = 0;
    faultno rc = _ostore_bind(&handle, path, 0);
    if (rc == FAULT_SUCCESS)
        rc = ostore_item_get(handle, item.c_str(), &word, &data, &length, 0);
    _ostore_unbind(handle);
    if (rc != FAULT_SUCCESS) {
        EXPECT_EQ(data, nullptr);
        EXPECT_EQ(rc & 0xffffff00u, 0x8081c200u);
        return ostore::fault_text(rc);
    }
    const std::unique_ptr<void, decltype(&std::free)> owned(data, std::free);
    return {static_cast<const char *>(data), length};
}

TEST(client, items_of_the_served_database)
{
    constexpr const char *subtree = "/oper/inventory/gl/entity/";
    const std::string item = "0%2f1-CHMON-BST/attrib/inv_basic_parcel";
    constexpr const char *library = "/pkg/lib/libostore.so";
    EXPECT_EQ(fetch(subtree, item), "no system database is served");
    EXPECT_TRUE(access(library, R_OK) == -1 && errno == ENOENT);
    const auto store = database::temporary();
    const auto serving = store.serve();
    EXPECT_EQ(access(library, R_OK), 0);
    EXPECT_EQ(access("/pkg/lib/libostore.so.1", R_OK), -1);
    EXPECT_EQ(access("/", R_OK), 0);
    EXPECT_THROW(const auto second = store.serve(), ostore::store_error);

    const ostore::usage_counts before = ostore::usage();
    EXPECT_EQ(fetch(subtree, item), "item not found");
    const auto record = ostore::inventory_item_record("0/1-CHMON-BST");
    const std::string bytes(reinterpret_cast<const char *>(record.data()), record.size());
    put(store, subtree + item, bytes);
    EXPECT_EQ(fetch(subtree, item), bytes);
    put(store, "/a/short", bytes.substr(0, ostore::parcel_header_size - 1));
    EXPECT_EQ(fetch("/a/", "short"), "item is damaged: shorter than a record's header");
    EXPECT_EQ(fetch("/a/", std::string(508, 'k')), "item not found");
    EXPECT_EQ(fetch("/a/", std::string(509, 'k')), "item path is too long");
    EXPECT_EQ(fetch(("/" + std::string(510, 'k') + "/").c_str(), "i"), "item path is too long");
    for (const char *path : {"", "/a", "a/"})
        EXPECT_EQ(fetch(path, "short"), "invalid argument of a system-database call") << path;
    EXPECT_EQ(fetch("/a/", ""), "invalid argument of a system-database call");
    EXPECT_EQ(_ostore_bind(nullptr, "/a/", 0), ostore::fault_client_arguments);

    const ostore::usage_counts after = ostore::usage();
    EXPECT_EQ(after.bound - before.bound, 6u);
    EXPECT_EQ(after.unbound - before.unbound, 6u);
    EXPECT_EQ(after.items_read - before.items_read, 1u);
    EXPECT_EQ(store.counts().lookups, 4u);
    EXPECT_EQ(store.counts().records, 2u);
}

TEST(client, a_served_transaction_answers_from_its_state)
{
    const auto store = database::temporary();
    const std::string value(ostore::parcel_header_size, 'v');
    const ostore::read_transaction txn(store);
    const auto serving = txn.serve();
    put(store, "/a/b", value);
    EXPECT_EQ(fetch("/a/", "b"), "item not found");
    EXPECT_EQ(ostore::read_transaction(store).get(store.items(), "/a/b"), value);
}

TEST(inventory, keys_give_the_name_back)
{
    for (const char *name : {"0/1-CHMON-BST", "0/3-CHMON-PRE", "no-slash", "a/b%2fc/d", "/", "x"}) {
        const std::string key = ostore::inventory_item_key(name);
        EXPECT_EQ(ostore::inventory_item_monitor(key), name) << key;
    }
    EXPECT_EQ(ostore::inventory_item_key("0/1-CHMON-BST"),
              "/oper/inventory/gl/entity/0%2f1-CHMON-BST/attrib/inv_basic_parcel");
    for (const std::string &name : {std::string(), std::string("0%2f1"), std::string("a%2fb/c"), std::string(500, 'n')})
        EXPECT_THROW(ostore::inventory_item_key(name), ostore::store_error) << name;
    for (const char *key : {"", "/oper/inventory/gl/entity/", "/oper/inventory/gl/entity//attrib/inv_basic_parcel",
                            "/oper/inventory/gl/entity/x/attrib/other"})
        EXPECT_EQ(ostore::inventory_item_monitor(key), std::nullopt) << key;
}

} // namespace
