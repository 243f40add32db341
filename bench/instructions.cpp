// A dozen short runs whose instructions callgrind counts: `instructions` runs all, one after another, each in a call of
// zk_measured and after one that pays for what only a first call does; `instructions --list` names them in that order.
#include <sys/socket.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "messages.h"
#include "zk_base.h"

namespace {

struct Run {
    const char* name;
    std::function<void()> call;
};

constexpr float kPosture[7] = {10, -20, -60, 15, -40, 20, 30};
constexpr float kSeed[7] = {12, -22, -58, 17, -41, 19, 29};

Run reply(const char* name, const char* text) {
    return {name, [message = std::string(text)]() mutable { handle_Recv_Json(0, message.data()); }};
}

Run forward(const char* name, int model) {
    return {name, [arm = ZK_Model_New(model, 0)] {
                Pose pose;
                ZK_Model_Forward(arm, kPosture, &pose);
            }};
}

Run forward_batch(const char* name, int model) {
    std::vector<float> joints;
    for (int i = 0; i < 64; ++i) joints.insert(joints.end(), kPosture, kPosture + 6);
    return {name, [arm = ZK_Model_New(model, 0), joints, poses = std::vector<Pose>(64)]() mutable {
                ZK_Model_Forward_Batch(arm, joints.data(), 64, poses.data(), 1);
            }};
}

Run inverse(const char* name, int model) {
    ZK_Model* const arm = ZK_Model_New(model, 0);
    Pose pose;
    ZK_Model_Forward(arm, kPosture, &pose);
    return {name, [arm, pose] {
                float joint[7];
                ZK_Model_Inverse(arm, &pose, kSeed, nullptr, joint, nullptr);
            }};
}

Run settled_inverse() {
    Algo_Init_Sys_Data(0, 0);
    return {"Algo_Inverse_Kinematics, ZK65-B", [pose = Algo_Forward_Kinematics(kPosture)] {
                float joint[7];
                Algo_Inverse_Kinematics(kSeed, &pose, joint, 0);
            }};
}

Run set_point() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) return {nullptr, {}};
    Init_Socket_Joint(65, ends[0]);
    return {"Movej_CANFD", [ends] {
                char bytes[512];
                Movej_CANFD(ends[0], kPosture, true, 0);
                (void)recv(ends[1], bytes, sizeof bytes, MSG_DONTWAIT);
            }};
}

std::vector<Run> all_runs() {
    using namespace zk::bench;
    return {{"classification of an acknowledgement", [] { Get_Json_KeyCode(kMove); }},
            {"classification of 1 kB without a match", [] { Get_Json_KeyCode(kDatagram); }},
            reply("a state", kState),
            reply("an acknowledgement", kAcknowledgement),
            {"a datagram",
             [] {
                 RobotStatus status{};
                 Parser_Realtime_Arm_Joint_State(kDatagram, &status);
             }},
            set_point(),
            forward("ZK_Model_Forward, ZK65-B", 0),
            forward("ZK_Model_Forward, ZK75-B", 1),
            forward_batch("64 rows of ZK_Model_Forward_Batch, ZK65-B", 0),
            settled_inverse(),
            inverse("ZK_Model_Inverse, ZK65-B", 0),
            inverse("ZK_Model_Inverse, ZK75-B", 1)};
}

}  // namespace

constexpr int kCalls = 100;

extern "C" [[gnu::noinline]] void zk_measured(const Run& run) {
    for (int i = 0; i < kCalls; ++i) run.call();
}

int main(int argc, char** argv) {
    const bool lists = argc > 1 && std::strcmp(argv[1], "--list") == 0;
    for (const Run& run : all_runs()) {
        if (lists) {
            std::puts(run.name);
            continue;
        }
        run.call();
        zk_measured(run);
    }
    return 0;
}
