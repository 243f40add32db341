// Why the last call of the control interface failed on this thread.
#pragma once

namespace zk {

// Keeps the text for ZK_Failure and returns the status.
[[gnu::format(printf, 2, 3)]] int fail(int status, const char* format, ...);

// The same with the text of the status.
int fail(int status);

}  // namespace zk
