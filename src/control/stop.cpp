// Stops, written ahead of all queued requests.
#include <unistd.h>

#include <string_view>

#include "connection/journal.h"
#include "connection/line.h"
#include "connection/transmit.h"
#include "control/failure.h"

using namespace zk;

namespace {

constexpr int32_t kSecondConnectionMs = 1000;

#define ZK_REQUEST(command) "{\n\t\"command\":\t\"" command "\"\n}\r\n"

// The bytes of a kind; empty for none.
std::string_view bytes_of(int kind) {
    switch (kind) {
        case ZK_STOP:
            return ZK_REQUEST("set_arm_stop");
        case ZK_SLOW_STOP:
            return ZK_REQUEST("set_arm_slow_stop");
        case ZK_PAUSE:
            return ZK_REQUEST("set_arm_pause");
        case ZK_EMERGENCY_STOP:
            return ZK_REQUEST("set_arm_stop") "{\n\t\"command\":\t\"set_arm_power\",\n\t\"arm_power\":\t64\n}\r\n";
        default:
            return {};
    }
}

// While a file is on its way, the controller would take the stop for a part of it.
int send_on_second_connection(Line& line, ArmSocket arm, std::string_view bytes) {
    const int descriptor = line.duplicate(arm);
    const bool sent = send_beside(descriptor, bytes.data(), bytes.size(), kSecondConnectionMs);
    if (descriptor >= 0) close(descriptor);
    return sent ? int(ZK_OK) : fail(ZK_SEND_FAILED, "a file holds the connection, and a second one failed");
}

}  // namespace

ZK_API int ZK_Stop(ArmSocket arm, int kind) {
    const std::string_view bytes = bytes_of(kind & ~ZK_DROP_QUEUED);
    if (bytes.empty()) return fail(ZK_BAD_ARGUMENT, "%d is no kind of stop", kind);
    Line* line = Line::of(arm);
    if (!line) return fail(ZK_STALE_HANDLE);
    if (line->is_lost()) return fail(ZK_LOST);
    if (kind & ZK_DROP_QUEUED) {
        forget_frames(arm);
        wait_for_frame();  // one that has left the queue goes out before the stop
    }
    const bool sent = send_silently(arm, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    int status = ZK_OK;
    if (!sent) {
        status = line->is_in_transfer() ? send_on_second_connection(*line, arm, bytes)
                 : line->is_lost()      ? fail(ZK_LOST)
                                        : fail(ZK_SEND_FAILED, "the controller reads nothing");
    }
    log(ZK_LOG_EVENTS, arm, "stop of kind %d: %s", kind & ~ZK_DROP_QUEUED, ZK_Status_Text(status));
    return status;
}
