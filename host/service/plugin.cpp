#include "service/plugin.h"

#include "framework/faults.h"
#include "ostore/faults.h"

#include <array>
#include <cstdlib>
#include <dlfcn.h>
#include <system_error>

namespace service {

namespace {

constexpr const char *operational_symbol = "ymap_xo_oc_opt_ch_mon_vantratalincontrollerkestrelotsoper_lvla_otsoper";
constexpr const char *interfaces_symbol = "ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_lvla_interfaceconfigurations";
constexpr const char *request_symbol = "ymap_ox_oc_opt_ch_mon_openconfigchannelmonitor_lvla_channelmonitors";

/* Bytes that the conversions write, terminator included. */
constexpr std::size_t name_size = 20;

/* dlopen's own text begins with the file's name, mostly; it must not stand twice in ours. */
std::string load_failure(const std::filesystem::path &file)
{
    const char *const reason = ::dlerror();
    const std::string text = reason == nullptr ? "unknown cause" : reason;
    const std::string prefix = file.string() + ": ";
    return prefix +
           "cannot load the mapping plug-in: " + (text.starts_with(prefix) ? text.substr(prefix.size()) : text);
}

void *open_library(const std::filesystem::path &file)
{
    /* Everything is bound at once: what the framework lacks shows here and not in the middle of a request. */
    void *const library = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        throw plugin_error(load_failure(file));
    return library;
}

/* The plug-in reports the codes of the client library's operations, whose texts the framework does not have. */
void register_client_faults()
{
    for (faultno code = ostore::fault_no_client; code <= ostore::fault_parcel_memory; ++code) {
        if (const char *const text = ostore::fault_text(code))
            framework::register_fault(code, nullptr, text);
    }
}

} // namespace

void plugin::library_closer::operator()(void *library) const { ::dlclose(library); }

std::filesystem::path plugin::default_file()
{
    if (const char *const named = std::getenv("CHMON_PLUGIN"); named != nullptr && *named != '\0')
        return named;
    std::error_code failure;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (failure)
        throw plugin_error("cannot tell where the running program lies: " + failure.message());
    return (program.parent_path() / ".." / "lib" / "liboc-chmon.so").lexically_normal();
}

plugin::plugin(const std::filesystem::path &file)
    : library_(open_library(file)),
      operational_(resolve<framework::walker>(file, operational_symbol)),
      interfaces_(resolve<framework::walker>(file, interfaces_symbol)),
      request_(resolve<framework::walker>(file, request_symbol)),
      to_monitor_(resolve<conversion>(file, "convert_ctrl_key_to_chmon_key")),
      to_controller_(resolve<conversion>(file, "convert_oc_key_to_controller_key"))
{
    register_client_faults();
}

template <typename function> function plugin::resolve(const std::filesystem::path &file, const char *symbol) const
{
    void *const address = ::dlsym(library_.get(), symbol);
    if (address == nullptr)
        throw plugin_error(file.string() + ": is no channel-monitor plug-in: it has no " + symbol);
    return reinterpret_cast<function>(address);
}

std::string plugin::convert(conversion how, std::string_view name)
{
    std::array<char, name_size> converted{};
    how(std::string(name).c_str(), converted.data());
    return converted.data();
}

} // namespace service
