#include "service/native_document.h"

#include "service/judge.h"
#include "service/tree_access.h"

namespace service {

std::string native_document(const device::folder &device, native_parts parts, document_format format)
{
    const ostore::read_transaction state(device.database());
    framework::arena memory;
    const dtf_datatree native =
        device::naming_store(state, [&] { return fetch_all(device::native_reader(state), parts, memory); });
    std::string text = write_document(native, format);
    if (!children_of(native).empty())
        judge_native(framework::make_document_text(text, device.database().file()), format);
    return text;
}

} // namespace service
