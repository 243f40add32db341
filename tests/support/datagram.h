// A datagram of the real-time stream with every part that there is.
#pragma once

#include <nlohmann/json.hpp>

namespace zk::test {

inline nlohmann::json full_datagram() {
    return nlohmann::json::parse(R"({
        "state": "realtime_arm_joint_state",
        "arm_current_status": "move_L",
        "hand": {"hand_pos": [1,2,3,4,5,6], "hand_angle": [7,8,9,10,11,12], "hand_force": [13,14,15,16,17,18],
                 "hand_state": [19,20,21,22,23,24], "hand_err": 25},
        "aloha_state": {"io1_state": 26, "io2_state": 27},
        "lift_state": {"pos": 28000, "height": 29, "current": 30, "err_flag": 31, "en_flag": 32},
        "expand_state": {"joint_id": 33, "mode": 34, "pos": 35500, "current": 36, "err_flag": 37, "en_flag": 38},
        "joint_status": {"joint_speed": [1000,2000,3000,4000,5000,6000], "joint_current": [100,200,300,400,500,600],
                         "joint_en_flag": [1,0,1,0,1,0], "joint_err_code": [1,2,3,4,5,65535],
                         "joint_position": [1500,-2500,3500,4500,5500,6500],
                         "joint_temperature": [30000,31000,32000,33000,34000,35000],
                         "joint_voltage": [24000,24100,24200,24300,24400,24500]},
        "waypoint": {"quat": [1000000,2000,3000,4000], "euler": [100,200,-300], "position": [500000,-250000,125000]},
        "arm_err": 4097, "sys_err": 8194,
        "six_force_sensor": {"force": [1000,2000,3000,4000,5000,6000], "zero_force": [10,20,30,40,50,60],
                             "coordinate": 2}
    })");
}

}  // namespace zk::test
