#include "ready_entry.h"

namespace framework {

namespace {

/* A value is marked by its number between two of these: no name has one, and both encodings let it stand. */
constexpr char mark = '\x7f';

} // namespace

/* Gives the shape's leaves values that take_apart() finds again; the texts must stay until then. */
std::vector<std::string> ready_entry::set_marks(entry_shape &shape)
{
    std::vector<std::string> marks;
    for (std::size_t i = 0; i < shape.leaves.size(); ++i)
        marks.push_back(mark + std::to_string(i) + mark);
    for (std::size_t i = 0; i < shape.leaves.size(); ++i)
        shape.leaves[i]->value = marks[i].c_str();
    return marks;
}

/* Where the marks are not found as they were set, nothing is ready. */
void ready_entry::take_apart(const std::string &text, std::size_t value_count)
{
    std::size_t at = 0;
    for (std::size_t begin; (begin = text.find(mark, at)) != std::string::npos;) {
        const std::size_t end = text.find(mark, begin + 1);
        if (end == std::string::npos)
            return;
        const std::string number = text.substr(begin + 1, end - begin - 1);
        if (number.empty() || number.size() > 9 || number.find_first_not_of("0123456789") != std::string::npos ||
            std::stoul(number) >= value_count)
            return;
        pieces_.push_back({text.substr(at, begin - at), std::stoul(number)});
        at = end + 1;
    }
    end_ = text.substr(at);
    size_ = end_.size();
    for (const piece &before : pieces_)
        size_ += before.text.size();
}

} // namespace framework
