#include "service/plan_text.h"

#include "framework/json_writer.h"
#include "framework/xml_writer.h"

namespace service {

namespace {

/* Also operations that a node has from above: its native parent need not have them. */
framework::node_notes notes_of(const framework::mapping &walk, const dtf_datatree &node)
{
    framework::node_notes notes;
    if ((node.flags & DTF_FLAG_OP_SET) != 0 || node.operation != 0)
        notes.operation = framework::operation_word(node.operation);
    if (const framework::source_note *const source = walk.source_of(node))
        notes.source = source->path;
    return notes;
}

} // namespace

std::string plan_text(const request_plan &plan, document_format format)
{
    const auto notes = [&walk = plan.walk()](const dtf_datatree &node) { return notes_of(walk, node); };
    std::string text;
    if (format == document_format::xml)
        framework::write_xml(text, plan.native(), {true, notes});
    else
        framework::write_json(text, plan.native(), {true, notes});
    return text;
}

} // namespace service
