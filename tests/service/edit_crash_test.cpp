/*
 * Edits whose process dies, edits by several processes at once, and edits whose calls to the disk fail.
 *
 * The state is a number: bit n is set when monitor n is configured. One edit replaces all monitors, so that a mixture
 * of two states is another number, and so is the state that an acknowledged edit is missing from.
 */
#include "edit_device.h"

#include <gtest/gtest.h>

#include <csignal>
#include <dlfcn.h>
#include <fcntl.h>
#include <functional>
#include <random>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

/* Calls by which a store reaches its disk, found before libc's; one of them fails, and all that follow if `lasting`. */
namespace failing {

/* An error with an errno, a write of half of its bytes, or the process's end before the call. */
enum class how { io_error, no_space, half, death };

unsigned chosen = 0, made = 0; /* calls, from 1; 0: none is to fail */
how manner = how::io_error;
bool lasting = false;

/* Counts a call, and ends the process where this is the one to die at. */
bool fails()
{
    if (chosen == 0 || ++made < chosen || (made > chosen && !lasting))
        return false;
    if (manner == how::death)
        ::raise(SIGKILL);
    errno = manner == how::no_space ? ENOSPC : EIO;
    return true;
}

template <typename function> function real(const char *name, function)
{
    return reinterpret_cast<function>(::dlsym(RTLD_NEXT, name));
}

/* A write that may fail or write a half of what it should. */
template <typename writing> ssize_t write_some(std::size_t size, const writing &write)
{
    if (!fails())
        return write(size);
    return manner == how::half && size > 1 ? write(size / 2) : -1;
}

} // namespace failing

extern "C" {

ssize_t pwrite(int file, const void *bytes, std::size_t size, off_t at)
{
    return failing::write_some(
        size, [&](std::size_t part) { return failing::real("pwrite", &::pwrite)(file, bytes, part, at); });
}

/* A half is the first of its blocks here. */
ssize_t writev(int file, const iovec *blocks, int count)
{
    return failing::write_some(static_cast<std::size_t>(count), [&](std::size_t part) {
        return failing::real("writev", &::writev)(file, blocks, static_cast<int>(part));
    });
}

int fdatasync(int file) { return failing::fails() ? -1 : failing::real("fdatasync", &::fdatasync)(file); }

int fsync(int file) { return failing::fails() ? -1 : failing::real("fsync", &::fsync)(file); }

int posix_fallocate(int file, off_t at, off_t size)
{
    return failing::fails() ? errno : failing::real("posix_fallocate", &::posix_fallocate)(file, at, size);
}
}

