/* A device's monitors as charts show them. */
#ifndef SERVICE_SPECTRA_H
#define SERVICE_SPECTRA_H

#include "service/chart/spectrum.h"
#include "service/plugin.h"
#include "service/walk_options.h"

#include "device/folder.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace service {

/* A name that is no monitor's. One line: the name, and the names of the monitors that there are. */
class unknown_monitor : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

/* Every monitor, as the device sees them now. */
std::vector<chart::monitor> read_spectra(const plugin &mapper, const device::folder &device, const walk_options &walks);

/* One monitor; of the others no spectrum is read. Throws unknown_monitor. */
chart::monitor read_spectrum(const plugin &mapper, const device::folder &device, const std::string &name,
                             const walk_options &walks);

} // namespace service

#endif
