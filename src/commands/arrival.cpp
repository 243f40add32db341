#include "commands/arrival.h"

#include "connection/elapsed.h"
#include "zk/startup.h"
#include "zk/trajectory.h"

namespace zk {
namespace {

constexpr int32_t kAcknowledgementMs = 100;
constexpr int32_t kLookMs = 100;
constexpr int kMostFailedPolls = 6;
constexpr int kMostIdlePolls = 50;

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
        if (elapsed_since(start) >= kAcknowledgementMs) return ZK_TIMEOUT;
        sleep_cp(kPollMs);
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
    return await_report(socket, Device::kArm, [&](MotionPoll& motion) {
        int32_t type = 0;
        float data[8];
        const int status = Get_Current_Trajectory(socket, &type, data);
        motion = {.idle = type == static_cast<int32_t>(Trajectory::kNone),
                  .expected = type == static_cast<int32_t>(expected)};
        return status;
    });
}

int move_accepted(const Request& request) {
    Mailbox mailbox(Move_Receive_Cmd);
    int slot = slot_of(request.socket());
    if (slot < 0) return ZK_NOT_CONNECTED;
    post(request);
    mailbox.clear(slot);  // after queueing: an acknowledgement of an earlier move does not count
    if (!arm_is_known()) return ZK_OK;

    if (const int status = await(mailbox, request.socket(), kAcknowledgementMs, slot)) return status;
    mailbox.lower(slot);
    return mailbox.result(slot);
}

MoveReport take_report(int slot) {
    Mailbox mailbox(Move_Cmd);
    MoveReport report;
    mailbox.clear(slot);
    mailbox.copy(slot, &report);
    return report;
}

int await_report(ArmSocket socket, Device device, const std::function<int(MotionPoll&)>& poll) {
    Mailbox mailbox(Move_Cmd);
    bool seen = false;  // it was seen doing what it was asked
    int fails = 0, idles = 0;
    const auto reported = [&](int slot) { return mailbox.count(slot) > 0; };
    for (;;) {
        int slot = slot_of(socket);
        if (slot < 0) return ZK_NOT_CONNECTED;
        if (reported(slot)) {
            const MoveReport report = take_report(slot);
            if (is_of(report, device) && report.trajectory_connect == 0) return report.result;
            continue;
        }
        MotionPoll motion;
        if (const int status = poll(motion)) {
            if (++fails == kMostFailedPolls) return status;
            continue;
        }
        seen = seen || motion.expected;
        if (!motion.idle && !motion.expected && reported(slot)) continue;
        sleep_cp(kLookMs);
        if (!motion.idle || (!seen && ++idles < kMostIdlePolls)) continue;
        slot = slot_of(socket);
        if (slot < 0) return ZK_NOT_CONNECTED;
        if (!reported(slot)) return ZK_NO_TRAJECTORY;
    }
}

int move_device(const Request& request, Mailbox acknowledgement, const DeviceMove& form) {
    Mailbox reports(Move_Cmd);
    int slot = slot_of(request.socket());
    if (slot < 0) return ZK_NOT_CONNECTED;
    if (!form.keeps_reports) reports.clear(slot);
    acknowledgement.clear(slot);
    post(request);

    const int32_t start = Get_Program_Runtime();
    for (;; sleep_cp(kPollMs)) {
        slot = slot_of(request.socket());
        if (slot < 0) return ZK_NOT_CONNECTED;
        if (acknowledgement.count(slot) > 0) {
            const int refused = acknowledgement.result(slot);
            if (refused || reports.count(slot) > 0) {
                acknowledgement.clear(slot);
                if (refused) return refused;
                const MoveReport report = take_report(slot);
                if (is_of(report, form.device)) return report.result;
                if (!form.outwaits_others) return ZK_OTHER_DEVICE;
            }
        }
        if (elapsed_since(start) >= form.limit) return ZK_TIMEOUT;
    }
}

}  // namespace zk
