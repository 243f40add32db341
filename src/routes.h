#pragma once

namespace zk {

// No reply waits in any mailbox of the slot.
void forget_replies(int slot);

}  // namespace zk
