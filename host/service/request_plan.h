/* An OpenConfig request becomes native paths. */
#ifndef SERVICE_REQUEST_PLAN_H
#define SERVICE_REQUEST_PLAN_H

#include "service/format.h"
#include "service/plugin.h"
#include "service/walk_options.h"

#include "framework/arena.h"

#include "framework/mapping.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace service {

/* Whether requests of a kind only read. */
bool is_read_kind(std::uint32_t kind);

/* What the plug-in makes of one request. */
class request_plan
{
  public:
    /*
     * Walks `request`, a channel-monitors container; its nodes are marked in place, and key leaves may be added to it,
     * in `memory`, which holds the native tree as well. Throws walk_fault. The plug-in must outlive the plan.
     */
    request_plan(const plugin &mapper, const dtf_datatree &request, std::uint32_t kind, framework::arena &memory,
                 const walk_options &walks);

    /* The native request: a root without a tag whose children are the native models' top containers. */
    const dtf_datatree &native() const { return native_; }

    /* What the walk leaves to be asked: the sources of native nodes. */
    const framework::mapping &walk() const { return walk_; }

  private:
    framework::mapping walk_;
    dtf_datatree native_{};
};

struct plan_options {
    /* The request's document, XML or JSON; "-" is standard input. */
    std::string document;
    /* An inventory file. Without it a request that names no monitor concerns none. */
    std::optional<std::filesystem::path> inventory;
    /* How the native request is written; as the document is where not given. */
    std::optional<document_format> format;
    std::uint32_t kind = 10;
    walk_options walks;
};

/* Reads a request, walks it, and gives the text of the native request (plan_text.h). Throws
 * wrong_model and walk_fault. */
std::string plan_document(const plugin &mapper, const plan_options &options);

} // namespace service

#endif
