/*
 * The mapping plug-in, loaded while the program runs. Only the five of its functions that a host needs are named here:
 * the top walker of each model, and the two conversions between the names of a monitor and of its controller.
 */
#ifndef SERVICE_PLUGIN_H
#define SERVICE_PLUGIN_H

#include "framework/mapping.h"

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace service {

/* The plug-in's file is missing, cannot be loaded, or is no such plug-in. One line: file, cause. */
class plugin_error : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

class plugin
{
  public:
    /* $CHMON_PLUGIN where that is set, else ../lib/liboc-chmon.so beside the running program's folder. */
    static std::filesystem::path default_file();

    /* Loads the plug-in; its walkers are good as long as this object lives. Throws plugin_error. */
    explicit plugin(const std::filesystem::path &file = default_file());

    /* /ots-oper to /channel-monitors: names, state and channels. */
    framework::walker operational_walker() const { return operational_; }
    /* /interface-configurations to /channel-monitors: names and config. */
    framework::walker interfaces_walker() const { return interfaces_; }
    /* A request for /channel-monitors to the native paths that it concerns. */
    framework::walker request_walker() const { return request_; }

    /* The monitor of a controller: 0/2-CHMON-PRE for Ots0/2/0/1. Never fails: odd names give odd names. */
    std::string monitor_of(std::string_view controller) const { return convert(to_monitor_, controller); }
    /* The controller of a monitor: the other way. */
    std::string controller_of(std::string_view monitor) const { return convert(to_controller_, monitor); }

  private:
    using conversion = void (*)(const char *, char *);
    struct library_closer {
        void operator()(void *library) const;
    };

    static std::string convert(conversion how, std::string_view name);
    template <typename function> function resolve(const std::filesystem::path &file, const char *symbol) const;

    std::unique_ptr<void, library_closer> library_;
    framework::walker operational_;
    framework::walker interfaces_;
    framework::walker request_;
    conversion to_monitor_;
    conversion to_controller_;
};

} // namespace service

#endif
