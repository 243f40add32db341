// Waiting for the arm and for programs, and how far a motion is.
#include <algorithm>
#include <array>
#include <climits>
#include <functional>
#include <mutex>

#include "connection/elapsed.h"
#include "connection/exchange.h"
#include "connection/line.h"
#include "control/failure.h"
#include "control/stream.h"
#include "zk/control.h"
#include "zk/replies/programs.h"
#include "zk/replies/trajectory.h"
#include "zk/trajectory.h"

using namespace zk;

namespace {

constexpr int32_t kLookMs = 100;  // between two looks at the controller
constexpr int32_t kStepMs = 10;   // between two looks for a report
constexpr int32_t kFreshNs = 1'000'000'000;

// Asks what the controller does. A reply to an earlier call that ended early may come for the first answer, so that an
// idle arm has to be reported twice. limit: returns the ms for the next query, 0 for m_nOutTime.
template <class Limit>
int ask_trajectory(ArmSocket s, Limit limit, TrajectoryReply& reply) {
    const auto ask = [&] {
        return query({s, "get_arm_current_trajectory"}, Get_Arm_Current_Trajectory_Cmd,
                     [&](const TrajectoryReply& found) { reply = found; },
                     {.clears_before = true, .clears_after = true, .limit = limit()});
    };
    const int status = ask();
    return status == ZK_OK && reply.type == ZK_TRAJECTORY_NONE ? ask() : status;
}

// The same for programs. The parser returns the state of the program as its status.
template <class Limit>
int ask_program(ArmSocket s, Limit limit, ProgramRunState& state) {
    const auto ask = [&] {
        state.run_state = INT_MIN;
        const int status = query({s, "get_program_run_state"}, Get_Program_Run_State_Cmd,
                                 [&](const ProgramRunStateReply& found) { state = found.state; },
                                 {.clears_before = true, .clears_after = true, .limit = limit()});
        return status == state.run_state ? int(ZK_OK) : status;
    };
    const int status = ask();
    return status == ZK_OK && state.run_state == ZK_PROGRAM_NONE ? ask() : status;
}

// Looks until `look(limit, done)` is done. A look without a reply, or during a file, counts as one that found nothing.
// A message that makes `over()` true ends a pause.
template <class Look>
int look_until(ArmSocket arm, int32_t ms, Look look, int32_t pause_ms = kLookMs,
               const std::function<bool()>& over = {}) {
    if (ms <= 0) return fail(ZK_BAD_ARGUMENT, "the time to wait is %d ms", ms);
    if (!Line::of(arm)) return fail(ZK_STALE_HANDLE);
    const Wait call(arm);
    const int32_t start = Get_Program_Runtime();
    const auto left = [&] { return ms - elapsed_since(start); };
    const auto limit = [&] { return std::max(1, std::min(left(), read(m_nOutTime))); };
    do {
        bool done = false;
        const int status = look(limit, done);
        if (status != ZK_OK && status != ZK_TIMEOUT && status != ZK_SENDING_FILE) return fail(status);
        if (done) return ZK_OK;
        pause(call, std::min(pause_ms, left()), over);
        if (const int ended = call.status()) return fail(ended);
    } while (left() > 0);
    return fail(ZK_TIMEOUT, "it was not over after %d ms", ms);
}

using Joints = std::array<float, 7>;

// From where to where the arm of a slot moves.
struct Motion {
    ArmSocket arm = 0;
    Joints rest, start, target;
};

// The start is where the arm stood still last, or the target of the motion that this one followed without a rest.
Motion motion_of(int slot, ArmSocket arm, const Joints& rest, const Joints& target) {
    static std::mutex lock;
    static std::array<Motion, ZK_SLOTS> motions;
    const std::lock_guard guard(lock);
    Motion& motion = motions[static_cast<size_t>(slot)];
    const bool known = motion.arm == arm;
    if (known && motion.target == target) return motion;
    motion = {arm, rest, known && motion.rest == rest ? motion.target : rest, target};
    return motion;
}

// The part of the straight way between the joints that is done.
float share_of(const Motion& motion, const float (&joint)[7], int joints) {
    float done = 0, whole = 0;
    for (size_t i = 0; i < static_cast<size_t>(joints); ++i) {
        const float way = motion.target[i] - motion.start[i];
        done += (joint[i] - motion.start[i]) * way;
        whole += way * way;
    }
    return whole > 0 ? std::clamp(done / whole, 0.0f, 1.0f) : 1.0f;
}

template <size_t size>
Joints joints_of(const float (&values)[size]) {
    Joints joints;
    std::copy_n(values, joints.size(), joints.begin());
    return joints;
}

}  // namespace

ZK_API int ZK_Wait_Idle(ArmSocket arm, int32_t ms) {
    return look_until(arm, ms, [arm](auto limit, bool& done) {
        TrajectoryReply reply{};
        const int status = ask_trajectory(arm, limit, reply);
        done = status == ZK_OK && reply.type == ZK_TRAJECTORY_NONE;
        return status;
    });
}

ZK_API int ZK_Wait_Move(ArmSocket arm, int32_t ms) {
    Line* line = Line::of(arm);  // without one nothing is looked for
    int result = ZK_OK;
    const auto look = [&](auto limit, bool& done) {
        Motions& motions = line->motions();
        done = motions.are_over();
        result = motions.result();
        if (done || !motions.step_asks()) return int(ZK_OK);
        const unsigned started = motions.started();
        TrajectoryReply reply{};
        const int status = ask_trajectory(arm, limit, reply);
        if (status == ZK_OK) motions.found(reply.type == ZK_TRAJECTORY_NONE, started);
        return status;
    };
    const int status = look_until(arm, ms, look, kStepMs, [line] { return line->motions().are_over(); });
    return status == ZK_OK && result != ZK_OK ? fail(result) : status;
}

ZK_API int ZK_Wait_Program(ArmSocket arm, int32_t ms, ZK_ProgramOutcome* outcome) {
    ZK_ProgramOutcome last{};
    const int status = look_until(arm, ms, [arm, &last](auto limit, bool& done) {
        ProgramRunState state{};
        if (const int failure = ask_program(arm, limit, state)) return failure;
        last.run_state = state.run_state;
        done = state.run_state == ZK_PROGRAM_NONE;
        if (!done) {
            last.program = state.id;
            last.line = state.plan_num;
        }
        return int(ZK_OK);
    });
    if (outcome && (status == ZK_OK || status == ZK_TIMEOUT)) *outcome = last;
    return status;
}

ZK_API int ZK_Move_Progress(ArmSocket arm, float* share) {
    if (!share) return fail(ZK_BAD_ARGUMENT, "the place for the share is null");
    const int slot = Line::of(arm) ? slot_of(arm) : -1;
    if (slot < 0) return fail(ZK_STALE_HANDLE);
    TrajectoryReply reply{};
    if (const int status = ask_trajectory(
            arm, [] { return 0; }, reply))
        return fail(status);
    if (reply.type == ZK_TRAJECTORY_NONE) return *share = 1, ZK_OK;
    StreamRecord record;
    if (!last_record(slot, arm, record) || monotonic_ns() - record.host_ns > kFreshNs)
        return fail(ZK_NO_STATE, "the real-time stream of the arm does not run");
    if (reply.type != ZK_TRAJECTORY_JOINT)
        return fail(ZK_NO_STATE, "the controller names the target joints of joint motions alone");
    *share = share_of(motion_of(slot, arm, joints_of(record.rest), joints_of(reply.data)), record.status.joint_position,
                      joint_count_of_slot(slot));
    return ZK_OK;
}
