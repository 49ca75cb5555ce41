/*
 * A native request as what it asks for. In a request tree leaves select, with the list keys on the way to them; a key
 * leaf with a value selects that entry alone. A container or entry without any leaf below it is structure and asks for
 * nothing.
 */
#ifndef SERVICE_NATIVE_REQUEST_H
#define SERVICE_NATIVE_REQUEST_H

#include "dtf.h"

#include "device/native_tag.h"

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace service {

/* A set of leaves of one list entry. */
class leaf_set
{
  public:
    void add(device::native_tag leaf) { bits_ |= bit(leaf); }
    void add(const leaf_set &others) { bits_ |= others.bits_; }
    bool has(device::native_tag leaf) const { return (bits_ & bit(leaf)) != 0; }
    bool empty() const { return bits_ == 0; }

  private:
    static std::uint32_t bit(device::native_tag leaf) { return std::uint32_t{1} << static_cast<unsigned>(leaf); }

    std::uint32_t bits_ = 0;
};

/* What one request entry asks of an interface; an empty key stands for any. Texts are those of the request tree. */
struct interface_wish {
    std::string_view active;
    std::string_view name;
    leaf_set leaves;
};

/* The same for a slice of a spectrum. */
struct slice_wish {
    std::string_view lower;
    std::string_view upper;
    leaf_set leaves;
};

/* What is asked of one spectrum, such that a slice finds its wishes quickly however many there are. */
class spectrum_wishes
{
  public:
    void add(const slice_wish &wish);
    void add(const spectrum_wishes &others);

    bool empty() const { return any_.empty() && by_lower_.empty(); }
    /* Whether every slice is asked for. */
    bool is_whole() const;
    /* The leaves asked of the slice with these bounds; empty where none are. */
    leaf_set leaves_of(std::string_view lower, std::string_view upper) const;

  private:
    static void collect(const std::vector<slice_wish> &wishes, std::string_view upper, leaf_set &leaves);

    std::vector<slice_wish> any_;
    std::unordered_map<std::string_view, std::vector<slice_wish>> by_lower_;
};

struct port_wish {
    std::string_view name;
    leaf_set leaves;
    spectrum_wishes spectrum;
};

/*
 * All that a native request asks for: a root without a tag whose children are the native models' top containers. An
 * entry that is not named concerns no controller: that is what comes of a request for all of them where there are none.
 */
struct native_wishes {
    explicit native_wishes(const dtf_datatree &request);

    std::vector<interface_wish> interfaces;
    std::vector<port_wish> ports;
};

} // namespace service

#endif
