// What the simulator replies about the controller, its buses, and the devices of the arm.
#include "simulator/replies.h"

namespace zk::test {

ReplyRows push_rows() {
    return {
        {"set_realtime_push",
         {{"cycle", 2}, {"enable", true}, {"custom", {{"joint_speed", true}}}},
         229,
         "true: state"},
        {"get_realtime_push",
         {},
         230,
         "number: cycle port boolean: enable string: ip " +
             under("custom/", "boolean: joint_speed lift_state expand_state arm_current_status hand aloha_state")},
    };
}

ReplyRows system_rows() {
    return {
        {"set_arm_power", {{"arm_power", 1}}, 86, "true: arm_power"},
        {"get_arm_power_state", {}, 87, "number: power_state"},
        {"clear_system_err", {}, 88, "true: clear_state"},
        {"get_controller_state", {}, 85, "number: voltage current temperature err_flag"},
        {"get_arm_software_info",
         {},
         207,
         "string: Product_version algorithm_info/version ctrl_info/build_time ctrl_info/version "
         "dynamic_info/model_version plan_info/build_time plan_info/version"},
        {"get_arm_software_version",
         {},
         90,
         "number: Plan_version Ctrl_version Real-time_Kernal1 Real-time_Kernal2 string: Product_version"},
        {"get_arm_hardware_version", {}, 89, "string: version"},
        {"get_tool_software_version", {}, 34, "number: version"},
        {"get_system_runtime", {}, 92, "number: day hour min sec"},
        {"clear_system_runtime", {}, 93, "true: clear_state"},
        {"get_joint_odom", {}, 94, "joints: odom"},
        {"clear_joint_odom", {}, 95, "true: clear_state"},
        {"get_log_file", {}, 91, "true: set_state"},
        {"set_arm_run_mode", {{"mode", 1}}, 181, "true: mode"},
        {"get_arm_run_mode", {}, 182, "number: mode"},
    };
}

ReplyRows network_rows() {
    const Json ethernet{{"ip", "10.0.0.2"}, {"mask", "255.0.0.0"}, {"gateway", "10.0.0.1"}};
    return {
        {"set_high_speed_eth", {{"mode", 1}}, 96, "true: set_state"},
        {"set_high_ethernet", ethernet, 198, "true: state"},
        {"get_high_ethernet", {}, 199, "string: ip mask gateway mac"},
        {"get_wired_net", {}, 208, "string: ip mask mac"},
        {"get_wifi_net", {}, 209, "number: channel string: ip mac mask mode password ssid"},
        {"set_NetIP", {{"ip", "10.0.0.3"}}, 201, "true: status"},
        {"set_net_default", {}, 210, "true: net_default_state"},
        {"save_device_info_all", {}, 200, "true: model"},
        {"get_controller_RS485_mode", {}, 233, "number: controller_RS485_mode baudrate modbus_timeout"},
        {"get_tool_RS485_mode", {}, 234, "number: tool_RS485_mode baudrate modbus_timeout"},
        // The library has no command of this name, and drops the reply.
        {"zk_sim_fault", {}, 0, "true: done"},
    };
}

ReplyRows modbus_rows() {
    const Json one{{"port", 0}, {"address", 7}, {"device", 1}}, no_device{{"port", 0}, {"address", 7}, {"device", 3}};
    const auto with = [](Json keys, const Json& more) {
        keys.update(more);
        return keys;
    };
    const Json several = with(one, {{"num", 2}});
    return {
        {"set_modbus_mode", {{"port", 0}, {"baudrate", 115200}, {"timeout", 10}}, 137, "true: set_state"},
        {"set_modbustcp_mode", {{"ip", "10.0.0.9"}, {"port", 502}, {"timeout", 2000}}, 252, "true: set_state"},
        {"read_coils", several, 139, "number: data"},
        {"read_coils", with(no_device, {{"num", 1}}), 139, "boolean: read_state"},
        {"read_multiple_coils", several, 215, "numbers: data"},
        {"read_input_status", several, 140, "number: data"},
        {"read_holding_registers", one, 141, "number: data"},
        {"read_input_registers", one, 142, "number: data"},
        {"read_multiple_holding_registers", several, 211, "numbers: data"},
        {"read_multiple_input_registers", several, 270, "numbers: data"},
        {"write_single_coil", with(one, {{"data", 1}}), 143, "true: write_state"},
        {"write_coils", with(several, {{"data", 3}}), 144, "true: write_state"},
        {"write_single_register", with(one, {{"data", 1000}}), 145, "true: write_state"},
        {"write_registers", with(several, {{"data", {1, 2, 3, 4}}}), 146, "true: write_state"},
        {"close_modbus_mode", {{"port", 0}}, 138, "true: set_state"},
        {"close_modbustcp_mode", {}, 253, "true: set_state"},
    };
}

ReplyRows io_rows() {
    const Json first{{"IO_Num", 1}};
    const auto port = [](const char* key, const Json& value) { return Json{{"IO_Num", 1}, {key, value}}; };
    return {
        {"set_DO_state", port("state", 1), 97, "true: set_state"},
        {"set_AO_state", port("voltage", 2500), 98, "true: state"},
        {"get_DO_state", first, 100, "number: IO_state"},
        {"get_DI_state", first, 101, "number: IO_state"},
        {"get_AO_state", first, 102, "number: voltage"},
        {"get_AI_state", first, 103, "number: voltage"},
        {"get_IO_input", {}, 99, "numbers: DI AI"},
        {"get_IO_output", {}, 104, "numbers: DO AO"},
        {"get_IO_state", first, 105, "number: IO_state IO_Mode"},
        {"set_IO_mode", port("IO_mode", 1), 212, "true: set_state"},
        {"set_voltage", {{"voltage_type", 1}, {"start_enable", true}}, 213, "true: state"},
        {"get_voltage", {}, 214, "number: voltage_type"},
        {"set_tool_DO_state", port("state", 1), 106, "true: set_state"},
        {"set_tool_IO_mode", port("state", 1), 107, "true: set_state"},
        {"get_tool_IO_state", {}, 108, "numbers: IO_Mode IO_State"},
        {"set_tool_voltage", {{"voltage_type", 1}}, 109, "true: state"},
        {"get_tool_voltage", {}, 110, "number: voltage_type"},
    };
}

// Their motions are not to be reported.
ReplyRows gripper_rows() {
    const Json grip{{"speed", 500}, {"force", 200}, {"block", 0}}, fingers{0, 1, 2, 3, 4, -1};
    return {
        {"set_gripper_route", {{"min", 0}, {"max", 1000}}, 111, "true: state"},
        {"set_gripper_release", {{"speed", 500}, {"block", 0}}, 112, "true: state"},
        {"set_gripper_pick", grip, 112, "true: state"},
        {"set_gripper_pick_on", grip, 112, "true: state"},
        {"set_gripper_position", {{"position", 500}}, 112, "true: state"},
        {"get_gripper_state", {}, 204, "number: enable status error mode current_force temperature actpos"},
        {"set_hand_posture", {{"posture_num", 1}}, 127, "true: set_state"},
        {"set_hand_seq", {{"seq_num", 1}}, 128, "true: set_state"},
        {"set_hand_angle", {{"hand_angle", fingers}}, 129, "true: set_state"},
        {"set_hand_speed", {{"hand_speed", 500}}, 130, "true: set_state"},
        {"set_hand_force", {{"hand_force", 500}}, 131, "true: set_state"},
        {"hand_follow_angle", {{"hand_angle", fingers}}, 274, "true: set_state"},
        {"hand_follow_pos", {{"hand_pos", fingers}}, 275, "true: set_state"},
        {"set_PWM", {{"PWM_Frq", 1000}, {"PWM_Dpulse", 50}}, 132, "true: set_state"},
    };
}

ReplyRows axis_rows() {
    const Json height{{"height", 100}, {"speed", 1}};
    return {
        {"set_lift_height", height, 150, "true: set_state"},
        {"set_lift", height, 148, "true: set_state"},
        {"set_lift ", height, 148, "true: set_state"},
        {"set_lift_speed", {{"speed", -1}}, 149, "true: set_state"},
        {"get_lift_state", {}, 151, "number: height current err_flag mode"},
        // The library knows no reply to these two, and drops them.
        {"expand_set_pos", {{"pos", 100}, {"speed", 1}}, 0, "true: set_state"},
        {"expand_set_speed", {{"speed", -1}}, 0, "true: set_state"},
        {"expand_get_state", {}, 224, "number: pos current err_flag mode"},
        {"expand_config", {{"rpm_max", 3000}, {"rpm_acc", 200}, {"conversin_coe", 1000}}, 225, "true: config_state"},
        {"expand_get_config", {}, 226, "number: rpm_max rpm_acc conversin_coe limit_min limit_max"},
        {"expand_set_version", {{"expand_version", 1}}, 216, "true: expand_version"},
        {"expand_get_version", {}, 217, "number: expand_version"},
        {"set_vehicle", {{"speed", 1}, {"angular", 1}}, 147, "true: set_state"},
        {"set_car_move", {{"linear_speed", 1}, {"angular_speed", 1}}, 152, "true: set_state"},
        {"set_car_speed", {{"station", 1}, {"speed", 100}}, 153, "true: navigation_state"},
        {"set_car_navigation_speed", {{"speed", 100}}, 154, "true: navigation_state"},
        {"set_car_navigation_mode", {{"mode", 1}}, 155, "true: navigation_state"},
        {"set_car_charge", {{"charge_state", 1}}, 157, "true: navigation_state"},
        {"set_car_station_num", {{"station_num", 1}}, 158, "true: navigation_state"},
        {"get_car_state", {}, 156, "number: battery_volume voltage current car_err car_state station_num"},
    };
}

}  // namespace zk::test
