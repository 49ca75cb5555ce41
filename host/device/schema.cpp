#include "device/schema.h"

#include <algorithm>
#include <cstdlib>
#include <libyang/libyang.h>
#include <new>
#include <string_view>

namespace device {
namespace {

/// What they import is found by libyang in the same folder.
constexpr const char *module_names[] = {"openconfig-channel-monitor", "Vantra-TALIN-controller-kestrel-ots-oper",
                                        "Vantra-TALIN-ifmgr-cfg"};

/// Messages quote values, and a value may be a page long or hold line ends: an error is one line of bounded length.
std::string one_line(std::string text)
{
    constexpr std::size_t longest = 300;
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
    if (text.size() > longest) {
        text = text.substr(0, longest / 2) + " ... " + text.substr(text.size() - longest / 2);
    }
    while (!text.empty() && (text.back() == '.' || text.back() == ' ')) {
        text.pop_back();
    }
    return text;
}

/// What stands behind a label, up to the `end` character, in libyang's description of a place; empty without the label.
/// The label goes without its first letter, which is a capital where the description begins with it.
std::string part_of(const std::string &place, std::string_view label, std::string_view end)
{
    const std::size_t found = place.find(label);
    if (found == std::string::npos) {
        return {};
    }
    const std::size_t begin = found + label.size();
    return place.substr(begin, place.find_first_of(end, begin) - begin);
}

/// How libyang says that a text ended where more was due: it met the NUL behind it.
bool tells_of_the_end(std::string_view message)
{
    return message.find("character 0x0") != message.npos || message.find("sequence \"\"") != message.npos ||
           message.find("end-of-input") != message.npos;
}

/// libyang's last error as "line 12, /path: cause"; the data path is preferred to the schema path, for it has the keys.
std::string last_error(const ly_ctx *context)
{
    const ly_err_item *error = ly_err_first(context);
    if (error == nullptr) {
        return "cause unknown";
    }
    error = error->prev; // the list is a ring: the first's predecessor is the latest
    const std::string place = error->path == nullptr ? "" : error->path;
    const std::string line = part_of(place, "ine number ", ",. )");
    std::string path = part_of(place, "ata location \"", "\"");
    if (path.empty()) {
        path = part_of(place, "chema location \"", "\"");
    }
    if (line.empty() && path.empty()) {
        path = place;
    }
    std::string where = line.empty() ? "" : "line " + line;
    if (!path.empty()) {
        where += (where.empty() ? "" : ", ") + path;
    }
    const std::string cause = error->msg == nullptr ? "cause unknown" : error->msg;
    return one_line((where.empty() ? "" : where + ": ") +
                    (tells_of_the_end(cause) ? "the document ends early" : cause));
}

/// libyang's view of a text, which it does not copy, and reads up to a NUL.
class input
{
  public:
    explicit input(std::string_view text)
    {
        if (ly_in_new_memory(text.data(), &in_) != LY_SUCCESS) {
            throw std::bad_alloc();
        }
    }
    input(const input &) = delete;
    input &operator=(const input &) = delete;
    ~input() { ly_in_free(in_, 0); }

    ly_in *get() const { return in_; }
    /// Bytes of the text that the parser took.
    std::size_t parsed() const { return ly_in_parsed(in_); }

  private:
    ly_in *in_ = nullptr;
};

} // namespace

void context_deleter::operator()(ly_ctx *context) const { ly_ctx_destroy(context); }

void data_deleter::operator()(lyd_node *first) const { lyd_free_all(first); }

std::filesystem::path schema::default_folder()
{
    if (const char *chosen = std::getenv("CHMON_YANG"); chosen != nullptr && *chosen != '\0') {
        return chosen;
    }
    std::error_code unreadable;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", unreadable);
    const auto installed = program.parent_path().parent_path() / "share/chmon/yang";
    return std::filesystem::is_directory(installed, unreadable) ? installed : std::filesystem::path(CHMON_YANG_FOLDER);
}

schema::schema(const std::filesystem::path &folder)
{
    if (std::error_code unreadable; !std::filesystem::is_directory(folder, unreadable)) {
        throw std::runtime_error(folder.string() + ": no folder of YANG modules there ($CHMON_YANG can name another)");
    }
    // A setting of the whole process. Errors are kept for last_error(), not printed: only the caller knows what to say
    // to whom.
    ly_log_options(LY_LOSTORE);
    ly_ctx *context = nullptr;
    if (ly_ctx_new(folder.c_str(), LY_CTX_DISABLE_SEARCHDIR_CWD | LY_CTX_NO_YANGLIBRARY, &context) != LY_SUCCESS) {
        throw std::runtime_error(folder.string() + ": libyang cannot be started");
    }
    context_.reset(context);
    for (const char *module : module_names) {
        if (ly_ctx_load_module(context, module, nullptr, nullptr) == nullptr) {
            throw std::runtime_error(folder.string() + ": module " + module + ": " + last_error(context));
        }
    }
}

void schema::validate(std::string_view text, format written_as, check how, std::string_view name) const
{
    parse(text, written_as, how, name);
}

data_tree schema::parse(std::string_view text, format written_as, check how, std::string_view name) const
{
    // libyang reads to the first NUL, and would take what stands before it for the whole document.
    if (const auto nul = text.find('\0'); nul != std::string::npos) {
        throw invalid_document(std::string(name) + ": byte " + std::to_string(nul) + " is NUL: not a text");
    }
    // So that last_error() cannot tell of an earlier document.
    ly_err_clean(context_.get(), nullptr);
    lyd_node *first = nullptr;
    const LYD_FORMAT language = written_as == format::xml ? LYD_XML : LYD_JSON;
    const uint32_t parsing = LYD_PARSE_STRICT | (how == check::types ? LYD_PARSE_ONLY : 0U);
    const uint32_t validation = how == check::whole ? LYD_VALIDATE_PRESENT : 0U;
    const input from(text);
    const LY_ERR result = lyd_parse_data(context_.get(), nullptr, from.get(), language, parsing, validation, &first);
    data_tree tree(first);
    if (result != LY_SUCCESS) {
        throw invalid_document(std::string(name) + ": " + last_error(context_.get()));
    }
    // libyang is content with the first JSON object, whatever follows it.
    if (const auto rest = text.find_first_not_of(" \t\r\n", from.parsed()); rest != std::string::npos) {
        throw invalid_document(std::string(name) + ": byte " + std::to_string(rest) +
                               ": text after the document's end");
    }
    return tree;
}

} // namespace device
