/* Where in the data an error happened, as text. */
#ifndef FRAMEWORK_ERROR_PATH_H
#define FRAMEWORK_ERROR_PATH_H

#include "hierarchy.h"

#include <string>

namespace framework {

/*
 * The path of the innermost open node, with the keys of list entries that are known:
 * /channel-monitors/channel-monitor[name='0/1-CHMON-PRE']/config. "/" when nothing is open.
 */
std::string instance_path(const node_hierarchy &hierarchy);

} // namespace framework

#endif
