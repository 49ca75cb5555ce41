#include "device/temporary_inventory.h"

#include "device/inventory.h"
#include "device/inventory_file.h"
#include "framework/document.h"
#include "ostore/transaction.h"

namespace device {

namespace {

std::vector<std::string> monitors_in(const std::filesystem::path &file)
{
    const auto inventory = framework::read_document_text(file.string(), framework::document_options().size_limit);
    return read_inventory(framework::content_of(inventory), inventory.name);
}

} // namespace

temporary_inventory::temporary_inventory(const std::filesystem::path &file) : temporary_inventory(monitors_in(file)) {}

temporary_inventory::temporary_inventory(const std::vector<std::string> &monitors)
{
    ostore::write_transaction change(store_);
    replace_monitors(change, monitors);
    change.commit();
}

} // namespace device
