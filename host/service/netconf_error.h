/* What a management server answers when a request fails (RFC 6241, section 4.3 and appendix A). */
#ifndef SERVICE_NETCONF_ERROR_H
#define SERVICE_NETCONF_ERROR_H

#include "service/walk.h"

#include "framework/document.h"
#include "ostore/store_error.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace service {

/* A message as it may be shown: what it quotes may be a page long or hold line ends. */
std::string one_line(std::string text);

/* One <rpc-error>. what() is one line: "error-type error-tag error-path: message", without a path where none is known.
 */
class netconf_error : public std::runtime_error
{
  public:
    netconf_error(std::string_view type, std::string_view tag, std::string path, const std::string &message);

    const std::string &tag() const { return tag_; }
    /* In OpenConfig terms, lists with their keys. */
    const std::string &path() const { return path_; }

  private:
    std::string tag_;
    std::string path_;
};

/* An error of the application layer, as all are that concern a request's data. */
inline netconf_error application_error(std::string_view tag, std::string path, const std::string &message)
{
    return {"application", tag, std::move(path), message};
}

/* What a result code is to a client, an error-tag; "operation-failed" where the server alone is to blame. */
std::string_view error_tag_of(faultno code);

/* What the plug-in or the framework refused; `path` stands in where the fault has none. */
netconf_error to_netconf_error(const walk_fault &fault, const std::string &path = {});

/* A document that is none, or has an attribute that is none. */
netconf_error to_netconf_error(const framework::parse_error &refused);

/* A store that could not be read or written. */
netconf_error to_netconf_error(const ostore::store_error &failed);

/* Does a request's work, and throws what goes wrong in it as what is answered to the client. */
template <typename function> auto answer(function &&work)
{
    try {
        return work();
    } catch (const framework::parse_error &refused) {
        throw to_netconf_error(refused);
    } catch (const walk_fault &fault) {
        throw to_netconf_error(fault);
    } catch (const ostore::store_error &failed) {
        throw to_netconf_error(failed);
    }
}

} // namespace service

#endif
