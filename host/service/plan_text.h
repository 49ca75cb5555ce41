/*
 * A native request as text, with what is known of each node beside it: the edit operation, and the node of the
 * OpenConfig request that it stands for.
 */
#ifndef SERVICE_PLAN_TEXT_H
#define SERVICE_PLAN_TEXT_H

#include "service/format.h"
#include "service/request_plan.h"

#include <string>

namespace service {

std::string plan_text(const request_plan &plan, document_format format);

} // namespace service

#endif
