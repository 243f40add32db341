#pragma once

namespace zk {

// From now on, the arms of connections with ZK_STOP_AT_EXIT are stopped when the process exits, and when SIGINT,
// SIGTERM or SIGHUP end it.
void watch_the_exit();

}  // namespace zk
