/* An inventory for commands that have no device: it answers the plug-in while it lives. */
#ifndef DEVICE_TEMPORARY_INVENTORY_H
#define DEVICE_TEMPORARY_INVENTORY_H

#include "ostore/database.h"

#include <filesystem>
#include <string>
#include <vector>

namespace device {

class temporary_inventory
{
  public:
    /* Reads an inventory file. Throws a std::runtime_error that names it and what is wrong. */
    explicit temporary_inventory(const std::filesystem::path &file);

    /* Holds these monitors. Throws std::invalid_argument for what is no monitor name. */
    explicit temporary_inventory(const std::vector<std::string> &monitors);

  private:
    /* In this order: what is served must be there first, and go last. */
    ostore::database store_ = ostore::database::temporary();
    ostore::serving served_ = store_.serve();
};

} // namespace device

#endif
