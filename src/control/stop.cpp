// Stops, written ahead of all queued requests.
#include <cstring>

#include "connection/journal.h"
#include "connection/line.h"
#include "connection/request.h"
#include "connection/transmit.h"
#include "control/arms.h"
#include "control/dial.h"
#include "control/failure.h"

using namespace zk;

namespace {

constexpr int32_t kSecondConnectionMs = 1000;

// The bytes of a kind; empty for none.
std::string bytes_of(int kind) {
    const auto text = [](const Request& request) {
        const Frame frame = request.frame();
        return std::string(frame.text, static_cast<size_t>(frame.length));
    };
    switch (kind) {
        case ZK_STOP:
            return text({0, "set_arm_stop"});
        case ZK_SLOW_STOP:
            return text({0, "set_arm_slow_stop"});
        case ZK_PAUSE:
            return text({0, "set_arm_pause"});
        case ZK_EMERGENCY_STOP:
            return text({0, "set_arm_stop"}) + text(Request(0, "set_arm_power").number("arm_power", 64));
        default:
            return {};
    }
}

// While a file is on its way, the controller would take the stop for a part of it.
int send_beside(const Arm& arm, const std::string& bytes) {
    Attempt attempt(kSecondConnectionMs);
    Peer peer;
    if (dial(arm.address.c_str(), arm.port, attempt, peer)) {
        return fail(ZK_SEND_FAILED, "a file holds the connection, and a second one failed: %s", attempt.text());
    }
    const ssize_t sent = send_now(peer.descriptor.get(), bytes.data(), bytes.size());
    return sent == static_cast<ssize_t>(bytes.size()) ? int(ZK_OK)
                                                      : fail(ZK_SEND_FAILED, "the second connection took nothing");
}

}  // namespace

ZK_API int ZK_Stop(ArmSocket arm, int kind) {
    const std::string bytes = bytes_of(kind & ~ZK_DROP_QUEUED);
    if (bytes.empty()) return fail(ZK_BAD_ARGUMENT, "%d is no kind of stop", kind);
    Line* line = Line::of(arm);
    if (!line) return fail_stale();
    if (line->is_lost()) return fail(ZK_LOST, "%s", line->cause().c_str());
    if (kind & ZK_DROP_QUEUED) forget_frames(arm);
    log(ZK_LOG_EVENTS, arm, "stop of kind %d", kind & ~ZK_DROP_QUEUED);
    if (line->transfers > 0) return send_beside(arm_of(arm), bytes);
    if (send_now(arm, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size())) return ZK_OK;
    return line->is_lost() ? fail(ZK_LOST, "%s", line->cause().c_str())
                           : fail(ZK_SEND_FAILED, "the controller reads nothing");
}
