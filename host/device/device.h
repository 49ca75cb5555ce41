/// A device: a folder that holds its store.
#pragma once

#include "ostore/database.h"

#include <filesystem>

namespace device {

/// The store of one device folder, open. Errors are std::runtime_error (mostly ostore::store_error) of one line.
class device
{
  public:
    /// Makes the folder, with those above it, and an empty store in it. Refuses a folder that holds a device already,
    /// and one whose store file is something else; completes one whose making was broken off.
    static device create(const std::filesystem::path &folder);

    /// Opens a device that was made before.
    static device open(const std::filesystem::path &folder);

    ostore::database &database() { return database_; }
    const ostore::database &database() const { return database_; }

  private:
    enum class opening { create, open };
    device(const std::filesystem::path &folder, opening how);

    ostore::database database_;
};

} // namespace device
