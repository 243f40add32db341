// The messages that several benchmarks read.
#pragma once

namespace zk::bench {

constexpr const char* kState =
    R"({"state":"current_arm_state","arm_state":{"joint":[10000,-20000,-60000,15000,-40000,20000],)"
    R"("pose":[431385,105206,434998,-2308,-779,-638],"arm_err":0,"sys_err":0}})"
    "\r\n";
constexpr const char* kMove = R"({"command":"movej","receive_state":true})";
constexpr const char* kAcknowledgement = R"({"command":"set_joint_max_speed","joint_speed":true})"
                                         "\r\n";
constexpr const char* kDatagram =
    R"({"time":105.25,"joint_status":{"joint_current":[100,100,100,100,100,100],"joint_en_flag":[1,1,1,1,1,1],)"
    R"("joint_err_code":[0,0,0,0,0,0],"joint_position":[10000,-20000,-60000,15000,-40000,20000],)"
    R"("joint_temperature":[32000,32250,32500,32750,33000,33250],"joint_voltage":[24000,24000,24000,24000,24000,24000],)"
    R"("joint_speed":[0,0,0,0,0,0]},"waypoint":{"quat":[-246778,851458,-119306,447086],"euler":[-2308,-779,-638],)"
    R"("position":[431385,105206,434998]},"arm_err":0,"sys_err":0,"arm_current_status":"idle",)"
    R"("six_force_sensor":{"force":[1780,-2300,4065,62,-40,19],"zero_force":[1780,-2300,4065,62,-40,19],"coordinate":0},)"
    R"("lift_state":{"pos":0,"height":0,"current":0,"err_flag":0,"en_flag":1},)"
    R"("expand_state":{"joint_id":1,"mode":0,"pos":0,"current":0,"err_flag":0,"en_flag":1},)"
    R"("hand":{"hand_pos":[0,0,0,0,0,0],"hand_angle":[0,0,0,0,0,0],"hand_force":[0,0,0,0,0,0],)"
    R"("hand_state":[0,0,0,0,0,0],"hand_err":0},"aloha_state":{"io1_state":0,"io2_state":0}})";

}  // namespace zk::bench
