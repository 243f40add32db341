#include "connection/heartbeat.h"

#include <algorithm>

#include "connection/wait.h"

namespace zk {

void Heartbeat::begin(const HeartbeatQuery& query) {
    query_ = query;
    replies_due_ = 0;
    heard();
}

int Heartbeat::left() const {
    const auto next = Clock::time_point(Clock::duration(last_.load())) + query_.period;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now()).count();
    return static_cast<int>(std::max<decltype(left)>(left, 0));
}

void Heartbeat::sent() {
    ++unanswered_;
    ++replies_due_;
}

bool Heartbeat::takes(int slot, int code) {
    if (replies_due_ == 0 || code != query_.reply || is_claimed(slot, *query_.mailbox)) return false;
    --replies_due_;
    return true;
}

}  // namespace zk
