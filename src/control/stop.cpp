// Stops, written ahead of all queued requests.
#include <unistd.h>

#include <string>

#include "connection/journal.h"
#include "connection/line.h"
#include "connection/request.h"
#include "connection/transmit.h"
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
int send_on_second_connection(Line& line, ArmSocket arm, const std::string& bytes) {
    const int descriptor = line.duplicate(arm);
    const bool sent = send_beside(descriptor, bytes.data(), bytes.size(), kSecondConnectionMs);
    if (descriptor >= 0) close(descriptor);
    return sent ? int(ZK_OK) : fail(ZK_SEND_FAILED, "a file holds the connection, and a second one failed");
}

}  // namespace

ZK_API int ZK_Stop(ArmSocket arm, int kind) {
    const std::string bytes = bytes_of(kind & ~ZK_DROP_QUEUED);
    if (bytes.empty()) return fail(ZK_BAD_ARGUMENT, "%d is no kind of stop", kind);
    Line* line = Line::of(arm);
    if (!line) return fail_stale();
    if (line->is_lost()) return fail(ZK_LOST, "%s", line->cause().c_str());
    if (kind & ZK_DROP_QUEUED) {
        forget_frames(arm);
        wait_for_frame();  // one that has left the queue goes out before the stop
    }
    const bool sent = send_silently(arm, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    int status = ZK_OK;
    if (!sent) {
        status = line->is_in_transfer() ? send_on_second_connection(*line, arm, bytes)
                 : line->is_lost()      ? fail(ZK_LOST, "%s", line->cause().c_str())
                                        : fail(ZK_SEND_FAILED, "the controller reads nothing");
    }
    log(ZK_LOG_EVENTS, arm, "stop of kind %d: %s", kind & ~ZK_DROP_QUEUED, ZK_Status_Text(status));
    return status;
}
