#include "itree_stack.h"

namespace framework {

itree_stack::itree_stack() { entries_.reserve(max_size); }

bool itree_stack::push(const dtf_itree_entry &entry)
{
    if (entries_.size() >= max_size) {
        ++refused_;
        return false;
    }
    entries_.push_back(entry);
    return true;
}

void itree_stack::pop()
{
    if (refused_ != 0)
        --refused_;
    else if (!entries_.empty())
        entries_.pop_back();
}

} // namespace framework
