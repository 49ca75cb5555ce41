/*
 * Which database answers the client operations (ostore.h) of this process.
 */
#ifndef OSTORE_SERVING_H
#define OSTORE_SERVING_H

#include "dtf.h"

#include <functional>
#include <string_view>

namespace ostore {

class database;
class transaction;

/*
 * While one of these lives, the client library is present (access() says so) and reads what it was given. One at a
 * time: a second one throws store_error. What is served must outlive it.
 */
class serving
{
  public:
    explicit serving(const database &store);
    explicit serving(const transaction &txn);
    serving(const serving &) = delete;
    serving &operator=(const serving &) = delete;
    ~serving();
};

/* Whether this process serves a database. */
bool is_serving() noexcept;

/*
 * Looks an item up in what is served and hands its bytes to `take`, for as long as the call lasts. Gives what `take`
 * answered, or fault_not_served or fault_item_not_found. Throws store_error where the store cannot be read.
 */
faultno with_served_item(std::string_view key, const std::function<faultno(std::string_view)> &take);

} // namespace ostore

#endif
