#include "recording_host.h"
#include <algorithm>
#include <arpa/inet.h>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <numeric>
#include <unistd.h>

namespace recording {

host *current = nullptr;

namespace {

/* What the host left in each site word, and the place whose it is; both outlive every host. */
struct site {
    uint32_t word = 0xffffffff;
    std::string place{};
};
std::map<uint32_t *, site> sites;
bool library_found = false;

DTF_PRINTF_LIKE(1, 0) std::string printed_list(const char *format, va_list arguments)
{
    char *text = nullptr;
    const int length = vasprintf(&text, format, arguments);
    std::string copy(text, static_cast<std::size_t>(length));
    std::free(text);
    return copy;
}

/* The host of a call, which must be given that host's own context. */
host &at(dtf_map_ctx ctx)
{
    current->violate(ctx != &current->context, "foreign context");
    return *current;
}

} // namespace

std::string printed(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string text = printed_list(format, arguments);
    va_end(arguments);
    return text;
}

std::size_t setting(const char *name, std::size_t otherwise)
{
    const char *const text = std::getenv(name);
    return text != nullptr ? std::strtoul(text, nullptr, 10) : otherwise;
}

std::size_t share() { return setting("CHMON_SHARE", RECORDING_ASAN ? 4 : 1); }

host::host(const std::vector<std::string> &inventory) : previous(current)
{
    context.req_ctx = &state;
    state.req = &request;
    request.data_input = 10;
    context.debug_filter.levels = 1u << DTF_LEVEL_ERR | 1u << DTF_LEVEL_TRC;
    context.err_log = &lines;
    context.trc_log = &additions;
    context.trace_ring = &violations;
    context.trace_on = 1;
    log_start = printed(": DTF: ctx=%p,", static_cast<void *>(&context));
    for (const std::string &monitor : inventory) {
        const std::string entity = std::string(monitor).replace(monitor.find('/'), 1, "%2f");
        items["/oper/inventory/gl/entity/" + entity + "/attrib/inv_basic_parcel"] = {
            {14, "inv_phy_entity_basic_info"}, {5, "Index", {}, 7}, {12, "Name", monitor}, {15}, {18}};
    }
    current = this;
}

host::~host()
{
    for (const auto *owned : {&copies, &token_texts})
        std::for_each(owned->begin(), owned->end(), std::free);
    current = current == this ? previous : current;
}

void host::violate(bool broken, std::string_view what)
{
    if (broken)
        violations.emplace_back(what);
}

void host::add_line(const std::string &line) { lines.push_back(line + (watch ? watch() : "")); }

/* A report is over when anything else happens: both sinks must have had it by then. Whatever happens, the error tag is
 * null or a copy that lives. */
void host::finish_report()
{
    violate(drawn.has_value() || asked_level.has_value(), "report left unfinished");
    violate(state.error_tag != nullptr && !copies.contains(state.error_tag), "error_tag is no copy");
    drawn.reset();
    asked_level.reset();
    logged.clear();
}

bool host::fails(bool copy)
{
    if (copy != fail_copies)
        return false;
    ++calls;
    return fail_at != 0 && (calls == fail_at || (fail_on && calls > fail_at));
}

std::string host::name(const dtf_datatree *node) const
{
    if (node == nullptr || node == &out)
        return node == nullptr ? "null" : "out";
    const auto found = std::find(nodes.begin(), nodes.end(), node);
    return found == nodes.end()
               ? "unknown"
               : (node->tag == nullptr ? "?" : node->tag) + ('#' + std::to_string(std::distance(nodes.begin(), found)));
}

const char *host::keep(std::string_view text)
{
    texts.push_back(std::make_unique<char[]>(text.size() + 1));
    text.copy(texts.back().get(), text.size());
    return texts.back().get();
}

/* Fills `node` from the text at p and returns what is behind it. */
const char *host::sprout(dtf_datatree &node, const char *p, const char *ns)
{
    std::string word(p, std::strcspn(p, " {}=@"));
    p += word.size();
    const auto prefix = word.substr(0, word.find(':') == std::string::npos ? 0 : word.find(':') + 1);
    node.ns = prefix == "x:" ? "urn:foreign" : prefix == "-:" ? nullptr : ns;
    node.tag = word.substr(prefix.size()) == "?" ? nullptr : keep(word.substr(prefix.size()));
    node.flags = DTF_FLAG_VALID;
    if (*p == '@') {
        node.operation = static_cast<uint32_t>(p[1] - '0');
        node.flags |= DTF_FLAG_OP_SET;
        p += 2;
    }
    if (*p == '=') {
        const std::size_t length = std::strcspn(++p, " {}");
        node.value = keep({p, length});
        node.flags |= DTF_FLAG_HAS_VALUE;
        p += length;
    }
    if (*p == '{') {
        auto &children = arrays.emplace_back();
        for (p += 1 + std::strspn(p + 1, " "); *p != '}'; p += std::strspn(p, " "))
            p = sprout(children.emplace_back(), p, ns);
        ++p;
        node.flags |= DTF_FLAG_HAS_SUBTREE;
        node.children = children.data();
        node.child_count = static_cast<uint32_t>(children.size());
    }
    return p;
}

void host::number(dtf_datatree &node)
{
    nodes.push_back(&node);
    for (uint32_t i = 0; i < node.child_count; ++i)
        number(node.children[i]);
}

dtf_datatree *host::plant(const std::string &text, const char *ns)
{
    dtf_datatree &root = arrays.emplace_back(1)[0];
    (void)sprout(root, text.c_str(), ns);
    number(root);
    return &root;
}

dtf_datatree *host::append(dtf_datatree &parent, const char *tag, const char *ns)
{
    auto &children = arrays.emplace_back();
    const bool any = (parent.flags & DTF_FLAG_HAS_SUBTREE) != 0 && parent.children != nullptr;
    children.reserve((any ? parent.child_count : 0) + 1);
    for (uint32_t i = 0; any && i < parent.child_count; ++i) {
        dtf_datatree &moved = children.emplace_back(parent.children[i]);
        std::replace(nodes.begin(), nodes.end(), &parent.children[i], &moved);
        if (poison)
            std::memset(&parent.children[i], 0xa5, sizeof moved);
    }
    dtf_datatree &created = children.emplace_back();
    created.tag = keep(tag);
    created.ns = ns;
    created.flags = DTF_FLAG_VALID;
    number(created);
    parent.children = children.data();
    parent.child_count = static_cast<uint32_t>(children.size());
    parent.flags |= DTF_FLAG_HAS_SUBTREE;
    return &created;
}

const void *host::parcel(const std::vector<token> &tokens)
{
    return &parcel_bytes.emplace_back(&parcels.emplace_back(tokens));
}

bool host::is_own_affair(std::string_view line)
{
    static const std::set<std::string_view> words = {"is_delete", "itree_peak", "itree_size", "copy"};
    return words.contains(line.substr(0, line.find(' ')));
}

std::string host::text() const
{
    std::string all;
    for (const auto &line : lines)
        all += is_own_affair(line) ? "" : line + '\n';
    return all;
}

std::string host::imbalance(std::size_t stack_at_entry)
{
    finish_report();
    // Where free() is not ours to see (address sanitizer, valgrind), what is left is found at the process's end.
    static const bool frees_are_seen = [this, before = blocks.size()] {
        blocks.push_back(std::malloc(1));
        std::free(blocks.back());
        return blocks.size() == before;
    }();
    if (!frees_are_seen)
        blocks.clear();
    const std::pair<const char *, std::size_t> left[] = {
        {"hierarchy", state.hierarchy_len},
        {"output list", output_list.size()},
        {"instance-tree stack", itree.size() - stack_at_entry},
        {"tokens", tokens_held},
        {"walks", walks},
        {"bindings", binds.size()},
        {"data blocks", blocks.size()},
        {"named copies", copies.size() - copies.count(state.error_tag)}};
    for (const auto &[of, count] : left)
        violate(count != 0, printed("left over: %zu %s", count, of));
    return std::accumulate(violations.begin(), violations.end(), std::string(),
                           [](const std::string &all, const std::string &next) { return all + next + '\n'; });
}

} // namespace recording

