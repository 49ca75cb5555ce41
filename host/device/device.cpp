#include "device/device.h"

#include "device/native_tables.h"

#include <stdexcept>

namespace device {
namespace {

std::filesystem::path store_of(const std::filesystem::path &folder) { return folder / "store.mdb"; }

/// Whether the folder holds a whole store. One that was broken off, or a foreign file, counts as none: to complete the
/// first and refuse the second is the database's business.
bool holds_device(const std::filesystem::path &folder)
{
    try {
        ostore::database::open(store_of(folder));
        return true;
    } catch (const ostore::store_error &) {
        return false;
    }
}

/// Makes the folder, or throws when that cannot be or the device is there.
const std::filesystem::path &prepared(const std::filesystem::path &folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        throw std::runtime_error(folder.string() + ": the folder cannot be made: " + error.message());
    }
    if (holds_device(folder)) {
        throw std::runtime_error(folder.string() + ": holds a device already");
    }
    return folder;
}

const std::filesystem::path &existing(const std::filesystem::path &folder)
{
    std::error_code error;
    if (!std::filesystem::exists(store_of(folder), error)) {
        const std::string cause = error ? ": " + error.message() : "";
        throw std::runtime_error(folder.string() + ": holds no device" + cause + " ('chmon init' makes one)");
    }
    return folder;
}

} // namespace

device::device(const std::filesystem::path &folder, opening how)
    : database_(how == opening::create ? ostore::database::create(store_of(prepared(folder)), native_tables())
                                       : ostore::database::open(store_of(existing(folder)), native_tables()))
{
}

device device::create(const std::filesystem::path &folder) { return device(folder, opening::create); }

device device::open(const std::filesystem::path &folder) { return device(folder, opening::open); }

} // namespace device
