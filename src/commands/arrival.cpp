#include "commands/arrival.h"

#include "connection/elapsed.h"
#include "connection/line.h"
#include "zk/connection.h"
#include "zk/trajectory.h"

namespace zk {
namespace {

constexpr int32_t kAcknowledgementMs = 100;
constexpr int32_t kMotionPollMs = 100;
constexpr int kMostFailedPolls = 6;
constexpr int kMostIdlePolls = 50;

// Returns a refusal that has arrived already. The count was cleared just before the request was queued, so this rarely
// polls twice: a refused move ends by its report. A late look at an acceptance counts as none where `late_is_none`.
int early_refusal(const Connection& connection, bool late_is_none) {
    const int32_t start = Get_Program_Runtime();
    const Mailbox mailbox(Move_Receive_Cmd);
    for (;; sleep_cp(kPollMs)) {
        const bool arrived = has_arrived(mailbox, connection);
        if (const int status = connection.status()) return status;
        if (!arrived) return ZK_OK;
        if (const int status = take_result(mailbox, connection, Take::kOne)) return status;
        if (late_is_none && elapsed_since(start) >= kAcknowledgementMs) return ZK_TIMEOUT;
    }
}

// Queues the request of a move. A move that is not joined to the next ends in a report.
int post_move(const MoveRequest& request) {
    Line* line = request.joined ? nullptr : Line::of(request.socket());
    if (line) line->motions().start();
    const int status = post(request);
    if (line && status) line->motions().withdraw();
    return status;
}

}  // namespace

int move_and_arrive(const MoveRequest& request, Trajectory expected) {
    const Wait connection(request.socket());
    if (const int status = connection.claim(Move_Cmd, Sharing::kAlone)) return status;
    {
        const Wait acceptance(request.socket());
        if (const int status = acceptance.claim(Move_Receive_Cmd)) return status;
        Mailbox(Move_Cmd).clear(connection.slot());
        Mailbox(Move_Receive_Cmd).clear(connection.slot());
        if (const int status = post_move(request)) return status;
        const bool settled = !is_handle(request.socket());
        if (!settled || read(g_is_robot_type_i)) {
            if (const int status = early_refusal(connection, settled)) return status;
            if (request.joined) return ZK_OK;
        }
    }
    return await_report(connection, Device::kArm, [&](MotionPoll& motion) {
        int32_t type = 0;
        float data[8];
        const int status = Get_Current_Trajectory(connection.socket(), &type, data);
        motion = {.idle = type == static_cast<int32_t>(Trajectory::kNone),
                  .expected = type == static_cast<int32_t>(expected)};
        return status;
    });
}

int move_accepted(const MoveRequest& request) {
    Mailbox mailbox(Move_Receive_Cmd);
    const Wait connection(request.socket());
    if (const int status = connection.claim(mailbox)) return status;
    // Settled connections clear it after queueing, and may lose a fast acknowledgement.
    const bool settled = !is_handle(request.socket());
    if (!settled) mailbox.clear(connection.slot());
    if (const int status = post_move(request)) return status;
    if (settled) mailbox.clear(connection.slot());
    if (settled && !read(g_is_robot_type_i)) return ZK_OK;
    return await_result(mailbox, connection, settled ? kAcknowledgementMs : read(m_nOutTime), Take::kOne);
}

MoveReport take_report(int slot) {
    Mailbox mailbox(Move_Cmd);
    MoveReport report;
    mailbox.clear(slot);
    mailbox.copy(slot, &report);
    return report;
}

int await_report(const Connection& connection, Device device, const std::function<int(MotionPoll&)>& poll) {
    bool seen = false;  // a poll has found the requested motion
    int fails = 0, idles = 0;
    const auto reported = [&] { return has_arrived(Move_Cmd, connection); };
    for (;;) {
        const bool arrived = reported();
        if (const int status = connection.status()) return status;
        if (arrived) {
            const MoveReport report = take_report(connection.slot());
            if (const int status = connection.status()) return status;
            if (is_of(report, device) && report.trajectory_connect == 0) return report.result;
            continue;
        }
        MotionPoll motion;
        if (const int status = poll(motion)) {
            if (is_held_by_file(connection, status)) {
                pause(connection, kMotionPollMs);
                continue;
            }
            if (++fails == kMostFailedPolls) return status;
            continue;
        }
        seen = seen || motion.expected;
        if (!motion.idle && !motion.expected && reported()) continue;
        pause(connection, kMotionPollMs, Move_Cmd);
        if (!motion.idle || (!seen && ++idles < kMostIdlePolls)) continue;
        if (!reported()) return connection.is_open() ? ZK_NO_TRAJECTORY : ZK_NOT_CONNECTED;
    }
}

int move_device(const Request& request, Mailbox acknowledgement, const DeviceMove& form) {
    Mailbox reports(Move_Cmd);
    const Wait connection(request.socket());
    if (const int status = connection.claim(reports, Sharing::kAlone)) return status;
    if (const int status = connection.claim(acknowledgement)) return status;
    const int slot = connection.slot();
    if (!form.keeps_reports || is_handle(request.socket())) reports.clear(slot);
    acknowledgement.clear(slot);
    if (const int status = post(request)) return status;

    const int32_t start = Get_Program_Runtime();
    bool acknowledged = false;
    for (;; pause(connection, kPollMs, acknowledged ? reports : acknowledgement)) {
        acknowledged = has_arrived(acknowledgement, connection);
        const int refused = acknowledged ? acknowledgement.result(slot) : 0;
        const bool reported = has_arrived(reports, connection);
        if (const int status = connection.status()) return status;
        if (acknowledged) {
            if (refused || reported) {
                acknowledgement.clear(slot);
                if (refused) return refused;
                const MoveReport report = take_report(slot);
                if (const int status = connection.status()) return status;
                if (is_of(report, form.device)) return report.result;
                if (!form.outwaits_others) return ZK_OTHER_DEVICE;
            }
        }
        if (elapsed_since(start) >= form.limit) return ZK_TIMEOUT;
    }
}

}  // namespace zk
