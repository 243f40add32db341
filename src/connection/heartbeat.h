// The query that finds a silent controller. It changes nothing, is written in each silent period, and its replies reach
// no call.
#pragma once

#include <atomic>
#include <chrono>
#include <optional>
#include <string>

#include "connection/mailbox.h"

namespace zk {

struct HeartbeatQuery {
    std::chrono::milliseconds period{0};  // 0: none
    std::string request;
    int reply = 0;                   // key code of its reply
    std::optional<Mailbox> mailbox;  // of the calls that make the same query
};

// One connection's. The receive thread's, but for `begin`.
class Heartbeat {
 public:
    void begin(const HeartbeatQuery& query);
    void heard() {  // bytes have come
        unanswered_ = 0;
        wait_a_period();
    }
    bool is_on() const { return query_.period.count() > 0; }
    int left() const;  // milliseconds to the next
    bool is_unanswered() const { return unanswered_ == kMostUnanswered; }
    const std::string& request() const { return query_.request; }
    void wait_a_period() { last_ = Clock::now().time_since_epoch().count(); }
    void sent();
    // Whether a message of this code answers a query of the heartbeat. A call that waits for the same query may as well
    // have the reply.
    bool takes(int slot, int code);

 private:
    using Clock = std::chrono::steady_clock;
    static constexpr int kMostUnanswered = 3;

    HeartbeatQuery query_;
    std::atomic<Clock::rep> last_{0};  // or the last bytes
    std::atomic<int> unanswered_{0}, replies_due_{0};
};

}  // namespace zk
