#pragma once

#include "zk/connection.h"

namespace zk {

// What still waits in the queue for a socket will not be sent: its number may come back as another arm's.
void forget_frames(ArmSocket socket);

}  // namespace zk
