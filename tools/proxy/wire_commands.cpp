#include "proxy/wire_commands.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <sstream>

namespace tool {
namespace {

// What acknowledges a command: {"command": name, key: true}.
struct Acknowledgement {
    std::string name, key;
};

// Keys of acknowledgements and the commands that have them, each with the name of its reply where that is another. All
// other keys are the command without its "set_".
constexpr const char* kKeys[][2] = {
    {"receive_state", "movej movel movec moves movej_p"},
    {"set_state",
     "auto_fix_joint_over_soft_limit set_install_pose set_DH_data set_joint_zero_offset set_arm_dynamic_parm "
     "set_teach_frame set_payload set_none_payload start_multi_drag_teach set_drag_teach_sensitivity "
     "set_force_position set_force_sensor manual_set_force_pose1>set_force_sensor "
     "manual_set_force_pose2>set_force_sensor manual_set_force_pose3>set_force_sensor "
     "manual_set_force_pose4>set_force_sensor clear_Fz auto_set_Fz>set_force_sensor manual_set_Fz>set_force_sensor "
     "Start_Force_Position_Move Stop_Force_Position_Move set_high_speed_eth set_modbus_mode close_modbus_mode "
     "set_modbustcp_mode close_modbustcp_mode set_electronic_fence_enable set_virtual_wall_enable "
     "set_self_collision_enable set_tool_envelope set_DO_state set_IO_mode set_tool_DO_state set_tool_IO_mode "
     "set_hand_posture set_hand_seq set_hand_angle hand_follow_angle hand_follow_pos set_hand_speed set_hand_force "
     "set_PWM set_lift_speed set_lift set_vehicle set_car_move set_default_run_program set_lift_height "
     "expand_set_speed expand_set_pos"},
    {"state",
     "set_high_ethernet set_realtime_push set_AO_state set_voltage set_tool_voltage set_gripper_route "
     "set_gripper_release set_gripper_pick set_gripper_pick_on "
     "set_gripper_position online_next"},
    {"update_state",
     "update_tool_frame update_work_frame update_software>run_update_software update_program_trajectory "
     "update_global_waypoint"},
    {"write_state", "write_single_coil write_coils write_single_register write_registers"},
    {"navigation_state",
     "set_car_speed set_car_navigation_speed set_car_navigation_mode set_car_charge set_car_station_num"},
    {"waypoint_state", "add_waypoint start_waypoint clear_waypoint stop_waypoint"},
    {"clear_state", "clear_force_data clear_system_err clear_system_runtime clear_joint_odom"},
    {"stop_state", "stop_drag_trajectory stop_force_position stop_set_force_sensor"},
    {"delete_state", "delete_program_trajectory delete_global_waypoint"},
    {"set_config", "set_electronic_fence_config set_virtual_wall_config"},
    {"drag_teach", "start_drag_teach stop_drag_teach"},
    {"calibrate_state", "start_calibrate stop_calibrate"},
    {"auto_tool_frame", "generate_auto_tool_frame"},
    {"add_state", "add_global_waypoint"},
    {"add_config", "add_electronic_fence_config"},
    {"update_config", "update_electronic_fence_config"},
    {"delete_config", "delete_electronic_fence_config"},
    {"collision_state", "set_collision_stage>set_collision_state"},
    {"config_state", "expand_config"},
    {"joint_zero_pos", "set_joint_zero_pos"},
    {"limit_mode", "auto_set_joint_limit"},
    {"start_state", "set_program_id_start"},
    {"run_state", "run_drag_trajectory"},
    {"pause_state", "pause_drag_trajectory"},
    {"continue_state", "continue_drag_trajectory"},
    {"joint_max_speed", "set_joint_drive_max_speed"},
    {"joint_max_acc", "set_joint_drive_max_acc"},
    {"joint_min_pos", "set_joint_drive_min_pos"},
    {"joint_max_pos", "set_joint_drive_max_pos"},
    {"arm_line_speed", "set_arm_max_line_speed"},
    {"arm_line_acc", "set_arm_max_line_acc"},
    {"arm_angular_speed", "set_arm_max_angular_speed"},
    {"arm_angular_acc", "set_arm_max_angular_acc"},
    {"servo_state", "set_system_state_servo"},
    {"plan_state", "plan_speed"},
    {"popup_result", "popup"},
    {"project_state", "run_project"},
    {"mode", "set_arm_run_mode"},
    {"wait_time", "timer"},
    {"expand_version", "expand_set_version"},
    {"status", "set_NetIP"},
    {"net_default_state", "set_net_default"},
    {"save_state", "save_trajectory"},
    {"lift_version", "set_lift_version"},
    {"model", "save_device_info_all"},
    {"trajectory_state", "drag_trajectory_origin"},
};

// Queries whose replies are not named as they are, without their first word.
const std::map<std::string, std::string> kNamesOfAnswers{{"get_tool_frame", "given_tool_frame"},
                                                         {"get_work_frame", "given_work_frame"},
                                                         {"get_voltage", "voltage_state"},
                                                         {"expand_get_state", "expand_state"}};

// Motions that a controller reports, and their devices.
const std::map<std::string, int> kDevices{{"movej", 0},
                                          {"movel", 0},
                                          {"movec", 0},
                                          {"moves", 0},
                                          {"movej_p", 0},
                                          {"set_joint_step", 0},
                                          {"set_pos_step", 0},
                                          {"set_ort_step", 0},
                                          {"set_lift", 3},
                                          {"set_lift_height", 3},
                                          {"expand_set_pos", 4},
                                          {"expand_set_speed", 4},
                                          {"drag_trajectory_origin", 0}};

// Set-points, answered by the state of the arm, and orders that are not answered.
const std::map<std::string, std::string> kSetPoints{{"movej_canfd", "joint_state"},
                                                    {"movej_follow", "joint_state"},
                                                    {"movep_canfd", "pose_state"},
                                                    {"movep_follow", "pose_state"},
                                                    {"Force_Position_Move", "Force_Position_State"}};
constexpr std::array kWithoutAnswer{"set_wifi_ap", "set_wifi_sta", "set_usb", "set_RS485", "set_ethernet"};

// Those of which nothing above says more.
constexpr const char* kOthers =
    "expand_get_config expand_get_version get_AI_state get_AO_state get_DH_data get_DI_state get_DO_state get_Fz "
    "get_IO_input get_IO_output get_IO_state get_arm_all_state get_arm_current_trajectory get_arm_hardware_version "
    "get_arm_max_angular_acc get_arm_max_angular_speed get_arm_max_line_acc get_arm_max_line_speed get_arm_plan_num "
    "get_arm_power_state get_arm_run_mode get_arm_software_info get_arm_software_version get_calibrate_state "
    "get_car_state get_collision_stage get_controller_RS485_mode get_controller_state get_current_arm_state "
    "get_current_joint_current get_current_joint_temperature get_current_joint_voltage get_current_tool_frame "
    "get_current_work_frame get_default_run_program get_drag_teach_sensitivity get_electronic_fence_config "
    "get_electronic_fence_enable get_electronic_fence_list_infos get_electronic_fence_list_names get_force_data "
    "get_global_waypoints_list get_gripper_state get_high_ethernet get_init_pose get_install_pose get_joint_degree "
    "get_joint_drive_max_acc get_joint_drive_max_pos get_joint_drive_max_speed get_joint_drive_min_pos "
    "get_joint_en_state get_joint_err_flag get_joint_max_acc get_joint_max_pos get_joint_max_speed get_joint_min_pos "
    "get_joint_odom get_joint_software_version get_lift_state get_log_file get_program_run_state "
    "get_program_trajectory_list get_realtime_push get_self_collision_enable get_system_runtime get_teach_frame "
    "get_tool_IO_state get_tool_RS485_mode get_tool_envelope get_tool_hardware_version get_tool_software_version "
    "get_tool_voltage get_total_tool_frame get_total_work_frame get_virtual_wall_config get_virtual_wall_enable "
    "get_wifi_net get_wired_net given_electronic_fence_config given_global_waypoint read_coils read_holding_registers "
    "read_input_registers read_input_status read_multiple_coils read_multiple_holding_registers "
    "read_multiple_input_registers set_arm_continue set_arm_delete_trajectory set_arm_init set_arm_pause "
    "set_arm_power set_arm_servo set_arm_slow_stop set_arm_stop set_auto_tool_frame set_auto_work_frame "
    "set_change_tool_frame set_change_work_frame set_delete_current_trajectory set_delete_tool_frame "
    "set_delete_work_frame set_init_pose set_joint_clear_err set_joint_en_state set_joint_max_acc set_joint_max_pos "
    "set_joint_max_speed set_joint_min_pos set_joint_teach set_manual_tool_frame set_manual_work_frame set_ort_teach "
    "set_pos_teach set_sale_version set_stop_teach zk_sim_disconnect zk_sim_fault zk_sim_files zk_sim_hand "
    "zk_sim_input zk_sim_modbus zk_sim_object zk_sim_restart zk_sim_speed zk_sim_stream zk_sim_time zk_sim_wall";

const std::map<std::string, Acknowledgement>& known_acknowledgements() {
    static const auto kKnown = [] {
        std::map<std::string, Acknowledgement> all;
        for (const auto& [key, commands] : kKeys) {
            std::istringstream words(commands);
            for (std::string command; words >> command;) {
                const auto arrow = command.find('>');
                const std::string name = command.substr(0, arrow);
                all[name] = {arrow == std::string::npos ? name : command.substr(arrow + 1), key};
            }
        }
        return all;
    }();
    return kKnown;
}

Acknowledgement acknowledgement_of(const std::string& command) {
    const auto found = known_acknowledgements().find(command);
    if (found != known_acknowledgements().end()) return found->second;
    return {command, command.starts_with("set_") ? command.substr(4) : command};
}

std::string first_text(const Json& message, const char* key) {
    const auto found = message.find(key);
    return found != message.end() && found->is_string() ? found->get<std::string>() : "";
}

}  // namespace

Request Request::of(std::string text) {
    Request request{std::move(text), {}, {}};
    request.body = Json::parse(request.text, nullptr, false);
    if (request.body.is_object()) request.command = first_text(request.body, "command");
    return request;
}

bool Request::is_query() const {
    for (const char* begin : {"get_", "read_", "expand_get_", "given_"}) {
        if (command.starts_with(begin)) return true;
    }
    return command == "zk_sim_time" || command == "zk_sim_files" || command == "zk_sim_stream";
}

bool Request::is_stop() const {
    if (command == "set_arm_power") return body.value("arm_power", Json(1)) == 0;
    return command == "set_arm_stop" || command == "set_arm_slow_stop" || command == "set_arm_pause";
}

bool is_command(const std::string& name) {
    static const auto kKnown = [] {
        std::set<std::string> all(kWithoutAnswer.begin(), kWithoutAnswer.end());
        const auto add = [&all](const auto& table) {
            for (const auto& row : table) all.insert(row.first);
        };
        add(known_acknowledgements()), add(kNamesOfAnswers), add(kDevices), add(kSetPoints);
        std::istringstream others(kOthers);
        for (std::string command; others >> command;) all.insert(command);
        all.insert("set_lift ");  // as it is sent by a client that does not wait
        return all;
    }();
    return kKnown.count(name) > 0;
}

std::string name_of_message(const std::string& text) {
    const Json message = Json::parse(text, nullptr, false);
    if (!message.is_object()) return {};
    const std::string command = first_text(message, "command");
    return command.empty() ? first_text(message, "state") : command;
}

bool answers(const std::string& name, const std::string& command) {
    if (name.empty()) return false;
    if (name == command || name == acknowledgement_of(command).name) return true;
    if (const auto found = kSetPoints.find(command); found != kSetPoints.end()) return name == found->second;
    if (const auto found = kNamesOfAnswers.find(command); found != kNamesOfAnswers.end()) return name == found->second;
    if (command.starts_with("set_gripper_")) return name == "set_gripper";
    for (const char* begin : {"get_", "read_"}) {
        if (command == begin + name) return true;
    }
    return command == "set_joint_zero_pos" && name == "joint_zero_pos";
}

bool is_report(const std::string& name) { return name == "current_trajectory_state" || name == "program_run_finish"; }

std::vector<std::string> refusal_of(const std::string& command) {
    std::vector<std::string> messages;
    constexpr int kMayNotMove = 261;
    if (const auto point = kSetPoints.find(command); point != kSetPoints.end()) {
        messages.push_back(Json{{"state", point->second}, {"joint", Json::array()}, {"arm_err", kMayNotMove}}.dump());
        return messages;
    }
    if (std::find(kWithoutAnswer.begin(), kWithoutAnswer.end(), command) == kWithoutAnswer.end()) {
        const Acknowledgement negative = acknowledgement_of(command);
        messages.push_back(Json{{"command", negative.name}, {negative.key, false}}.dump());
    }
    if (const auto device = kDevices.find(command); device != kDevices.end()) {
        messages.push_back(Json{
            {"state", "current_trajectory_state"},
            {"trajectory_state", false},
            {"device", device->second},
            {"trajectory_connect",
             0}}.dump());
    }
    return messages;
}

}  // namespace tool