using namespace recording;

#if !RECORDING_ASAN
/* Sees the plug-in free its data blocks. */
extern "C" void free(void *block)
{
    static const auto real_free = reinterpret_cast<void (*)(void *)>(dlsym(RTLD_NEXT, "free"));
    if (current != nullptr)
        std::erase(current->blocks, block);
    real_free(block);
}
#endif

extern "C" {

int dtf_debug_should_log(struct dtf_debug_filter *filter, uint32_t level)
{
    current->finish_report();
    current->violate(filter != &current->context.debug_filter, "foreign filter");
    if ((filter->levels >> level & 1) == 0)
        return 0;
    current->asked_level = level;
    return 0x100;
}

void _plat_dt_log_filter_adv(void *log, uint32_t a, uint32_t b, uint32_t c, uint32_t d, uint32_t e, uint32_t *site_word,
                             const char *format, ...)
{
    host &h = *current;
    va_list arguments;
    va_start(arguments, format);
    const std::string line = printed_list(format, arguments);
    va_end(arguments);
    const std::string level = log == h.context.err_log ? "ERR" : "TRC", start = level + h.log_start;
    h.violate((level == "TRC" && log != h.context.trc_log) || (a | b | c | d | e) != 0 || !line.starts_with(start),
              line);
    h.violate(h.asked_level != (level == "ERR" ? DTF_LEVEL_ERR : DTF_LEVEL_TRC), "logged without asking");
    h.asked_level.reset();
    h.logged = level + ' ' + line.substr(std::min(start.size(), line.size()));
    h.site_word = site_word;
    h.add_line(h.logged);
    h.violate(*site_word != sites[site_word].word, "site word changed");
    *site_word = sites[site_word].word = static_cast<uint32_t>(sites.size());
}

uint32_t ret_nc_dtf_trace_index_incr(void)
{
    static uint32_t index = 0xfffffff0;
    current->violate(current->drawn.has_value() || current->context.trace_on == 0, "index drawn for nothing");
    current->drawn = ++index;
    return index;
}

void _ringlog(void *trace_ring, uint64_t tag, const char *line)
{
    host &h = *current;
    char level[4] = "", function[200] = "";
    unsigned index = 0;
    int number = 0;
    const int read = std::sscanf(line, "#%u: %3s: %199[^:]:%d ctx=", &index, level, function, &number);
    const std::string start =
        printed("#%u: %s: %s:%d", index, level, function, number) + h.log_start.substr(h.log_start.find(" ctx"));
    // The filter alone says whether this report's line has just gone to the debug log.
    const bool wanted = (h.context.debug_filter.levels >> (*level == 'E' ? DTF_LEVEL_ERR : DTF_LEVEL_TRC) & 1) != 0;
    const std::string text =
        (h.logged.empty() ? line : start + h.logged.substr(4)).substr(std::min(start.size(), std::strlen(line)));
    h.violate(read != 4 || trace_ring != h.context.trace_ring || tag != 0x10101000000 || h.drawn != index ||
                  h.logged.empty() == wanted || line != (start + text).substr(0, 249),
              line);
    h.drawn.reset();
    if (!h.logged.empty())
        h.lines.pop_back();
    h.add_line(printed("%s %s: ", level, function) + (h.logged.empty() ? text.substr(0, traced) : text));
    if (h.logged.empty())
        return;
    // A place is a line of a function, and its word is its alone.
    std::string &own = sites[h.site_word].place;
    const std::string place = printed("%s:%d", function, number);
    own = own.empty() ? place : own;
    h.violate(own != place || !h.logged.starts_with(level), "site word shared, or two levels: " + place);
}

void dtf_oc_error_path(dtf_map_ctx ctx)
{
    at(ctx).note("error_path", ctx->req_ctx == nullptr ? nullptr : ctx->req_ctx->error_tag);
}

void dtf_map_add_to_node_hierarchy(dtf_map_ctx ctx, const struct dtf_datatree *node, uint32_t kind)
{
    host &h = at(ctx).note("push", node, kind);
    if (h.state.hierarchy_len < DTF_HIERARCHY_MAX)
        h.state.hierarchy[h.state.hierarchy_len++].node_data = node;
}

void dtf_map_remove_from_node_hierarchy(dtf_map_ctx ctx, const struct dtf_datatree *node)
{
    host &h = at(ctx).note("pop", node);
    if (h.state.hierarchy_len == 0 || h.state.hierarchy[h.state.hierarchy_len - 1].node_data != node)
        return h.violate(true, "popped what is not on top: " + h.name(node));
    h.state.hierarchy[--h.state.hierarchy_len].node_data = nullptr;
}

faultno dtf_map_update_current_list_node(dtf_map_ctx ctx, const char *schema_path)
{
    return at(ctx).note("current", schema_path).answer();
}

void dtf_add_to_output_list_ctx(dtf_map_ctx ctx, const struct dtf_datatree *entry, struct dtf_datatree *out)
{
    host &h = at(ctx).note("list_in", entry, out);
    if (!h.fails() && ++h.state.output_list_len != 0) // 8 bits: beyond them there is no entry to withdraw
        h.output_list.push_back(entry);
}

void dtf_remove_from_output_list_ctx(dtf_map_ctx ctx, const struct dtf_datatree *entry, struct dtf_datatree *out)
{
    host &h = at(ctx).note("list_out", entry, out);
    if (h.output_list.empty() || h.output_list.back() != entry)
        return h.violate(true, "withdrawn what is not last in the output list: " + h.name(entry));
    h.output_list.pop_back();
    --h.state.output_list_len;
}

int dtf_map_do_these_match(const char *a, const char *b)
{
    return a != nullptr && b != nullptr && std::strcmp(a, b) == 0 ? 0x100 : 0;
}

faultno dtf_map_datatree_add_path_flagged(dtf_map_ctx ctx, struct dtf_datatree *tree, const char *path, const char *ns,
                                          const char *value, const struct dtf_datatree *source,
                                          struct dtf_datatree **created, uint32_t new_list_entry, uint32_t ninth)
{
    host &h = at(ctx).note("add", tree, path, ns, value, source, created != nullptr, new_list_entry, ninth);
    const faultno code = h.answer();
    h.additions.push_back({path, value == nullptr ? text_or_null{} : text_or_null{value}, new_list_entry});
    if (code != 0)
        return code;
    dtf_datatree *node = tree == &h.out ? nullptr : h.append(*tree, path, ns);
    if (created != nullptr)
        *created = node;
    if (h.on_add)
        h.on_add(h, h.additions.back());
    return 0;
}

int dtf_map_is_request_delete(const struct dtf_datatree *node)
{
    current->note("is_delete", node);
    return node->operation == 3 || node->operation == 4 ? 0x100 : 0;
}

int dtf_map_is_request_add(dtf_map_ctx ctx, const struct dtf_datatree *node)
{
    const uint32_t kind = at(ctx).note("is_add", node).request.data_input;
    return kind != 0 && kind != 10 && node->operation <= 2 ? 0x100 : 0;
}

int dtf_map_check_oc_leafref(dtf_map_ctx ctx, const char *list_path, const char *container, const char *key_tag,
                             const struct dtf_datatree *entry)
{
    host &h = at(ctx).note("leafref", list_path, container, key_tag, entry);
    return static_cast<int>(h.fails() ? h.fail_code : h.leafref);
}

void dtf_map_util_itree_stack_push(dtf_map_ctx ctx, struct dtf_datatree *children, uint32_t count,
                                   dtf_itree_callback callback)
{
    at(ctx).note("itree_push", children, count, callback != nullptr).itree.push_back({children, count, callback});
}

void dtf_map_util_itree_stack_pop(dtf_map_ctx ctx)
{
    host &h = at(ctx).note("itree_pop");
    h.violate(h.itree.empty(), "instance-tree stack is empty");
    h.itree.resize(std::max<std::size_t>(h.itree.size(), 1) - 1);
}

void dtf_map_util_itree_stack_peak(dtf_map_ctx ctx, struct dtf_itree_entry **entry)
{
    host &h = at(ctx).note("itree_peak");
    *entry = h.itree.empty() ? nullptr : &h.itree.back();
}

uint32_t dtf_map_util_itree_stack_size(dtf_map_ctx ctx)
{
    return static_cast<uint32_t>(at(ctx).note("itree_size").itree.size());
}

void dtf_map_print_datatree_internal(dtf_map_ctx ctx, const struct dtf_datatree *tree, const char *label)
{
    at(ctx).note("print", tree, label);
}

char *dtf_strdup(const char *text, const char *tag)
{
    char *copy = current->note("strdup", text, tag).fails() || text == nullptr ? nullptr : strdup(text);
    if (copy != nullptr)
        current->copies.insert(copy);
    return copy;
}

void plat_named_free(void *allocation)
{
    host &h = current->note("named_free", static_cast<char *>(allocation));
    h.violate(allocation != nullptr && h.copies.erase(allocation) == 0, "freed what is no named copy");
    std::free(allocation);
}

int dtf_strncpy_s(const char *function, char *destination, size_t size, const char *source, size_t count)
{
    host &h = current->note("copy", function, size, source);
    const std::string_view text(source == nullptr || h.fails(true) ? "" : source);
    const size_t wanted = std::min(text.size(), count), fit = std::min(wanted, size - 1);
    destination[text.copy(destination, fit)] = '\0';
    return fit == wanted && (source == nullptr || !text.empty() || *source == '\0') ? 0 : 1;
}

int dtf_strcpy_s(const char *function, char *destination, size_t size, const char *source)
{
    return dtf_strncpy_s(function, destination, size, source, SIZE_MAX);
}

int dtf_strcat_s(const char *function, char *destination, size_t size, const char *source)
{
    const size_t used = std::strlen(destination);
    return dtf_strncpy_s(function, destination + used, size - used, source, SIZE_MAX);
}

const char *fault_strerror(faultno code)
{
    static thread_local char text[20];
    std::snprintf(text, sizeof text, "fault %08x", code);
    return text;
}

int access(const char *path, int mode) noexcept
{
    if (std::strcmp(path, "/pkg/lib/libostore.so") != 0 || current == nullptr)
        return faccessat(AT_FDCWD, path, mode, 0);
    host &h = current->note("access", mode);
    h.violate(library_found, "presence tested again");
    library_found = !h.fails() && h.library_readable;
    return library_found ? 0 : -1;
}

faultno _ostore_bind(void **handle, const char *path, uint32_t options)
{
    host &h = current->note("bind", path, options);
    h.violate(!library_found, "bind without library");
    const faultno code = h.answer();
    *handle = code != 0 || h.null_handle ? nullptr : strdup(path);
    if (*handle != nullptr)
        h.binds.insert(*handle);
    return code;
}

faultno ostore_item_get(void *handle, const char *item, uint32_t *word, void **data, uint32_t *length, uint32_t options)
{
    host &h = current->note("get", item, *word, options);
    *word = 0xdeadbeef;
    if (!h.binds.contains(handle))
        return h.violate(true, "get without binding"), 1;
    if (h.fails())
        return h.fail_code;
    const auto found = h.items.find(static_cast<char *>(handle) + std::string(item));
    if (found == h.items.end())
        return 0x8081c205;
    *data = std::malloc(*length = host::parcel_length);
    std::memcpy(*data, h.parcel(found->second), host::parcel_length);
    h.blocks.push_back(*data);
    return 0;
}

void _ostore_unbind(void *handle)
{
    host &h = current->note("unbind");
    h.violate(h.binds.erase(handle) == 0, "unbound what is not bound");
    std::free(handle);
}

faultno parcel_header_info(const void *, parcel_header_td *header)
{
    const faultno code = current->note("header").answer();
    if (code == 0)
        *header = {"inv_basic", 3, -1};
    return code;
}

faultno parcel_generic_init(const void *parcel, uint32_t length, parcel_walk_td *walk)
{
    host &h = current->note("walk", length);
    if (h.fails())
        return h.fail_code;
    std::memset(walk, 0xa5, sizeof *walk);
    std::memcpy(&walk->state[0], parcel, sizeof(void *));
    walk->state[1] = 0;
    ++h.walks;
    return 0;
}

faultno parcel_generic_token(parcel_walk_td *walk, parcel_token_td *token)
{
    host &h = current->note("token", walk->state[1]);
    const auto &tokens = *reinterpret_cast<const std::vector<recording::token> *>(walk->state[0]);
    if (h.fails())
        return h.fail_code;
    if (walk->state[1] >= tokens.size())
        return 0x8081f001;
    const recording::token &next = tokens[walk->state[1]++];
    const auto owned = [&](const text_or_null &text) -> const char * {
        return text ? static_cast<char *>(*h.token_texts.insert(strdup(text->c_str())).first) : nullptr;
    };
    std::memset(token, 0xa5, sizeof *token);
    token->type = next.type;
    token->field_name = owned(next.name);
    token->second_text = next.type == PARCEL_TOKEN_SECOND_TEXT ? owned(next.text) : nullptr;
    if (next.type == PARCEL_TOKEN_TEXT)
        token->value.text = owned(next.text);
    else
        token->value.u32 = next.number;
    ++h.tokens_held;
    return 0;
}

void parcel_generic_free_token_allocations(parcel_token_td *token)
{
    host &h = current->note("release", token->field_name);
    for (const char *text :
         {token->field_name, token->second_text, token->type == PARCEL_TOKEN_TEXT ? token->value.text : nullptr}) {
        h.violate(text != nullptr && h.token_texts.erase(const_cast<char *>(text)) == 0, "token released twice");
        std::free(const_cast<char *>(text));
    }
    --h.tokens_held;
}

void parcel_generic_destroy(parcel_walk_td *)
{
    host &h = current->note("destroy");
    h.violate(h.walks-- == 0, "walk ended twice");
}

const char *inet_ntoa_r(uint32_t address)
{
    static thread_local char text[INET_ADDRSTRLEN];
    current->note("inet_ntoa_r");
    return inet_ntop(AF_INET, &address, text, sizeof text);
}
}
