// The first hour with an arm: connect, print the model and the state, check that the host computes the same pose, move
// three times with the progress read from the real-time stream, and stop a fourth move half way.
#include <chrono>
#include <cmath>
#include <future>
#include <thread>

#include "check.h"

using namespace std::chrono_literals;

namespace {

constexpr float kPositionsAgree = 1e-4f;     // metres
constexpr float kOrientationsAgree = 1e-3f;  // radians

struct State {
    float joint[7] = {};
    Pose pose = {};
};

bool read_state(ArmSocket arm, State& state) {
    uint16_t arm_err = 0, sys_err = 0;
    if (!succeeded("Reading the arm's state",
                   Get_Current_Arm_State(arm, state.joint, &state.pose, &arm_err, &sys_err))) {
        return false;
    }
    ZK_Complete_Pose(&state.pose);  // the query leaves the quaternion as it was
    if (arm_err || sys_err) std::fprintf(stderr, "The arm reports errors: arm %#x, system %#x\n", arm_err, sys_err);
    return arm_err == 0 && sys_err == 0;
}

void print(const char* what, const Pose& pose) {
    std::printf("%-16s x %8.4f  y %8.4f  z %8.4f m    rx %7.3f  ry %7.3f  rz %7.3f rad\n", what, pose.position.x,
                pose.position.y, pose.position.z, pose.euler.rx, pose.euler.ry, pose.euler.rz);
}

void print(const char* what, const float* joint, int joints) {
    std::printf("%-16s", what);
    for (int i = 0; i < joints; ++i) std::printf(" %8.3f", joint[i]);
    std::printf(" deg\n");
}

// The angle of the rotation between two orientations.
float angle_between(const Euler& a, const Euler& b) {
    const Matrix p = Algo_Euler2Matrix(a), q = Algo_Euler2Matrix(b);
    float difference = 0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) difference += (p.m[i][j] - q.m[i][j]) * (p.m[i][j] - q.m[i][j]);
    }
    return 2 * std::asin(std::fmin(1.0f, std::sqrt(difference / 8)));
}

bool host_agrees(const State& state) {
    const Pose computed = Algo_Forward_Kinematics(state.joint);
    print("reported pose", state.pose);
    print("computed pose", computed);
    const Position &p = state.pose.position, &q = computed.position;
    const float distance = std::hypot(p.x - q.x, p.y - q.y, p.z - q.z);
    const float angle = angle_between(state.pose.euler, computed.euler);
    std::printf("they differ by %.1e m and %.1e rad\n\n", distance, angle);
    if (distance <= kPositionsAgree && angle <= kOrientationsAgree) return true;
    std::fprintf(stderr, "The pose computed on the host is not the reported one.\n");
    return false;
}

// The progress of a move, 0 to 1, of the joint with the longest way.
struct Progress {
    int joint = 0;
    float from = 0, to = 0;

    Progress(const float* start, const float* target, int joints) {
        for (int i = 0; i < joints; ++i) {
            if (std::fabs(target[i] - start[i]) <= std::fabs(to - from)) continue;
            joint = i, from = start[i], to = target[i];
        }
    }
    float of(const RobotStatus& status) const { return (status.joint_position[joint] - from) / (to - from); }
};

// Moves while this thread reads the stream. `watch` gets the progress and may stop the arm. Returns the status of the
// move, or that of the stream if it failed.
template <class Watch>
int watched_move(ArmSocket arm, const float* target, int joints, uint8_t speed, Watch watch) {
    State start;
    if (!read_state(arm, start)) return ZK_REFUSED;
    const Progress progress(start.joint, target, joints);
    auto move = std::async(std::launch::async, [&] { return Movej_Cmd(arm, target, speed, 0, 0, true); });
    int stream = ZK_OK;
    while (move.wait_for(200ms) != std::future_status::ready) {
        RobotStatus state;
        if (const int status = Get_Realtime_Arm_Joint_State(&state)) {
            stream = status;
            continue;
        }
        const float done = progress.of(state);
        std::printf("    joint %d at %8.3f deg  %3.0f %%\n", progress.joint + 1, state.joint_position[progress.joint],
                    100 * done);
        watch(done);
    }
    const int status = move.get();
    return succeeded("Reading the stream", stream) ? status : stream;
}

bool three_moves(ArmSocket arm, int joints) {
    const float targets[3][7] = {{30, 20, 60, 10, 40, 0, 0}, {-30, 35, 45, -20, 60, 90, 20}, {0, 10, 80, 0, 60, 0, 0}};
    for (const float* target : targets) {
        print("moving to", target, joints);
        if (!succeeded("The move", watched_move(arm, target, joints, 40, [](float) {}))) return false;
    }
    return true;
}

bool stop_half_way(ArmSocket arm, int joints) {
    const float target[7] = {90, -20, 30, 40, 20, 0, 0};
    print("moving to", target, joints);
    bool asked = false, stopped = false;
    const int status = watched_move(arm, target, joints, 20, [&](float done) {
        if (asked || done < 0.3f) return;
        std::printf("    stop!\n");
        asked = true;
        stopped = succeeded("Stopping", Move_Stop_Cmd(arm, true));
    });
    if (!asked) std::fprintf(stderr, "The move ended, with status %d, before the stop was asked for.\n", status);
    State end;
    if (!stopped || !read_state(arm, end)) return false;
    print("stopped at", end.joint, joints);
    if (status == ZK_REFUSED && std::fabs(end.joint[0] - target[0]) > 1) return true;
    std::fprintf(stderr, "The stop came too late: the move ended with status %d.\n", status);
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    const auto [address, port, arm_mode] = arguments(argc, argv);
    std::printf("ZK Base %s, connecting to %s:%d\n\n", API_Version(), address, port);
    const Arm arm(address, port, arm_mode);
    if (!arm.is_open()) return 1;

    ArmSoftwareInfo info{};
    if (!succeeded("Asking what arm it is", Get_Arm_Software_Info(arm, &info))) return 1;
    const int joints = libalgo_get_rbt_dof();
    std::printf("model            %s, %d joints\n", info.product_version, joints);
    std::printf("firmware         control %s of %s, planning %s\n", info.ctrl_version, info.ctrl_build_time,
                info.plan_version);

    State state;
    if (!read_state(arm, state)) return 1;
    print("joints", state.joint, joints);
    if (!host_agrees(state)) return 1;
    if (!three_moves(arm, joints)) return 1;
    if (!read_state(arm, state) || !host_agrees(state)) return 1;
    if (!stop_half_way(arm, joints)) return 1;
    std::printf("\nDone.\n");
    return 0;
}
