#include "commands/arrival.h"

#include "connection/elapsed.h"
#include "connection/exchange.h"
#include "zk/motion.h"
#include "zk/startup.h"
#include "zk/trajectory.h"

namespace zk {
namespace {

constexpr int32_t acknowledgement_ms = 100;
constexpr int32_t look_ms = 100;
constexpr int most_failed_polls = 6;
constexpr int most_idle_polls = 50;

bool arm_is_known() { return read(g_is_robot_type_i) != 0; }

// A refusal that is here already. The count was cleared just before the request went out, so this is rarely more than
// one look: a refused move is told by its report.
int early_refusal(ArmSocket socket) {
    const int32_t start = Get_Program_Runtime();
    Mailbox mailbox(Move_Receive_Cmd);
    for (;;) {
        const int slot = slot_of(socket);
        if (slot < 0) return ZK_NOT_CONNECTED;
        if (mailbox.count(slot) < 1) return ZK_OK;
        mailbox.lower(slot);
        if (const int status = mailbox.result(slot)) return status;
        if (elapsed_since(start) >= acknowledgement_ms) return ZK_TIMEOUT;
        sleep_cp(poll_ms);
    }
}

// Takes a report from the mailbox. One of another device, or of a segment joined to the next, is not this move's.
bool is_own_report(Mailbox mailbox, int slot, int& status) {
    MoveReport report;
    mailbox.clear(slot);
    mailbox.copy(slot, &report);
    status = report.result;
    return report.device == 0 && report.trajectory_connect == 0;
}

int arrival(ArmSocket socket, Trajectory expected) {
    Mailbox mailbox(Move_Cmd);
    bool seen = false;  // the arm was seen doing what it was asked
    int fails = 0, idles = 0;
    const auto reported = [&](int slot) { return slot >= 0 && mailbox.count(slot) > 0; };
    for (;;) {
        const int slot = slot_of(socket);
        if (slot < 0) return ZK_NOT_CONNECTED;
        if (reported(slot)) {
            int status;
            if (is_own_report(mailbox, slot, status)) return status;
            continue;
        }
        int32_t type = 0;
        float data[8];
        if (const int status = Get_Current_Trajectory(socket, &type, data)) {
            if (++fails == most_failed_polls) return status;
            continue;
        }
        const bool idle = type == static_cast<int32_t>(Trajectory::kNone);
        seen = seen || type == static_cast<int32_t>(expected);
        if (!idle && reported(slot)) continue;
        sleep_cp(look_ms);
        if (!idle || (!seen && ++idles < most_idle_polls)) continue;
        if (!reported(slot_of(socket))) return ZK_NO_TRAJECTORY;
    }
}

}  // namespace

int move_and_arrive(const Request& request, Trajectory expected, int32_t trajectory_connect) {
    const ArmSocket socket = request.socket();
    const int slot = slot_of(socket);
    if (slot < 0) return ZK_NOT_CONNECTED;
    Mailbox(Move_Cmd).clear(slot);
    Mailbox(Move_Receive_Cmd).clear(slot);
    post(request);

    if (arm_is_known()) {
        if (const int status = early_refusal(socket)) return status;
        if (trajectory_connect != 0) return ZK_OK;
    }
    return arrival(socket, expected);
}

int move_accepted(const Request& request) {
    Mailbox mailbox(Move_Receive_Cmd);
    int slot = slot_of(request.socket());
    if (slot < 0) return ZK_NOT_CONNECTED;
    post(request);
    mailbox.clear(slot);  // after queueing: an acknowledgement of an earlier move does not count
    if (!arm_is_known()) return ZK_OK;

    if (const int status = await(mailbox, request.socket(), acknowledgement_ms, slot)) return status;
    mailbox.lower(slot);
    return mailbox.result(slot);
}

}  // namespace zk
