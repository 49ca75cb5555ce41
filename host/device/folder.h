/// A device on disk: a folder that holds its store.
#pragma once

#include "ostore/database.h"

#include <filesystem>

namespace device {

/// The store of one device folder, open. Errors are std::runtime_error (mostly ostore::store_error) of one line.
class folder
{
  public:
    /// Makes the folder, with those above it, and an empty store in it. Refuses a folder that holds a device already,
    /// and one whose store file is something else; completes one whose making was broken off.
    static folder create(const std::filesystem::path &path);

    /// Opens a device that was made before.
    static folder open(const std::filesystem::path &path);

    ostore::database &database() { return database_; }
    const ostore::database &database() const { return database_; }

  private:
    enum class opening { create, open };
    folder(const std::filesystem::path &path, opening how);

    ostore::database database_;
};

} // namespace device