namespace {

constexpr unsigned states = 64;

std::string entry(std::size_t monitor, const std::string &attributes = "")
{
    return "<channel-monitor" + attributes + "><name>" + edits::monitors[monitor] + "</name></channel-monitor>";
}

std::string edit_to(unsigned state)
{
    std::string entries;
    for (std::size_t n = 0; n < edits::monitors.size(); ++n)
        entries += (state >> n & 1) != 0 ? entry(n) : "";
    return edits::document(entries, R"( nc:operation="replace")");
}

unsigned state_of(const edits::records &records)
{
    unsigned state = 0;
    for (std::size_t n = 0; n < edits::controllers.size(); ++n)
        state |= records.contains(device::interface_key("act", edits::controllers[n])) ? 1U << n : 0U;
    return state;
}

/* Runs `work` in a process of its own, which it never leaves but by its end. */
pid_t start(const std::function<void()> &work)
{
    const pid_t child = ::fork();
    if (child != 0)
        return child;
    try {
        work();
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        ::_exit(1);
    }
    ::_exit(0);
}

/* The child's exit status, -1 for one that was killed. */
int finish(pid_t child)
{
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/* No process holds the store between the steps: each opens it for itself, and a fork must not carry it over. */
class crash : public testing::Test
{
  protected:
    crash()
    {
        device::folder device = device::folder::create(path_);
        edits::fill(device);
        foreign_ = edits::stored(device);
    }

    /* The state, once everything else was found to be as it was. */
    unsigned state() const
    {
        device::folder device = device::folder::open(path_);
        edits::records now = edits::stored(device);
        const unsigned found = state_of(now);
        for (const std::string &controller : edits::controllers)
            now.erase(device::interface_key("act", controller));
        EXPECT_EQ(now, foreign_);
        return found;
    }

    temporary_folder folder_;
    std::filesystem::path path_ = folder_.path / "device";
    edits::records foreign_;
};

TEST_F(crash, killed_at_any_moment_the_store_is_old_or_new)
{
    const char *const wanted = std::getenv("CHMON_KILLS"); /* more for a soak */
    const int kills = wanted == nullptr ? 100 : std::atoi(wanted);
    std::mt19937 random(1);
    std::uniform_int_distribution<int> delay(0, 20000); /* microseconds */
    unsigned before = state(), mid_edit = 0, acknowledged = 0;
    for (int round = 0; round < kills; ++round) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t editor = start([&] {
            const service::plugin mapper;
            device::folder device = device::folder::open(path_);
            for (unsigned next = before;;) {
                next = (next + 1) % states;
                edits::edit(mapper, device, folder_.path, edit_to(next));
                if (::write(ends[1], "", 1) != 1)
                    return;
            }
        });
        ::close(ends[1]);
        char byte;
        ASSERT_EQ(::read(ends[0], &byte, 1), 1) << "round " << round << ": no edit succeeded";
        unsigned done = 1;
        ::usleep(static_cast<useconds_t>(delay(random)));
        ::kill(editor, SIGKILL);
        EXPECT_EQ(finish(editor), -1);
        while (::read(ends[0], &byte, 1) == 1)
            ++done;
        ::close(ends[0]);
        const unsigned now = state();
        const unsigned ahead = (now + states - (before + done) % states) % states;
        ASSERT_LE(ahead, 1U) << "round " << round << ": " << done << " edits acknowledged from state " << before
                             << ", found " << now;
        mid_edit += ahead;
        acknowledged += done;
        before = now;
    }
    std::printf("kills=%d acknowledged=%u committed_unacknowledged=%u\n", kills, acknowledged, mid_edit);
}

TEST_F(crash, writers_take_turns_and_readers_see_one_state)
{
    constexpr int rounds = 40;
    /* Writer w configures and removes the two monitors of slot w + 1 in one edit each. */
    std::vector<pid_t> processes;
    for (std::size_t slot = 0; slot < 3; ++slot) {
        processes.push_back(start([this, slot] {
            const service::plugin mapper;
            device::folder device = device::folder::open(path_);
            const temporary_folder own;
            for (int round = 0; round < rounds; ++round) {
                const std::string attribute = round % 2 == 0 ? " nc:operation='create'" : " nc:operation='delete'";
                const std::string both = entry(2 * slot, attribute) + entry(2 * slot + 1, attribute);
                if (edits::edit(mapper, device, own.path, edits::document(both)).size() != 2)
                    throw std::runtime_error("an edit did not make two changes");
            }
        }));
        processes.push_back(start([this] {
            device::folder device = device::folder::open(path_);
            for (int look = 0; look < 500; ++look) {
                const unsigned state = state_of(edits::stored(device));
                if ((state & 0b010101) != (state >> 1 & 0b010101))
                    throw std::runtime_error("half an edit was seen");
            }
        }));
    }
    for (const pid_t process : processes)
        EXPECT_EQ(finish(process), 0);
    EXPECT_EQ(state(), 0U) << "every create was followed by a delete";
}

/* A change of many pages beside the small ones of edits: every record of a table. */
void fill_items(device::folder &device, unsigned state)
{
    ostore::write_transaction txn(device.database());
    for (std::size_t n = 0; n < 200; n += 1 + state % 2)
        txn.put(device.database().items(), std::to_string(n), std::string(100 * (n % 20), static_cast<char>(state)));
    txn.put(device.database().items(), "last", std::string(1, static_cast<char>(state)));
    txn.commit();
}

unsigned items_state(device::folder &device)
{
    const ostore::read_transaction txn(device.database());
    const auto last = txn.get(device.database().items(), "last");
    const unsigned found = last ? static_cast<unsigned char>(last->front()) : 0;
    for (ostore::cursor at(txn, device.database().items()); found % 2 == 0 && at.next();)
        EXPECT_TRUE(at.key().starts_with('/') ||
                    at.value().find_first_not_of(static_cast<char>(found)) == std::string::npos)
            << at.key();
    return found;
}

/*
 * Each call by which a change reaches the disk fails in turn, from the store's opening on: what was acknowledged is
 * there, what was refused is not, and whoever opens the store next can work with it.
 */
TEST_F(crash, every_call_to_the_disk_fails)
{
    constexpr int refusal = 42, wrong_tag = 43, no_such_call = 44;
    unsigned cases = 0, refused = 0;
    const auto try_call = [&](unsigned at, failing::how manner, bool on, bool many) {
        const auto found = [&] {
            const unsigned edited = state();
            device::folder device = device::folder::open(path_);
            return many ? items_state(device) : edited;
        };
        const unsigned before = found(), next = (before + 1) % states;
        const pid_t editor = start([&] {
            const service::plugin mapper;
            failing::chosen = at, failing::manner = manner, failing::lasting = on;
            int status = 0;
            try {
                device::folder device = device::folder::open(path_);
                if (many)
                    fill_items(device, next);
                else
                    edits::edit(mapper, device, folder_.path, edit_to(next));
                status = failing::made < at ? no_such_call : 0;
            } catch (const service::netconf_error &error) {
                status = error.tag() == "resource-denied" || error.tag() == "operation-failed" ? refusal : wrong_tag;
            } catch (const ostore::store_error &) {
                status = refusal;
            }
            ::_exit(status);
        });
        const int status = finish(editor);
        const unsigned now = found();
        const int failed = manner == failing::how::death ? -1 : refusal;
        EXPECT_TRUE(status == 0 || status == no_such_call ? now == next : status == failed && now == before)
            << "call " << at << ", way " << static_cast<int>(manner) << (on ? ", lasting" : "")
            << (many ? ", many pages" : "") << ": status " << status << ", state " << now << " after " << before;
        refused += status == failed;
        return status != no_such_call;
    };
    using failing::how;
    for (const how manner : {how::io_error, how::no_space, how::half, how::death})
        for (const bool on : {false, true})
            for (const bool many : {false, true})
                for (unsigned at = 1; try_call(at, manner, on, many) && !HasFailure(); ++at)
                    ++cases;
    std::printf("failed_disk_calls=%u refused_or_killed=%u\n", cases, refused);
    EXPECT_GE(refused, 80U);
}

/* A reader that died keeps no pages from being used again, and no writer waiting. */
TEST_F(crash, dead_readers_hold_nothing)
{
    int go[2], ready[2];
    ASSERT_TRUE(::pipe(go) == 0 && ::pipe(ready) == 0);
    char byte = 0;
    const pid_t reader = start([&] {
        if (::read(go[0], &byte, 1) != 1)
            return;
        device::folder device = device::folder::open(path_);
        const ostore::read_transaction held(device.database());
        if (::write(ready[1], "", 1) == 1)
            ::pause();
    });
    const pid_t editor = start([&] {
        const service::plugin mapper;
        device::folder device = device::folder::open(path_);
        const auto size_after = [&](unsigned edits) {
            for (unsigned n = 0; n < edits; ++n)
                edits::edit(mapper, device, folder_.path, edit_to(n % states));
            return std::filesystem::file_size(path_ / "store.mdb");
        };
        const auto before = size_after(20);
        if (::write(go[1], "", 1) != 1 || ::read(ready[0], &byte, 1) != 1)
            throw std::runtime_error("no reader");
        ::kill(reader, SIGKILL);
        ::usleep(50000); /* until its locks are gone */
        const auto after = size_after(60);
        if (after > before + (std::uintmax_t{128} << 10))
            throw std::runtime_error("the store grew by " + std::to_string(after - before) + " bytes");
    });
    EXPECT_EQ(finish(editor), 0);
    EXPECT_EQ(finish(reader), -1);
}

} // namespace
