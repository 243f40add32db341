#pragma once

#include "connection/request.h"

namespace zk {

// Queues a motion that has no acknowledgement of its own and waits for its report. An arm that stands still for
// m_nOutTime_max and five looks more ends the wait with 14.
int move_until_still(const Request& request);

}  // namespace zk
