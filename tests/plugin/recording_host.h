/*
 * A recording double of everything the plug-in calls: framework, reporting sinks, parcel library, database client.
 *
 * Use: make a `host` (it becomes the one that all C operations answer for), plant an input tree, set what it shall
 * answer, call the plug-in with &host.context and &host.out, then compare lines and additions as a whole, and ask
 * imbalance() for what was not given back or broke the contract: it is "" after every call of the plug-in.
 *
 *     recording::host host({"0/1-CHMON-PRE"});
 *     dtf_datatree *in = host.plant("channel-monitors{channel-monitor{name=0/1-CHMON-PRE config@3}}", uri);
 *     host.request.data_input = 10;
 *
 * Trees as text: node := [prefix:]tag[@operation][=value][{node node ...}]. Prefix "x" gives a foreign namespace, "-"
 * none; tag "?" is a null tag; "{}" a subtree flag with no children. "@" also sets DTF_FLAG_OP_SET. nodes[i] is the
 * i-th node in document order; lines name it "tag#i".
 *
 * Failing calls: operations that can fail count in `calls`; number fail_at (from 1; 0: none) fails, and with fail_on
 * all after it: with fail_code, or as the operation does (null copy, unreadable file, output list that does not grow).
 * With fail_copies the bounded copies count instead: a failing copy leaves nothing, a failing append what was there.
 */
#pragma once
#include "oc_chmon.h"
#include <concepts>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/* 1 in a program with the address sanitizer. */
#if defined(__has_feature)
#define RECORDING_ASAN __has_feature(address_sanitizer)
#elif defined(__SANITIZE_ADDRESS__)
#define RECORDING_ASAN 1
#else
#define RECORDING_ASAN 0
#endif
namespace recording {

using text_or_null = std::optional<std::string>;

/* One token of a parcel. `number` fills the value of numeric types; text that of the types 12 and 13. */
struct token {
    parcel_token_type_td type;
    text_or_null name{}, text{};
    uint32_t number = 0;
};

/* One dtf_map_datatree_add_path_flagged() call. */
struct addition {
    std::string path;
    text_or_null value;
    uint32_t new_list_entry;
};

std::string printed(const char *format, ...) DTF_PRINTF_LIKE(1, 2);

/* The loops run each share()-th of their cases: CHMON_SHARE, else all, or a quarter with the address sanitizer. */
std::size_t share();
/* A number from the environment. */
std::size_t setting(const char *name, std::size_t otherwise);

constexpr std::size_t traced = 60;

struct host {
    explicit host(const std::vector<std::string> &inventory = {});
    ~host();
    host(const host &) = delete;
    host &operator=(const host &) = delete;

    dtf_map_context context{};
    dtf_req_ctx state{};
    dtf_request request{};
    dtf_datatree out{};

    /* Answers. Items of the database by full path; on_add runs after each addition that succeeded, and is where an
     * instance-tree entry is pushed as the framework does inside its operations. poison: an addition to an input node
     * overwrites the child array it moved away from. leafref: code of dtf_map_check_oc_leafref(). */
    std::map<std::string, std::vector<token>> items;
    bool library_readable = true, null_handle = false, poison = false;
    faultno leafref = 0, fail_code = 0;
    std::size_t fail_at = 0;
    bool fail_on = false, fail_copies = false;
    std::function<void(host &, const addition &)> on_add{};
    /* Called at every line, which its answer ends: for a test that follows the states between two calls. */
    std::function<std::string()> watch{};

    /* Records. A report is a line too: "TRC function: text", or "TRC text" while the trace buffer is off; while only
     * that is on, so much of the text as always fits its lines. */
    std::vector<std::string> lines, violations;
    std::vector<addition> additions;
    std::size_t calls = 0;

    /* An input tree; belongs to the host. nodes are in document order, additions at the end. */
    dtf_datatree *plant(const std::string &text, const char *ns);
    std::vector<dtf_datatree *> nodes;
    const char *keep(std::string_view text);
    /* A parcel with these tokens, for get_value_in_parcel(); its length is parcel_length. */
    const void *parcel(const std::vector<token> &tokens);
    static constexpr uint32_t parcel_length = sizeof(void *);

    /* All lines but questions and copies, whose number is the plug-in's own affair. */
    std::string text() const;
    static bool is_own_affair(std::string_view line);
    /* What was not given back, beyond what the instance-tree stack held at entry, and what broke the contract. */
    std::string imbalance(std::size_t stack_at_entry = 0);

    /* The rest serves the operations. A line is a word and what it was given: nodes by name, texts in quotes. */
    template <typename... T> host &note(const char *word, const T &...given)
    {
        std::string line = word;
        ((line += ' ' + shown(given)), ...);
        finish_report();
        add_line(line);
        return *this;
    }
    static std::string shown(const char *text) { return text == nullptr ? "null" : '"' + std::string(text) + '"'; }
    static std::string shown(std::integral auto number) { return std::to_string(number); }
    std::string shown(const dtf_datatree *node) const { return name(node); }
    void add_line(const std::string &line);
    void violate(bool broken, std::string_view what);
    bool fails(bool copy = false);
    faultno answer() { return fails() ? fail_code : 0; }
    std::string name(const dtf_datatree *node) const;
    const char *sprout(dtf_datatree &node, const char *p, const char *ns);
    void number(dtf_datatree &node);
    dtf_datatree *append(dtf_datatree &parent, const char *tag, const char *ns);
    void finish_report();
    std::deque<std::vector<dtf_datatree>> arrays;
    std::vector<std::unique_ptr<char[]>> texts;
    std::vector<const dtf_datatree *> output_list;
    std::vector<dtf_itree_entry> itree;
    std::set<void *> copies, binds, token_texts;
    std::vector<void *> blocks;
    std::deque<std::vector<token>> parcels;
    std::deque<const std::vector<token> *> parcel_bytes;
    std::size_t tokens_held = 0, walks = 0;
    /* The report that is being made: its level where the debug log wants it, its trace index, its message once
     * logged, with the site word. */
    std::optional<uint32_t> asked_level{}, drawn{};
    uint32_t *site_word = nullptr;
    std::string logged, log_start;
    host *previous;
};

/* The host the operations answer for: the last one made that still lives. */
extern host *current;

} // namespace recording
