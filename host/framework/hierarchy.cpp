#include "hierarchy.h"

namespace framework {

bool node_hierarchy::push(const dtf_datatree *node, std::uint32_t kind)
{
    if (request_.hierarchy_len >= DTF_HIERARCHY_MAX) {
        ++refused_;
        return false;
    }
    kinds_[request_.hierarchy_len] = static_cast<std::uint8_t>(kind);
    request_.hierarchy[request_.hierarchy_len].node_data = node;
    ++request_.hierarchy_len;
    return true;
}

bool node_hierarchy::pop(const dtf_datatree *node)
{
    if (refused_ != 0) {
        --refused_;
        return false;
    }
    std::uint8_t level = request_.hierarchy_len;
    while (level != 0 && request_.hierarchy[level - 1].node_data != node)
        --level;
    if (level == 0 || level != request_.hierarchy_len)
        ++mismatches_;
    if (level == 0)
        return false;
    request_.hierarchy_len = static_cast<std::uint8_t>(level - 1);
    return true;
}

bool output_list::add(const dtf_datatree *entry)
{
    if (request_.output_list_len >= entries_.size())
        return false;
    entries_[request_.output_list_len++] = entry;
    return true;
}

void output_list::remove(const dtf_datatree *entry)
{
    std::uint8_t length = request_.output_list_len;
    while (length != 0 && entries_[length - 1] != entry)
        --length;
    if (length == 0 || length != request_.output_list_len)
        ++mismatches_;
    if (length != 0)
        request_.output_list_len = static_cast<std::uint8_t>(length - 1);
}

} // namespace framework
