// The conversation at the start of a connection: what the arm is, as its controller says. It uses neither the threads
// nor the tables of the library, so several may run at once, and a failure leaves nothing behind.
#pragma once

#include <string>

#include "control/dial.h"
#include "zk/realtime.h"

namespace zk {

struct Introduction {
    Peer peer;

    int32_t arm_mode = 0;
    int32_t joint_count = 0;
    int32_t model = -1;  // as libalgo_set_robot_and_sensor_type; -1: none of that number of joints
    int32_t sensor = 0;

    FrameRec tool{}, work{};
    float mounting[3] = {};                             // degrees
    float max_speed[8] = {}, max_acceleration[8] = {};  // as Get_Joint_Speed and Get_Joint_Acc
    float min_position[8] = {}, max_position[8] = {};   // degrees
    RealtimePushConfig push{};                          // not enabled when the controller does not answer the query

    std::string rest;  // what came after the last reply: the receive thread's to read
};

// arm_mode: that of the connection, 0 for the controller's own. `out` is set with 0 only.
//
// Returns 0; what `dial` returns; ZK_NO_ANSWER; ZK_LOST when the peer closed or reset the connection; ZK_NO_CONTROLLER
// when it does not talk as a controller; ZK_WRONG_JOINT_COUNT; ZK_NO_MEMORY. The attempt says more.
int converse(const char* host, int32_t port, int32_t arm_mode, Attempt& attempt, Introduction& out);

}  // namespace zk
