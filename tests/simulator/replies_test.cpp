// Every reply of the simulator: that a client takes it for what it is, and finds the keys it needs in it.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>

#include "simulator/talk.h"
#include "zk/dispatch.h"

namespace zk::test {
namespace {

struct Row {
    std::string command;
    Json keys;
    int code;                                  // by which the library knows the reply
    std::map<std::string, std::string> reply;  // what must stand where, by JSON pointer
};

// The joints of the arm, as whatever a joint array holds.
Json array(size_t size, int value) { return Json(std::vector<int>(size, value)); }

bool fits(const Json& item, const std::string& kind, size_t joints) {
    if (kind == "true") return item.is_boolean() && item.get<bool>();
    if (kind == "boolean") return item.is_boolean();
    if (kind == "number") return item.is_number();
    if (kind == "string") return item.is_string();
    if (kind == "strings" || kind == "numbers" || kind == "joints" || kind == "pose" || kind == "triple") {
        if (!item.is_array()) return false;
        for (const Json& element : item) {
            if (kind == "strings" ? !element.is_string() : !element.is_number()) return false;
        }
        const std::map<std::string, size_t> sizes{{"joints", joints}, {"pose", 6}, {"triple", 3}};
        return sizes.count(kind) == 0 || item.size() == sizes.at(kind);
    }
    ADD_FAILURE() << "no such kind: " << kind;
    return false;
}

// An action that is acknowledged under `key`.
Row done(const std::string& command, const Json& keys, int code, const std::string& key) {
    return {command, keys, code, {{"/" + key, "true"}}};
}

// At rest, and nothing recorded before the first row.
std::vector<Row> drag_rows(size_t joints) {
    return {
        {"drag_trajectory_origin", {}, 119, {{"/trajectory_state", "boolean"}}},
        done("start_drag_teach", {{"trajectory_record", 1}}, 113, "drag_teach"),
        done("zk_sim_hand", {{"seconds", 3600}, {"joint", array(joints, 0)}}, 0, "done"),
        done("stop_drag_teach", {}, 114, "drag_teach"),
        {"run_drag_trajectory", {}, 115, {{"/run_state", "boolean"}}},  // says so when it has ended
        {"pause_drag_trajectory", {}, 116, {{"/pause_state", "boolean"}}},
        {"continue_drag_trajectory", {}, 117, {{"/continue_state", "boolean"}}},
        {"stop_drag_trajectory", {}, 118, {{"/stop_state", "boolean"}}},
        done("start_multi_drag_teach", {{"mode", 0}, {"singular_wall", 1}}, 120, "set_state"),
        done("stop_drag_teach", {}, 114, "drag_teach"),
        done("set_drag_teach_sensitivity", {{"grade", 70}}, 272, "set_state"),
        {"get_drag_teach_sensitivity", {}, 273, {{"/grade", "number"}}},
    };
}

// Calibrations end at once, refused, on an arm without power.
std::vector<Row> six_force_rows(size_t joints) {
    const Json held{{"sensor", 1}, {"mode", 0}, {"direction", 2}, {"N", 0}};
    return {
        {"get_force_data",
         {},
         123,
         {{"/force_data", "numbers"},
          {"/zero_force_data", "numbers"},
          {"/work_zero_force_data", "numbers"},
          {"/tool_zero_force_data", "numbers"}}},
        done("clear_force_data", {}, 124, "clear_state"),
        done("Start_Force_Position_Move", {}, 160, "set_state"),
        {"Force_Position_Move",
         {},
         161,
         {{"/joint", "joints"}, {"/all_direction_force", "pose"}, {"/force", "number"}, {"/arm_err", "number"}}},
        done("Stop_Force_Position_Move", {}, 162, "set_state"),
        done("set_force_position", held, 121, "set_state"),
        done("stop_force_position", {}, 122, "stop_state"),
        done("set_arm_power", {{"arm_power", 0}}, 86, "arm_power"),
        {"set_force_sensor", {}, 125, {{"/set_state", "boolean"}}},
        {"manual_set_force_pose4", {{"joint", array(joints, 0)}}, 125, {{"/set_state", "boolean"}}},
        {"stop_set_force_sensor", {}, 126, {{"/stop_state", "boolean"}}},
        done("set_arm_power", {{"arm_power", 1}}, 86, "arm_power"),
    };
}

std::vector<Row> one_force_rows(size_t joints) {
    return {
        {"get_Fz",
         {},
         133,
         {{"/set_state", "boolean"},
          {"/Fz", "number"},
          {"/zero_Fz", "number"},
          {"/work_zero_Fz", "number"},
          {"/tool_zero_Fz", "number"}}},
        done("clear_Fz", {}, 134, "set_state"),
        done("set_arm_power", {{"arm_power", 0}}, 86, "arm_power"),
        {"auto_set_Fz", {}, 125, {{"/set_state", "boolean"}}},
        {"manual_set_Fz", {{"pose1", array(joints, 0)}, {"pose2", array(joints, 1)}}, 125, {{"/set_state", "boolean"}}},
        done("set_arm_power", {{"arm_power", 1}}, 86, "arm_power"),
    };
}

std::vector<Row> joint_rows(size_t joints) {
    const auto pair = [](int value) { return Json{1, value}; };
    return {
        done("set_joint_max_speed", {{"joint_max_speed", pair(1000)}}, 2, "joint_max_speed"),
        done("set_joint_max_acc", {{"joint_max_acc", pair(1000)}}, 3, "joint_max_acc"),
        done("set_joint_min_pos", {{"joint_min_pos", pair(-90000)}}, 4, "joint_min_pos"),
        done("set_joint_max_pos", {{"joint_max_pos", pair(90000)}}, 5, "joint_max_pos"),
        done("set_joint_en_state", {{"joint_en_state", pair(1)}}, 6, "joint_en_state"),
        done("set_joint_zero_pos", {{"joint_zero_pos", static_cast<int>(joints)}}, 7, "joint_zero_pos"),
        done("set_joint_clear_err", {{"joint_clear_err", 1}}, 8, "joint_clear_err"),
        done("start_calibrate", {}, 9, "calibrate_state"),
        done("stop_calibrate", {}, 10, "calibrate_state"),
        {"get_calibrate_state", {}, 11, {{"/joint_state", "joints"}, {"/err", "joints"}}},
        {"get_joint_max_speed", {}, 1, {{"/joint_speed", "joints"}}},
        {"get_joint_max_acc", {}, 12, {{"/joint_acc", "joints"}}},
        {"get_joint_min_pos", {}, 13, {{"/min_pos", "joints"}}},
        {"get_joint_max_pos", {}, 14, {{"/max_pos", "joints"}}},
        {"get_joint_en_state", {}, 15, {{"/en_state", "joints"}}},
        {"get_joint_err_flag", {}, 16, {{"/err_flag", "joints"}, {"/brake_state", "joints"}}},
        {"get_joint_software_version", {}, 17, {{"/version", "joints"}}},
        done("set_joint_drive_max_speed", {{"joint_max_speed", pair(1000)}}, 218, "joint_max_speed"),
        done("set_joint_drive_max_acc", {{"joint_max_acc", pair(1000)}}, 219, "joint_max_acc"),
        done("set_joint_drive_min_pos", {{"joint_min_pos", pair(-90000)}}, 220, "joint_min_pos"),
        done("set_joint_drive_max_pos", {{"joint_max_pos", pair(90000)}}, 221, "joint_max_pos"),
        {"get_joint_drive_max_speed", {}, 222, {{"/joint_speed", "joints"}}},
        {"get_joint_drive_max_acc", {}, 223, {{"/joint_acc", "joints"}}},
        {"get_joint_drive_min_pos", {}, 202, {{"/min_pos", "joints"}}},
        {"get_joint_drive_max_pos", {}, 203, {{"/max_pos", "joints"}}},
        done("auto_set_joint_limit", {{"limit_mode", 1}}, 206, "limit_mode"),
        done("auto_fix_joint_over_soft_limit", {}, 205, "set_state"),
    };
}

std::vector<Row> state_rows(size_t joints) {
    return {
        {"get_current_arm_state",
         {},
         54,
         {{"/arm_state/pose", "pose"},
          {"/arm_state/joint", "joints"},
          {"/arm_state/arm_err", "number"},
          {"/arm_state/sys_err", "number"}}},
        {"get_current_joint_temperature", {}, 55, {{"/joint_temperature", "joints"}}},
        {"get_current_joint_current", {}, 56, {{"/joint_current", "joints"}}},
        {"get_current_joint_voltage", {}, 57, {{"/joint_voltage", "joints"}}},
        {"get_joint_degree", {}, 58, {{"/joint", "joints"}}},
        {"get_arm_all_state",
         {},
         59,
         {{"/all_state/temperature", "joints"},
          {"/all_state/current", "joints"},
          {"/all_state/voltage", "joints"},
          {"/all_state/en_flag", "joints"},
          {"/all_state/err_flag", "joints"},
          {"/all_state/sys_err", "number"}}},
        {"get_arm_plan_num", {}, 60, {{"/plan_num", "number"}}},
        done("set_init_pose", {{"init_pose", array(joints, 1000)}}, 61, "init_pose"),
        {"get_init_pose", {}, 62, {{"/init_pose", "joints"}}},
        done("set_install_pose", {{"pose", {0.5, -90, 0}}}, 63, "set_state"),
        {"get_install_pose", {}, 167, {{"/pose", "triple"}}},
    };
}

std::vector<Row> limit_rows(size_t joints) {
    return {
        done("set_arm_max_line_speed", {{"arm_line_speed", 250}}, 19, "arm_line_speed"),
        done("set_arm_max_line_acc", {{"arm_line_acc", 1600}}, 20, "arm_line_acc"),
        done("set_arm_max_angular_speed", {{"arm_angular_speed", 600}}, 21, "arm_angular_speed"),
        done("set_arm_max_angular_acc", {{"arm_angular_acc", 4000}}, 22, "arm_angular_acc"),
        {"get_arm_max_line_speed", {}, 23, {{"/arm_line_speed", "number"}}},
        {"get_arm_max_line_acc", {}, 24, {{"/arm_line_acc", "number"}}},
        {"get_arm_max_angular_speed", {}, 25, {{"/arm_angular_speed", "number"}}},
        {"get_arm_max_angular_acc", {}, 26, {{"/arm_angular_acc", "number"}}},
        done("set_arm_init", {}, 27, "arm_init"),
        done("set_collision_stage", {{"collision_stage", 8}}, 28, "collision_state"),
        {"get_collision_stage", {}, 29, {{"/collision_stage", "number"}}},
        done("set_DH_data", {{"data", {1, 2, 3, 4, 5}}}, 30, "set_state"),
        {"get_DH_data", {}, 31, {{"/data", "numbers"}}},
        done("set_joint_zero_offset", {{"offset", array(joints, 250)}}, 32, "set_state"),
        done("set_arm_dynamic_parm", {{"parm", array(2 * joints, 1)}}, 33, "set_state"),
        done("set_arm_servo", {{"arm_servo", 1}}, 35, "arm_servo"),
        done("set_system_state_servo", {{"servo_state", 1}}, 36, "servo_state"),
        done("plan_speed", {{"speed", 50}}, 196, "plan_state"),
        done("set_teach_frame", {{"frame_type", 1}}, 165, "set_state"),
        {"get_teach_frame", {}, 241, {{"/frame_type", "number"}}},
    };
}

std::vector<Row> frame_rows() {
    const Json pose{100000, 0, 0, 0, 0, 1571}, position{1, 2, 3};
    const std::map<std::string, std::string> tool{
        {"/tool_name", "string"}, {"/pose", "pose"}, {"/payload", "number"}, {"/position", "triple"}};
    const std::map<std::string, std::string> work{{"/frame_name", "string"}, {"/pose", "pose"}};
    const Json new_tool{{"tool_name", "grip"}, {"tool_pose", pose}, {"payload", 500}, {"position", position}};
    const Json new_work{{"frame_name", "desk"}, {"frame_pose", pose}};
    const Json tool_name{{"tool_name", "grip"}}, work_name{{"frame_name", "desk"}};
    return {
        done("set_auto_tool_frame", {{"point_num", 1}}, 37, "auto_tool_frame"),
        {"generate_auto_tool_frame",
         {{"tool_name", "auto"}, {"payload", 0}, {"position", position}},
         38,
         {{"/auto_tool_frame", "boolean"}}},  // false: there is one point only
        done("set_manual_tool_frame", new_tool, 39, "manual_tool_frame"),
        done("update_tool_frame", new_tool, 261, "update_state"),
        done("set_change_tool_frame", tool_name, 40, "change_tool_frame"),
        {"get_current_tool_frame", {}, 44, tool},
        {"get_tool_frame", tool_name, 45, tool},
        {"get_tool_frame", {{"tool_name", "none"}}, 45, {{"/get_state", "boolean"}}},
        {"get_total_tool_frame", {}, 46, {{"/tool_names", "strings"}}},
        done("set_delete_tool_frame", tool_name, 41, "delete_tool_frame"),
        done("set_payload", {{"payload", 500}, {"position", position}}, 42, "set_state"),
        done("set_none_payload", {}, 43, "set_state"),
        done("set_auto_work_frame", {{"frame_name", "auto"}, {"point_num", 1}}, 47, "auto_work_frame"),
        done("set_manual_work_frame", new_work, 48, "manual_work_frame"),
        done("update_work_frame", new_work, 260, "update_state"),
        done("set_change_work_frame", work_name, 49, "change_work_frame"),
        {"get_current_work_frame", {}, 51, work},
        {"get_work_frame", work_name, 52, work},
        {"get_work_frame", {{"frame_name", "none"}}, 52, {{"/get_state", "boolean"}}},
        {"get_total_work_frame", {}, 53, {{"/frame_names", "strings"}}},
        done("set_delete_work_frame", work_name, 50, "delete_work_frame"),
    };
}

std::vector<Row> trajectory_rows(size_t joints) {
    const Json target{{"joint", array(joints, 2000)}, {"v", 1}, {"r", 0}, {"trajectory_connect", 0}};
    // Near to where the arm stands, and joined to what never comes.
    const auto nearby = [&](int aside, int below) {
        return joints == 7 ? Json{-422485, -203256 + aside, 368852 - below, -2344, -642, 2865}
                           : Json{352792, 42782 + aside, 507496 - below, 284, 454, 2184};
    };
    const auto joined = [](const Json& pose) {
        return Json{{"pose", pose}, {"v", 1}, {"r", 0}, {"loop", 0}, {"trajectory_connect", 1}};
    };
    const Json circle{{"pose_via", nearby(20000, 40000)}, {"pose_to", nearby(0, 40000)}};
    return {
        {"get_arm_current_trajectory", {}, 72, {{"/type", "string"}, {"/data", "joints"}}},
        done("movej", target, 189, "receive_state"),
        {"get_arm_current_trajectory", {}, 72, {{"/type", "string"}, {"/data", "joints"}}},
        done("set_arm_pause", {}, 68, "arm_pause"),
        done("set_arm_continue", {}, 69, "arm_continue"),
        done("timer", {{"wait_time", 1}}, 77, "wait_time"),
        // Replies about waypoints are taken for a streamed drag-teach point, by the five letters in their names.
        done("add_waypoint", {{"joint", array(joints, 0)}}, 231, "waypoint_state"),
        done("start_waypoint", {{"frequency", 50}}, 231, "waypoint_state"),
        done("stop_waypoint", {}, 231, "waypoint_state"),
        done("clear_waypoint", {}, 231, "waypoint_state"),
        done("set_arm_slow_stop", {}, 232, "arm_slow_stop"),
        done("set_arm_stop", {}, 67, "arm_stop"),
        done("set_delete_current_trajectory", {}, 70, "delete_current_trajectory"),
        done("set_install_pose", {{"pose", {0, 0, 0}}}, 63, "set_state"),
        done("movej_p", joined(nearby(0, 0)), 189, "receive_state"),
        done("movel", joined(nearby(20000, 0)), 189, "receive_state"),
        done("moves", joined(nearby(20000, 20000)), 189, "receive_state"),
        done("movec", joined(circle), 189, "receive_state"),
        done("set_arm_delete_trajectory", {}, 71, "arm_delete_trajectory"),
    };
}

std::vector<Row> streaming_rows(size_t joints) {
    return {
        {"movej_canfd", {{"joint", array(joints, 0)}}, 65, {{"/joint", "joints"}, {"/arm_err", "number"}}},
        {"movep_canfd", {{"pose", array(6, 0)}}, 66, {{"/pose", "pose"}, {"/arm_err", "number"}}},
        {"zk_sim_stream", {}, 0, {{"/received", "number"}, {"/refused", "number"}}},
    };
}

std::vector<Row> teach_rows() {
    const Json jog{{"teach_joint", 1}, {"direction", "neg"}, {"v", 1}};
    return {
        done("set_joint_teach", jog, 78, "joint_teach"),
        done("set_stop_teach", {}, 81, "stop_teach"),
        done("set_pos_teach", {{"teach_type", "z"}, {"direction", "neg"}, {"v", 1}}, 79, "pos_teach"),
        done("set_stop_teach", {}, 81, "stop_teach"),
        done("set_ort_teach", {{"teach_type", "rz"}, {"direction", "pos"}, {"v", 1}}, 80, "ort_teach"),
        done("set_stop_teach", {}, 81, "stop_teach"),
        done("set_joint_step", {{"joint_step", {1, 10}}, {"v", 1}}, 82, "joint_step"),
        done("set_pos_step", {{"step_type", "z_step"}, {"step", -1}, {"v", 1}}, 83, "pos_step"),
        done("set_ort_step", {{"step_type", "rz_step"}, {"step", 1}, {"v", 1}}, 84, "ort_step"),
    };
}

std::vector<Row> push_rows() {
    return {
        done("set_realtime_push", {{"cycle", 2}, {"enable", true}, {"custom", {{"joint_speed", true}}}}, 229, "state"),
        {"get_realtime_push",
         {},
         230,
         {{"/cycle", "number"},
          {"/enable", "boolean"},
          {"/port", "number"},
          {"/ip", "string"},
          {"/custom/joint_speed", "boolean"},
          {"/custom/lift_state", "boolean"},
          {"/custom/expand_state", "boolean"},
          {"/custom/arm_current_status", "boolean"},
          {"/custom/hand", "boolean"},
          {"/custom/aloha_state", "boolean"}}},
    };
}

std::vector<Row> system_rows() {
    return {
        done("set_arm_power", {{"arm_power", 1}}, 86, "arm_power"),
        {"get_arm_power_state", {}, 87, {{"/power_state", "number"}}},
        done("clear_system_err", {}, 88, "clear_state"),
        {"get_controller_state",
         {},
         85,
         {{"/voltage", "number"}, {"/current", "number"}, {"/temperature", "number"}, {"/err_flag", "number"}}},
        {"get_arm_software_info",
         {},
         207,
         {{"/Product_version", "string"},
          {"/algorithm_info/version", "string"},
          {"/ctrl_info/build_time", "string"},
          {"/ctrl_info/version", "string"},
          {"/dynamic_info/model_version", "string"},
          {"/plan_info/build_time", "string"},
          {"/plan_info/version", "string"}}},
        {"get_arm_software_version",
         {},
         90,
         {{"/Plan_version", "number"},
          {"/Ctrl_version", "number"},
          {"/Real-time_Kernal1", "number"},
          {"/Real-time_Kernal2", "number"},
          {"/Product_version", "string"}}},
        {"get_arm_hardware_version", {}, 89, {{"/version", "string"}}},
        {"get_tool_software_version", {}, 34, {{"/version", "number"}}},
        {"get_system_runtime",
         {},
         92,
         {{"/day", "number"}, {"/hour", "number"}, {"/min", "number"}, {"/sec", "number"}}},
        done("clear_system_runtime", {}, 93, "clear_state"),
        {"get_joint_odom", {}, 94, {{"/odom", "joints"}}},
        done("clear_joint_odom", {}, 95, "clear_state"),
        done("get_log_file", {}, 91, "set_state"),
        done("set_arm_run_mode", {{"mode", 1}}, 181, "mode"),
        {"get_arm_run_mode", {}, 182, {{"/mode", "number"}}},
    };
}

std::vector<Row> network_rows() {
    const Json ethernet{{"ip", "10.0.0.2"}, {"mask", "255.0.0.0"}, {"gateway", "10.0.0.1"}};
    return {
        done("set_high_speed_eth", {{"mode", 1}}, 96, "set_state"),
        done("set_high_ethernet", ethernet, 198, "state"),
        {"get_high_ethernet",
         {},
         199,
         {{"/ip", "string"}, {"/mask", "string"}, {"/gateway", "string"}, {"/mac", "string"}}},
        {"get_wired_net", {}, 208, {{"/ip", "string"}, {"/mask", "string"}, {"/mac", "string"}}},
        {"get_wifi_net",
         {},
         209,
         {{"/channel", "number"},
          {"/ip", "string"},
          {"/mac", "string"},
          {"/mask", "string"},
          {"/mode", "string"},
          {"/password", "string"},
          {"/ssid", "string"}}},
        done("set_NetIP", {{"ip", "10.0.0.3"}}, 201, "status"),
        done("set_net_default", {}, 210, "net_default_state"),
        done("save_device_info_all", {}, 200, "model"),
        {"get_controller_RS485_mode",
         {},
         233,
         {{"/controller_RS485_mode", "number"}, {"/baudrate", "number"}, {"/modbus_timeout", "number"}}},
        {"get_tool_RS485_mode",
         {},
         234,
         {{"/tool_RS485_mode", "number"}, {"/baudrate", "number"}, {"/modbus_timeout", "number"}}},
        // The library has no command of this name, and drops the reply.
        done("zk_sim_fault", {}, 0, "done"),
    };
}

std::vector<Row> modbus_rows() {
    const Json one{{"port", 0}, {"address", 7}, {"device", 1}}, no_device{{"port", 0}, {"address", 7}, {"device", 3}};
    const auto with = [](Json keys, const Json& more) {
        keys.update(more);
        return keys;
    };
    const Json several = with(one, {{"num", 2}});
    const auto number = [](const std::string& command, const Json& keys, int code) {
        return Row{command, keys, code, {{"/data", "number"}}};
    };
    const auto numbers = [](const std::string& command, const Json& keys, int code) {
        return Row{command, keys, code, {{"/data", "numbers"}}};
    };
    return {
        done("set_modbus_mode", {{"port", 0}, {"baudrate", 115200}, {"timeout", 10}}, 137, "set_state"),
        done("set_modbustcp_mode", {{"ip", "10.0.0.9"}, {"port", 502}, {"timeout", 2000}}, 252, "set_state"),
        number("read_coils", several, 139),
        {"read_coils", with(no_device, {{"num", 1}}), 139, {{"/read_state", "boolean"}}},
        numbers("read_multiple_coils", several, 215),
        number("read_input_status", several, 140),
        number("read_holding_registers", one, 141),
        number("read_input_registers", one, 142),
        numbers("read_multiple_holding_registers", several, 211),
        numbers("read_multiple_input_registers", several, 270),
        done("write_single_coil", with(one, {{"data", 1}}), 143, "write_state"),
        done("write_coils", with(several, {{"data", 3}}), 144, "write_state"),
        done("write_single_register", with(one, {{"data", 1000}}), 145, "write_state"),
        done("write_registers", with(several, {{"data", {1, 2, 3, 4}}}), 146, "write_state"),
        done("close_modbus_mode", {{"port", 0}}, 138, "set_state"),
        done("close_modbustcp_mode", {}, 253, "set_state"),
    };
}

std::vector<Row> fence_rows() {
    const Json sphere{{"form", 3}, {"radius", 500}, {"x", 1}, {"y", 2}, {"z", 3}};
    Json named = sphere;
    named["form_name"] = "ball";
    const Json name{{"form_name", "ball"}}, ball{{"name", "b"}, {"radius", 50}, {"x", 1}, {"y", 2}, {"z", 3}};
    const Json enable{{"set_enable", true}, {"in_out_side", 0}, {"effective_region", 0}};
    const std::map<std::string, std::string> enabled{
        {"/enable_state", "boolean"}, {"/in_out_side", "number"}, {"/effective_region", "number"}};
    const auto fence = [](const std::string& where, bool has_name) {
        std::map<std::string, std::string> keys;
        for (const char* key : {"/form", "/radius", "/x", "/y", "/z"}) keys[where + key] = "number";
        if (has_name) keys[where + "/form_name"] = "string";
        return keys;
    };
    return {
        done("set_electronic_fence_config", sphere, 244, "set_config"),
        {"get_electronic_fence_config", {}, 245, fence("", false)},
        done("set_electronic_fence_enable", enable, 242, "set_state"),
        {"get_electronic_fence_enable", {}, 243, enabled},
        done("add_electronic_fence_config", named, 246, "add_config"),
        done("update_electronic_fence_config", named, 247, "update_config"),
        {"given_electronic_fence_config", name, 250, fence("", true)},
        {"given_electronic_fence_config", {{"form_name", "none"}}, 250, {{"/given_state", "boolean"}}},
        {"get_electronic_fence_list_names", {}, 249, {{"/name_list", "strings"}}},
        {"get_electronic_fence_list_infos", {}, 251, fence("/info_list/0", true)},
        done("delete_electronic_fence_config", name, 248, "delete_config"),
        done("set_virtual_wall_config", sphere, 256, "set_config"),
        {"get_virtual_wall_config", {}, 257, fence("", false)},
        done("set_virtual_wall_enable", enable, 258, "set_state"),
        {"get_virtual_wall_enable", {}, 259, enabled},
        done("set_self_collision_enable", {{"set_enable", true}}, 254, "set_state"),
        {"get_self_collision_enable", {}, 255, {{"/enable_state", "number"}}},
        done("set_tool_envelope", {{"tool_name", "Arm_Tip"}, {"list", Json::array({ball})}}, 190, "set_state"),
        {"get_tool_envelope",
         {{"tool_name", "Arm_Tip"}},
         191,
         {{"/tool_name", "string"}, {"/list/0/name", "string"}, {"/list/0/radius", "number"}}},
        {"get_tool_envelope", {{"tool_name", "none"}}, 191, {{"/get_state", "boolean"}}},
    };
}

std::vector<Row> io_rows() {
    const Json first{{"IO_Num", 1}};
    const auto port = [](const char* key, const Json& value) { return Json{{"IO_Num", 1}, {key, value}}; };
    return {
        done("set_DO_state", port("state", 1), 97, "set_state"),
        done("set_AO_state", port("voltage", 2500), 98, "state"),
        {"get_DO_state", first, 100, {{"/IO_state", "number"}}},
        {"get_DI_state", first, 101, {{"/IO_state", "number"}}},
        {"get_AO_state", first, 102, {{"/voltage", "number"}}},
        {"get_AI_state", first, 103, {{"/voltage", "number"}}},
        {"get_IO_input", {}, 99, {{"/DI", "numbers"}, {"/AI", "numbers"}}},
        {"get_IO_output", {}, 104, {{"/DO", "numbers"}, {"/AO", "numbers"}}},
        {"get_IO_state", first, 105, {{"/IO_state", "number"}, {"/IO_Mode", "number"}}},
        done("set_IO_mode", port("IO_mode", 1), 212, "set_state"),
        done("set_voltage", {{"voltage_type", 1}, {"start_enable", true}}, 213, "state"),
        {"get_voltage", {}, 214, {{"/voltage_type", "number"}}},
        done("set_tool_DO_state", port("state", 1), 106, "set_state"),
        done("set_tool_IO_mode", port("state", 1), 107, "set_state"),
        {"get_tool_IO_state", {}, 108, {{"/IO_Mode", "numbers"}, {"/IO_State", "numbers"}}},
        done("set_tool_voltage", {{"voltage_type", 1}}, 109, "state"),
        {"get_tool_voltage", {}, 110, {{"/voltage_type", "number"}}},
    };
}

// Their motions are not to be reported.
std::vector<Row> gripper_rows() {
    const Json grip{{"speed", 500}, {"force", 200}, {"block", 0}}, fingers{0, 1, 2, 3, 4, -1};
    return {
        done("set_gripper_route", {{"min", 0}, {"max", 1000}}, 111, "state"),
        done("set_gripper_release", {{"speed", 500}, {"block", 0}}, 112, "state"),
        done("set_gripper_pick", grip, 112, "state"),
        done("set_gripper_pick_on", grip, 112, "state"),
        done("set_gripper_position", {{"position", 500}}, 112, "state"),
        {"get_gripper_state",
         {},
         204,
         {{"/enable", "number"},
          {"/status", "number"},
          {"/error", "number"},
          {"/mode", "number"},
          {"/current_force", "number"},
          {"/temperature", "number"},
          {"/actpos", "number"}}},
        done("set_hand_posture", {{"posture_num", 1}}, 127, "set_state"),
        done("set_hand_seq", {{"seq_num", 1}}, 128, "set_state"),
        done("set_hand_angle", {{"hand_angle", fingers}}, 129, "set_state"),
        done("set_hand_speed", {{"hand_speed", 500}}, 130, "set_state"),
        done("set_hand_force", {{"hand_force", 500}}, 131, "set_state"),
        done("hand_follow_angle", {{"hand_angle", fingers}}, 274, "set_state"),
        done("hand_follow_pos", {{"hand_pos", fingers}}, 275, "set_state"),
        done("set_PWM", {{"PWM_Frq", 1000}, {"PWM_Dpulse", 50}}, 132, "set_state"),
    };
}

std::vector<Row> axis_rows() {
    const Json height{{"height", 100}, {"speed", 1}};
    return {
        done("set_lift_height", height, 150, "set_state"),
        done("set_lift", height, 148, "set_state"),
        done("set_lift ", height, 148, "set_state"),
        done("set_lift_speed", {{"speed", -1}}, 149, "set_state"),
        {"get_lift_state",
         {},
         151,
         {{"/height", "number"}, {"/current", "number"}, {"/err_flag", "number"}, {"/mode", "number"}}},
        // The library knows no reply to these two, and drops them.
        done("expand_set_pos", {{"pos", 100}, {"speed", 1}}, 0, "set_state"),
        done("expand_set_speed", {{"speed", -1}}, 0, "set_state"),
        {"expand_get_state",
         {},
         224,
         {{"/pos", "number"}, {"/current", "number"}, {"/err_flag", "number"}, {"/mode", "number"}}},
        done("expand_config", {{"rpm_max", 3000}, {"rpm_acc", 200}, {"conversin_coe", 1000}}, 225, "config_state"),
        {"expand_get_config",
         {},
         226,
         {{"/rpm_max", "number"},
          {"/rpm_acc", "number"},
          {"/conversin_coe", "number"},
          {"/limit_min", "number"},
          {"/limit_max", "number"}}},
        done("expand_set_version", {{"expand_version", 1}}, 216, "expand_version"),
        {"expand_get_version", {}, 217, {{"/expand_version", "number"}}},
        done("set_vehicle", {{"speed", 1}, {"angular", 1}}, 147, "set_state"),
        done("set_car_move", {{"linear_speed", 1}, {"angular_speed", 1}}, 152, "set_state"),
        done("set_car_speed", {{"station", 1}, {"speed", 100}}, 153, "navigation_state"),
        done("set_car_navigation_speed", {{"speed", 100}}, 154, "navigation_state"),
        done("set_car_navigation_mode", {{"mode", 1}}, 155, "navigation_state"),
        done("set_car_charge", {{"charge_state", 1}}, 157, "navigation_state"),
        done("set_car_station_num", {{"station_num", 1}}, 158, "navigation_state"),
        {"get_car_state",
         {},
         156,
         {{"/battery_volume", "number"},
          {"/voltage", "number"},
          {"/current", "number"},
          {"/car_err", "number"},
          {"/car_state", "number"},
          {"/station_num", "number"}}},
    };
}

std::vector<Row> file_rows() {
    const Json project{{"project_name", "p"}, {"file_size", 0}, {"plan_speed", 20}, {"save_id", 1}, {"only_save", 1}};
    return {
        done("run_project", project, 163, "project_state"),
        done("update_software", {{"file_size", 2}, {"update_name", "u"}}, 183, "update_state"),
        done("popup", {{"popup_result", true}}, 197, "popup_result"),
        {"online_next", {}, 184, {{"/state", "boolean"}}},
        // Taken for another command of the lift.
        done("set_lift_version", {{"lift_version", 1}}, 148, "lift_version"),
        done("set_sale_version", {{"sale_version", 1}}, 192, "sale_version"),
        {"get_tool_hardware_version", {}, 193, {{"/version", "number"}}},
        {"save_trajectory", {{"trajectory_name", "t"}}, 194, {{"/total_num", "number"}, {"/save_state", "boolean"}}},
        {"zk_sim_files", {}, 0, {}},
    };
}

std::vector<Row> program_rows(size_t joints) {
    const Json page{{"page_num", 1}, {"page_size", 10}, {"vague_search", ""}};
    const Json waypoint{{"point_name", "w"},    {"joint", array(joints, 0)}, {"pose", array(6, 0)},
                        {"work_frame", "Base"}, {"tool_frame", "Arm_Tip"},   {"time", "now"}};
    const std::map<std::string, std::string> pages{
        {"/page_num", "number"}, {"/page_size", "number"}, {"/total_size", "number"}, {"/vague_search", "string"}};
    const auto listed = [&](const std::map<std::string, std::string>& entry) {
        std::map<std::string, std::string> keys = pages;
        for (const auto& [key, kind] : entry) keys["/list/0" + key] = kind;
        return keys;
    };
    return {
        {"get_program_trajectory_list", page, 235,
         listed({{"/id", "number"}, {"/size", "number"}, {"/speed", "number"}, {"/trajectory_name", "string"}})},
        {"get_program_run_state", {}, 236, {{"/run_state", "number"}}},
        done("update_program_trajectory", {{"id", 1}, {"project_name", "q"}, {"plan_speed", 30}}, 262, "update_state"),
        done("set_default_run_program", {{"id", 1}}, 263, "set_state"),
        {"get_default_run_program", {}, 264, {{"/id", "number"}}},
        done("set_program_id_start", {{"id", 1}, {"speed", 20}}, 237, "start_state"),
        {"delete_program_trajectory", {{"id", 1}}, 239, {{"/delete_state", "boolean"}}},
        done("add_global_waypoint", waypoint, 265, "add_state"),
        done("update_global_waypoint", waypoint, 266, "update_state"),
        {"given_global_waypoint",
         {{"point_name", "w"}},
         268,
         {{"/point_name", "string"}, {"/joint", "joints"}, {"/pose", "pose"}, {"/time", "string"}}},
        {"get_global_waypoints_list", page, 269, listed({{"/point_name", "string"}, {"/joint", "joints"}})},
        done("delete_global_waypoint", {{"point_name", "w"}}, 267, "delete_state"),
    };
}

// Carried out without an answer.
const std::set<std::string> kUnanswered{"set_wifi_ap",
                                        "set_wifi_sta",
                                        "set_usb",
                                        "set_RS485",
                                        "set_ethernet",
                                        "movej_follow",
                                        "movep_follow",
                                        "manual_set_force_pose1",
                                        "manual_set_force_pose2",
                                        "manual_set_force_pose3"};

// Reported when they have ended, or were refused.
const std::set<std::string> kReported{"movej",           "movej_p",         "movel",
                                      "moves",           "movec",           "auto_fix_joint_over_soft_limit",
                                      "set_joint_step",  "set_pos_step",    "set_ort_step",
                                      "set_lift_height", "set_lift",        "set_lift ",
                                      "expand_set_pos",  "expand_set_speed"};

// What an arm with this sensor at its end, "B", "ZF" or "6F", answers.
std::vector<Row> all_rows(size_t joints, const std::string& sensor) {
    std::vector<Row> all;
    if (sensor == "6F") all = six_force_rows(joints);
    if (sensor == "ZF") all = one_force_rows(joints);
    for (const std::vector<Row>& rows :
         {drag_rows(joints), joint_rows(joints), state_rows(joints), limit_rows(joints), frame_rows(),
          trajectory_rows(joints), streaming_rows(joints), teach_rows(), push_rows(), system_rows(), network_rows(),
          modbus_rows(), fence_rows(), io_rows(), gripper_rows(), axis_rows(), file_rows(), program_rows(joints)})
        all.insert(all.end(), rows.begin(), rows.end());
    return all;
}

// What is said unasked: the reports of moves, files and programs that end, and points.
bool is_report(const std::string& message) {
    const std::set<int> reports{64, 164, 240, 231};
    return reports.count(Get_Json_KeyCode(message.c_str())) != 0 && message.find("waypoint") == std::string::npos;
}

// The reply to a row's request, and the file that it asks for. Reports come in between.
std::string reply_of(Talk& talk, const Row& row) {
    talk.send(row.command, row.keys.is_null() ? Json::object() : row.keys);
    std::string reply;
    do {
        reply = talk.client.read_line();
    } while (is_report(reply));
    if (row.command == "update_software" && Json::parse(reply).at("update_state")) talk.client.send_bytes("{}");
    return reply;
}

class EveryReply : public testing::TestWithParam<const char*> {
 protected:
    std::string sensor() const { return std::string(GetParam()).substr(std::string(GetParam()).find('-') + 1); }
};
INSTANTIATE_TEST_SUITE_P(Simulator, EveryReply, testing::Values("ORB65-B", "ZK75-6F", "63-ZF"));

TEST_P(EveryReply, IsTakenForWhatItIs) {
    Talk talk({"--quiet", "--model", GetParam()});
    const size_t joints = talk.joints().size();
    for (const Row& row : all_rows(joints, sensor())) {
        const std::string text = reply_of(talk, row);
        EXPECT_EQ(Get_Json_KeyCode(text.c_str()), row.code) << text;
        EXPECT_EQ(text.find('\n'), std::string::npos) << text;
        const Json reply = Json::parse(text);
        for (const auto& [pointer, kind] : row.reply) {
            const Json::json_pointer where(pointer);
            ASSERT_TRUE(reply.contains(where)) << pointer << " in " << text;
            EXPECT_TRUE(fits(reply.at(where), kind, joints)) << pointer << " in " << text;
        }
    }
}

TEST_P(EveryReply, ThatRefusesIsTakenForWhatItIs) {
    Talk talk({"--quiet", "--model", GetParam()});
    for (const Row& row : all_rows(talk.joints().size(), sensor())) {
        if (row.reply.size() != 1 || row.reply.begin()->second != "true" || row.command == "zk_sim_fault") continue;
        ASSERT_EQ(talk.ask("zk_sim_fault", {{"refuse_on", {row.command}}}).at("done"), true);
        const std::string text = reply_of(talk, row);
        EXPECT_EQ(Get_Json_KeyCode(text.c_str()), row.code) << text;
        EXPECT_EQ(Json::parse(text).at(Json::json_pointer(row.reply.begin()->first)), false) << text;
        if (kReported.count(row.command) != 0) {
            EXPECT_EQ(Get_Json_KeyCode(talk.client.read_line().c_str()), 64);
        }
    }
}

TEST_P(EveryReply, ThatReportsAnArrivalIsTakenForOne) {
    Talk talk({"--quiet", "--model", GetParam()});
    ASSERT_TRUE(talk.movej(talk.joints(), 10));
    const std::string text = talk.client.read_line();
    EXPECT_EQ(Get_Json_KeyCode(text.c_str()), 64);
    const Json expected{
        {"state", "current_trajectory_state"}, {"trajectory_state", true}, {"device", 0}, {"trajectory_connect", 0}};
    EXPECT_EQ(Json::parse(text), expected);
}

TEST(Replies, EveryCommandIsAmongTheRows) {
    std::set<std::string> rows = kUnanswered;
    for (const char* sensor : {"B", "ZF", "6F"}) {
        for (const Row& row : all_rows(6, sensor)) rows.insert(row.command);
    }
    std::set<std::string> commands;
    std::istringstream list(run_simulator("--commands").output);
    for (std::string command; std::getline(list, command);) commands.insert(command);
    EXPECT_EQ(commands, rows);
}

TEST(Replies, OrdersAreCarriedOutWithoutAnAnswer) {
    Talk talk({"--quiet"});
    talk.send("set_wifi_sta", {{"router_name", "hall"}, {"password", "secret"}});
    talk.send("set_RS485", {{"baudrate", 9600}});
    talk.send("set_usb", {{"baudrate", 9600}});
    talk.send("set_ethernet");
    const Json wifi = talk.ask("get_wifi_net");
    EXPECT_EQ(wifi.at("ssid"), "hall");
    EXPECT_EQ(wifi.at("mode"), "sta");
    EXPECT_EQ(talk.ask("get_controller_RS485_mode").at("baudrate"), 9600);
    talk.send("set_wifi_ap", {{"wifi_name", "own"}, {"password", "more than fifteen"}});  // clients keep 15
    EXPECT_EQ(talk.ask("get_wifi_net").at("mode"), "sta");
}

}  // namespace
}  // namespace zk::test
