#include "device/folder.h"

#include "device/native_tables.h"

#include <stdexcept>

namespace device {
namespace {

/// The store, with LMDB's lock file beside it.
std::filesystem::path store_of(const std::filesystem::path &path) { return path / "store.mdb"; }

/// Whether the folder holds a whole store. One that was broken off, or a foreign file, counts as none: to complete the
/// first and refuse the second is the database's business.
bool holds_device(const std::filesystem::path &path)
{
    try {
        ostore::database::open(store_of(path));
        return true;
    } catch (const ostore::store_error &) {
        return false;
    }
}

/// Makes the folder, or throws when that cannot be or the device is there.
const std::filesystem::path &prepared(const std::filesystem::path &path)
{
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (error) {
        throw std::runtime_error(path.string() + ": the folder cannot be made: " + error.message());
    }
    if (holds_device(path)) {
        throw std::runtime_error(path.string() + ": holds a device already");
    }
    return path;
}

/// Hands the path back when a store lies there.
const std::filesystem::path &existing(const std::filesystem::path &path)
{
    std::error_code error;
    if (!std::filesystem::exists(store_of(path), error)) {
        const std::string cause = error ? ": " + error.message() : "";
        throw std::runtime_error(path.string() + ": holds no device" + cause + " ('chmon init' makes one)");
    }
    return path;
}

} // namespace

folder::folder(const std::filesystem::path &path, opening how)
    : database_(how == opening::create ? ostore::database::create(store_of(prepared(path)), native_tables())
                                       : ostore::database::open(store_of(existing(path)), native_tables()))
{
}

folder folder::create(const std::filesystem::path &path) { return folder(path, opening::create); }

folder folder::open(const std::filesystem::path &path) { return folder(path, opening::open); }

} // namespace device
