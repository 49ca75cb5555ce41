/// The YANG modules, and libyang as the judge of documents written in their terms.
#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

struct ly_ctx;
struct lyd_node;

namespace device {

/// A document that is not what it should be; what() is one line: name of the document, place, cause.
class invalid_document : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

/// How a document is written down.
enum class format { xml, json };

/// How much of a document is judged.
enum class check {
    whole, ///< names, types, keys, uniqueness, references: the document is a complete tree for what it holds
    types, ///< names, types and keys only: for parts of a tree, whose references may point outside of them
};

struct context_deleter {
    void operator()(ly_ctx *context) const;
};

struct data_deleter {
    void operator()(lyd_node *first) const;
};

/// A parsed document: its first top-level node, with all siblings. Must go before the schema that parsed it.
using data_tree = std::unique_ptr<lyd_node, data_deleter>;

/// The modules of one folder, loaded once. Not for use by several threads at a time.
class schema
{
  public:
    /// Loads the modules from default_folder().
    schema() : schema(default_folder()) {}

    /// Loads the modules from a folder; throws std::runtime_error naming folder and module when one is missing or
    /// wrong.
    explicit schema(const std::filesystem::path &folder);

    /// Where the modules are: $CHMON_YANG when set, else ../share/chmon/yang beside the running program's folder when
    /// that exists, else the source folder that the program was built from.
    static std::filesystem::path default_folder();

    /// Throws invalid_document when the text is not a valid document of the modules; `name` says whose text it is. A
    /// NUL follows the text.
    void validate(std::string_view text, format written_as, check how, std::string_view name) const;

    /// As validate, and hands the parsed document out; null when the text is valid and holds no data.
    data_tree parse(std::string_view text, format written_as, check how, std::string_view name) const;

    /// libyang's own handle, for walks over the schema; owned by this object.
    const ly_ctx *context() const { return context_.get(); }

  private:
    std::unique_ptr<ly_ctx, context_deleter> context_;
};

} // namespace device
