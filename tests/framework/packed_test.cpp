/* Whether entries are packed shows in no document: random walks, packed and not. */
#include "faults.h"
#include "json_writer.h"
#include "scripted_walk.h"
#include "xml_writer.h"

#include "oc_chmon.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <random>
#include <utility>

using namespace scripted;

namespace {

/* After so many allocations one fails, the others do not. */
std::size_t allocations_left = SIZE_MAX;

} // namespace

void *operator new(std::size_t size)
{
    if (allocations_left-- == 0)
        throw std::bad_alloc();
    if (void *const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void *memory) noexcept { std::free(memory); }
void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }

namespace {

/* What a walk does follows from the seed alone. It is regular for the most part, as walks over device data are. */
class stroll
{
  public:
    /* That allocation of its additions fails. */
    stroll(walk &of, unsigned seed, std::size_t allocation)
        : walk_(of), ns_(of.ns), random_(seed), list_(of.ns == ots_ns ? 'S' : 'C'), allocation_(allocation)
    {
    }

    int faults() const { return faults_; }

    static constexpr const char *ots_ns = CHMON_NS_VANTRA_TALIN_CONTROLLER_KESTREL_OTS_OPER;

    void port()
    {
        const std::string outer = list_path(list_ == 'S' ? 'P' : 'M');
        if (!one_in(5))
            add(outer, true);
        if (one_in(3))
            add(outer + "/name");
        for (auto count = random_() % (one_in(20) ? 500 : 20); count-- != 0;)
            if (one_in(10))
                add(outer + (list_ == 'S' ? "/ots-spectrum-info/foo" : "/channels/foo"));
            else
                inside(list_path('S'), [this] { entry(); });
        if (!one_in(4))
            add(outer + "/name");
    }

    /* At an entry of the input, which is not on the hierarchy in every walk. */
    template <typename Steps> void inside(const std::string &schema_path, Steps steps)
    {
        const dtf_datatree node{};
        const bool pushes = pushes_;
        if (pushes)
            dtf_map_add_to_node_hierarchy(walk_.ctx, &node, DTF_HIER_LIST);
        EXPECT_EQ(dtf_map_update_current_list_node(walk_.ctx, schema_path.c_str()), FAULT_SUCCESS);
        steps();
        if (pushes)
            dtf_map_remove_from_node_hierarchy(walk_.ctx, &node);
    }

  private:
    void entry()
    {
        const std::string list = list_path(list_);
        for (int entries = one_in(15) ? static_cast<int>(random_() % 3) : 1; entries-- != 0;) {
            add(list, true);
            for (const char *leaf : {"/lower-frequency", "/rx-power", "/state/power"})
                if (one_in(20))
                    (void)walk_.add(list + leaf);
                else if (!one_in(12))
                    add(list + leaf);
            while (one_in(6))
                odd_addition(list);
        }
    }

    void odd_addition(const std::string &list)
    {
        switch (random_() % 6) {
        case 0: /* elsewhere */
            add(std::string(list_path(list_ == 'S' ? 'P' : 'M')) + "/state/name");
            break;
        case 1: /* a list below */
            add(list + "/part", true);
            add(list + "/part/a");
            break;
        case 2: /* for an entry of the input that is further in */
            inside(list_path('S') + std::string("/part"), [&] { add(list, one_in(2)); });
            add(list + "/behind");
            break;
        case 3: /* nothing but the node */
            (void)walk_.add(list + "/state");
            break;
        case 4: /* of another module */
            walk_.ns = one_in(3) ? "urn:other" : ns_;
            break;
        default: /* one of many shapes */
            add(list + "/x" + std::to_string(random_() % 400));
        }
    }

    void add(const std::string &path, bool new_entry = false)
    {
        static const std::string values[] = {
            "191350000",           "-12", "a&b<c>\"d\"\\",        " spaced\n", "\xc3\xa9", "\xff\x01", "",
            std::string(300, 'x'), "1.5", std::string(5000, 'y'), "true"};
        const std::string &value = values[one_in(5) ? random_() % std::size(values) : 0];
        allocations_left = allocation_;
        const faultno fault = walk_.add(path, new_entry ? nullptr : value.c_str(), new_entry);
        allocation_ = std::exchange(allocations_left, SIZE_MAX);
        EXPECT_EQ(fault, fault == FAULT_SUCCESS ? fault : framework::fault_no_memory);
        faults_ += fault != FAULT_SUCCESS;
    }

    bool one_in(unsigned turns) { return random_() % turns == 0; }

    walk &walk_;
    const char *ns_;
    std::mt19937 random_;
    char list_;
    bool pushes_ = one_in(2);
    int faults_ = 0;
    std::size_t allocation_;
};

std::string documents_of(const dtf_datatree &tree)
{
    std::string text;
    for (const bool pretty : {true, false}) {
        framework::write_xml(text, tree, {.pretty = pretty, .notes = {}});
        framework::write_json(text, tree, {.pretty = pretty, .notes = {}});
    }
    return text;
}

struct outcome {
    std::string documents;
    bool has_packed = false;
    int faults = 0;
};

/* A walk over three ports. What is written of its tree is the same once that is unpacked. */
outcome walk_over(unsigned seed, bool packs, std::size_t allocation = SIZE_MAX)
{
    outcome all;
    walk w({.packs_entries = packs});
    w.ns = seed % 2 == 0 ? CHMON_NS_OPENCONFIG_CHANNEL_MONITOR : stroll::ots_ns;
    w.memory.set_poison(seed % 3 == 0);
    w.run([&](walk &self) {
        stroll on(self, seed, allocation);
        for (int i = 0; i < 3; ++i)
            on.inside(list_path('P'), [&] { on.port(); });
        all.faults = on.faults();
        return FAULT_SUCCESS;
    });
    all.documents = documents_of(w.out);
    const std::string before = text_of(w.out);
    framework::unpack_all(w.memory, w.out);
    all.has_packed = text_of(w.out) != before;
    EXPECT_TRUE(documents_of(w.out) == all.documents) << seed << ' ' << allocation;
    return all;
}

TEST(packed_entries, make_no_difference_to_documents)
{
    int packed = 0;
    for (unsigned seed = 0; seed < 200; ++seed) {
        const outcome with = walk_over(seed, true);
        ASSERT_TRUE(walk_over(seed, false).documents == with.documents) << seed;
        packed += with.has_packed;
    }
    std::printf("walks=200 packed=%d different=0\n", packed);
    EXPECT_GT(packed, 100);
}

TEST(packed_entries, survive_any_allocation_that_fails)
{
    int faults = 0;
    for (unsigned seed = 0; seed < 10; ++seed)
        for (std::size_t allocation = 0; allocation < 150; ++allocation)
            faults += walk_over(seed, true, allocation).faults;
    std::printf("failed_allocations=%d crashes=0\n", faults);
    EXPECT_GT(faults, 300);
}

} // namespace
