#pragma once

namespace zk {

// Ends the process after one line on standard error. For what the library has no status for: a fixed field or frame
// that overflows, and commands while there is no transmit queue. Not on connections of ZK_Connect.
[[noreturn]] [[gnu::format(printf, 1, 2)]] void die(const char* format, ...);

}  // namespace zk
