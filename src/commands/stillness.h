#pragma once

#include "connection/request.h"

namespace zk {

// Queues a motion that has no acknowledgement of its own and waits for its report. Returns 14 when the arm does not
// move for m_nOutTime_max and five polls more.
int move_until_still(const Request& request);

}  // namespace zk
