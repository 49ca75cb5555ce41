/* How long the steps of a request take. */
#ifndef SERVICE_STOP_WATCH_H
#define SERVICE_STOP_WATCH_H

#include <chrono>
#include <utility>

namespace service {

class stop_watch
{
  public:
    using clock = std::chrono::steady_clock;

    /* Time since the last lap, or since the beginning. */
    clock::duration lap()
    {
        const clock::time_point now = clock::now();
        return now - std::exchange(start_, now);
    }

  private:
    clock::time_point start_ = clock::now();
};

} // namespace service

#endif
