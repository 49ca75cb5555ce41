#include "device/load.h"

#include "device/document.h"
#include "device/inventory.h"
#include "device/inventory_file.h"
#include "device/native_document.h"

namespace device {
namespace {

/// The monitors of an inventory file, none while there was none.
using names = std::optional<std::vector<std::string>>;

/// Reads one document, whatever it is, into what it belongs to.
void read(const schema &modules, const framework::document_text &from, native_records &records, names &monitors)
{
    const document_kind kind = kind_of(from);
    check_text(from);
    if (kind != document_kind::inventory) {
        read_native(modules, from, kind == document_kind::native_xml ? format::xml : format::json, records);
        return;
    }
    if (monitors) {
        throw invalid_document(from.name + ": a second inventory in the same load");
    }
    monitors = read_inventory(framework::content_of(from), from.name);
}

} // namespace

load_summary load(folder &into, const schema &modules, const std::vector<framework::document_text> &documents)
{
    // First everything that can fail for the documents' sake and takes long; the writers' lock is not held meanwhile.
    native_records records;
    names monitors;
    for (const framework::document_text &each : documents) {
        read(modules, each, records, monitors);
    }

    ostore::write_transaction txn(into.database());
    records.store(txn);
    if (monitors) {
        replace_monitors(txn, *monitors);
    }
    txn.commit();

    load_summary summary;
    if (monitors) {
        summary.monitors = monitors->size();
    }
    if (records.has_interfaces()) {
        summary.interfaces = records.interface_count();
    }
    if (records.has_ports()) {
        summary.ports = records.port_count();
        summary.slices = records.slice_count();
    }
    return summary;
}

} // namespace device
