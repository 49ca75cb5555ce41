#include "service/native_request.h"

#include "service/tree_access.h"

#include <algorithm>

namespace service {

namespace {

bool is(const dtf_datatree &node, std::string_view tag) { return tag == node.tag; }

/* The leaves among the children of a request entry. */
leaf_set leaves_in(const dtf_datatree &entry)
{
    leaf_set leaves;
    for (const dtf_datatree &child : children_of(entry)) {
        if (const auto tag = children_of(child).empty() ? device::native_tag_of(child.tag) : std::nullopt)
            leaves.add(*tag);
    }
    return leaves;
}

spectrum_wishes wishes_for_spectrum(const dtf_datatree &port)
{
    spectrum_wishes wishes;
    for (const dtf_datatree &spectrum : children_of(port)) {
        if (!is(spectrum, "ots-spectrum-info"))
            continue;
        for (const dtf_datatree &slice : children_of(spectrum)) {
            const leaf_set leaves = leaves_in(slice);
            if (is(slice, "spectrum-slice-power-info") && !leaves.empty())
                wishes.add({leaf_value(slice, "lower-frequency"), leaf_value(slice, "upper-frequency"), leaves});
        }
    }
    return wishes;
}

void add_ports(std::vector<port_wish> &wishes, const dtf_datatree &ports)
{
    for (const dtf_datatree &port : children_of(ports)) {
        port_wish wish{leaf_value(port, "name"), leaves_in(port), wishes_for_spectrum(port)};
        if (is(port, "ots-port") && !wish.name.empty() && !(wish.leaves.empty() && wish.spectrum.empty()))
            wishes.push_back(std::move(wish));
    }
}

void add_interfaces(std::vector<interface_wish> &wishes, const dtf_datatree &interfaces)
{
    for (const dtf_datatree &entry : children_of(interfaces)) {
        interface_wish wish{leaf_value(entry, "active"), leaf_value(entry, "interface-name"), leaves_in(entry)};
        if (is(entry, "interface-configuration") && !wish.name.empty() && !wish.leaves.empty())
            wishes.push_back(wish);
    }
}

bool takes(const slice_wish &wish, std::string_view upper) { return wish.upper.empty() || wish.upper == upper; }

} // namespace

void spectrum_wishes::add(const slice_wish &wish)
{
    std::vector<slice_wish> &among = wish.lower.empty() ? any_ : by_lower_[wish.lower];
    /* The same slices asked for once more, as in a filter that names a monitor twice. */
    const auto same = std::ranges::find(among, wish.upper, &slice_wish::upper);
    if (same != among.end())
        same->leaves.add(wish.leaves);
    else
        among.push_back(wish);
}

void spectrum_wishes::add(const spectrum_wishes &others)
{
    for (const slice_wish &wish : others.any_)
        add(wish);
    for (const auto &[lower, wishes] : others.by_lower_) {
        for (const slice_wish &wish : wishes)
            add(wish);
    }
}

bool spectrum_wishes::is_whole() const
{
    return std::ranges::any_of(any_, [](const slice_wish &wish) { return wish.upper.empty(); });
}

leaf_set spectrum_wishes::leaves_of(std::string_view lower, std::string_view upper) const
{
    leaf_set leaves;
    collect(any_, upper, leaves);
    if (!by_lower_.empty()) {
        if (const auto named = by_lower_.find(lower); named != by_lower_.end())
            collect(named->second, upper, leaves);
    }
    return leaves;
}

void spectrum_wishes::collect(const std::vector<slice_wish> &wishes, std::string_view upper, leaf_set &leaves)
{
    for (const slice_wish &wish : wishes) {
        if (takes(wish, upper))
            leaves.add(wish.leaves);
    }
}

native_wishes::native_wishes(const dtf_datatree &request)
{
    for (const dtf_datatree &top : children_of(request)) {
        if (is(top, "interface-configurations"))
            add_interfaces(interfaces, top);
        if (!is(top, "ots-oper"))
            continue;
        for (const dtf_datatree &below : children_of(top)) {
            if (is(below, "ots-ports"))
                add_ports(ports, below);
        }
    }
}

} // namespace service
