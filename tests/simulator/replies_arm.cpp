// What the simulator replies about joints, state, limits and frames.
#include "simulator/replies.h"

namespace zk::test {

ReplyRows joint_rows(size_t joints) {
    const auto pair = [](int value) { return Json{1, value}; };
    return {
        {"set_joint_max_speed", {{"joint_max_speed", pair(1000)}}, 2, "true: joint_max_speed"},
        {"set_joint_max_acc", {{"joint_max_acc", pair(1000)}}, 3, "true: joint_max_acc"},
        {"set_joint_min_pos", {{"joint_min_pos", pair(-90000)}}, 4, "true: joint_min_pos"},
        {"set_joint_max_pos", {{"joint_max_pos", pair(90000)}}, 5, "true: joint_max_pos"},
        {"set_joint_en_state", {{"joint_en_state", pair(1)}}, 6, "true: joint_en_state"},
        {"set_joint_zero_pos", {{"joint_zero_pos", static_cast<int>(joints)}}, 7, "true: joint_zero_pos"},
        {"set_joint_clear_err", {{"joint_clear_err", 1}}, 8, "true: joint_clear_err"},
        {"start_calibrate", {}, 9, "true: calibrate_state"},
        {"stop_calibrate", {}, 10, "true: calibrate_state"},
        {"get_calibrate_state", {}, 11, "joints: joint_state err"},
        {"get_joint_max_speed", {}, 1, "joints: joint_speed"},
        {"get_joint_max_acc", {}, 12, "joints: joint_acc"},
        {"get_joint_min_pos", {}, 13, "joints: min_pos"},
        {"get_joint_max_pos", {}, 14, "joints: max_pos"},
        {"get_joint_en_state", {}, 15, "joints: en_state"},
        {"get_joint_err_flag", {}, 16, "joints: err_flag brake_state"},
        {"get_joint_software_version", {}, 17, "joints: version"},
        {"set_joint_drive_max_speed", {{"joint_max_speed", pair(1000)}}, 218, "true: joint_max_speed"},
        {"set_joint_drive_max_acc", {{"joint_max_acc", pair(1000)}}, 219, "true: joint_max_acc"},
        {"set_joint_drive_min_pos", {{"joint_min_pos", pair(-90000)}}, 220, "true: joint_min_pos"},
        {"set_joint_drive_max_pos", {{"joint_max_pos", pair(90000)}}, 221, "true: joint_max_pos"},
        {"get_joint_drive_max_speed", {}, 222, "joints: joint_speed"},
        {"get_joint_drive_max_acc", {}, 223, "joints: joint_acc"},
        {"get_joint_drive_min_pos", {}, 202, "joints: min_pos"},
        {"get_joint_drive_max_pos", {}, 203, "joints: max_pos"},
        {"auto_set_joint_limit", {{"limit_mode", 1}}, 206, "true: limit_mode"},
        {"auto_fix_joint_over_soft_limit", {}, 205, "true: set_state"},
    };
}

ReplyRows state_rows(size_t joints) {
    const std::string all = under("all_state/", "joints: temperature current voltage en_flag err_flag number: sys_err");
    return {
        {"get_current_arm_state", {}, 54, under("arm_state/", "pose: pose joints: joint number: arm_err sys_err")},
        {"get_current_joint_temperature", {}, 55, "joints: joint_temperature"},
        {"get_current_joint_current", {}, 56, "joints: joint_current"},
        {"get_current_joint_voltage", {}, 57, "joints: joint_voltage"},
        {"get_joint_degree", {}, 58, "joints: joint"},
        {"get_arm_all_state", {}, 59, all},
        {"get_arm_plan_num", {}, 60, "number: plan_num"},
        {"set_init_pose", {{"init_pose", array(joints, 1000)}}, 61, "true: init_pose"},
        {"get_init_pose", {}, 62, "joints: init_pose"},
        {"set_install_pose", {{"pose", {0.5, -90, 0}}}, 63, "true: set_state"},
        {"get_install_pose", {}, 167, "triple: pose"},
    };
}

ReplyRows limit_rows(size_t joints) {
    return {
        {"set_arm_max_line_speed", {{"arm_line_speed", 250}}, 19, "true: arm_line_speed"},
        {"set_arm_max_line_acc", {{"arm_line_acc", 1600}}, 20, "true: arm_line_acc"},
        {"set_arm_max_angular_speed", {{"arm_angular_speed", 600}}, 21, "true: arm_angular_speed"},
        {"set_arm_max_angular_acc", {{"arm_angular_acc", 4000}}, 22, "true: arm_angular_acc"},
        {"get_arm_max_line_speed", {}, 23, "number: arm_line_speed"},
        {"get_arm_max_line_acc", {}, 24, "number: arm_line_acc"},
        {"get_arm_max_angular_speed", {}, 25, "number: arm_angular_speed"},
        {"get_arm_max_angular_acc", {}, 26, "number: arm_angular_acc"},
        {"set_arm_init", {}, 27, "true: arm_init"},
        {"set_collision_stage", {{"collision_stage", 8}}, 28, "true: collision_state"},
        {"get_collision_stage", {}, 29, "number: collision_stage"},
        {"set_DH_data", {{"data", {1, 2, 3, 4, 5}}}, 30, "true: set_state"},
        {"get_DH_data", {}, 31, "numbers: data"},
        {"set_joint_zero_offset", {{"offset", array(joints, 250)}}, 32, "true: set_state"},
        {"set_arm_dynamic_parm", {{"parm", array(2 * joints, 1)}}, 33, "true: set_state"},
        {"set_arm_servo", {{"arm_servo", 1}}, 35, "true: arm_servo"},
        {"set_system_state_servo", {{"servo_state", 1}}, 36, "true: servo_state"},
        {"plan_speed", {{"speed", 50}}, 196, "true: plan_state"},
        {"set_teach_frame", {{"frame_type", 1}}, 165, "true: set_state"},
        {"get_teach_frame", {}, 241, "number: frame_type"},
    };
}

ReplyRows frame_rows() {
    const Json pose{100000, 0, 0, 0, 0, 1571}, position{1, 2, 3};
    const char* const tool = "string: tool_name pose: pose number: payload triple: position";
    const char* const work = "string: frame_name pose: pose";
    const Json new_tool{{"tool_name", "grip"}, {"tool_pose", pose}, {"payload", 500}, {"position", position}};
    const Json new_work{{"frame_name", "desk"}, {"frame_pose", pose}};
    const Json tool_name{{"tool_name", "grip"}}, work_name{{"frame_name", "desk"}};
    return {
        {"set_auto_tool_frame", {{"point_num", 1}}, 37, "true: auto_tool_frame"},
        {"generate_auto_tool_frame",
         {{"tool_name", "auto"}, {"payload", 0}, {"position", position}},
         38,
         "boolean: auto_tool_frame"},  // false: there is one point only
        {"set_manual_tool_frame", new_tool, 39, "true: manual_tool_frame"},
        {"update_tool_frame", new_tool, 261, "true: update_state"},
        {"set_change_tool_frame", tool_name, 40, "true: change_tool_frame"},
        {"get_current_tool_frame", {}, 44, tool},
        {"get_tool_frame", tool_name, 45, tool},
        {"get_tool_frame", {{"tool_name", "none"}}, 45, "boolean: get_state"},
        {"get_total_tool_frame", {}, 46, "strings: tool_names"},
        {"set_delete_tool_frame", tool_name, 41, "true: delete_tool_frame"},
        {"set_payload", {{"payload", 500}, {"position", position}}, 42, "true: set_state"},
        {"set_none_payload", {}, 43, "true: set_state"},
        {"set_auto_work_frame", {{"frame_name", "auto"}, {"point_num", 1}}, 47, "true: auto_work_frame"},
        {"set_manual_work_frame", new_work, 48, "true: manual_work_frame"},
        {"update_work_frame", new_work, 260, "true: update_state"},
        {"set_change_work_frame", work_name, 49, "true: change_work_frame"},
        {"get_current_work_frame", {}, 51, work},
        {"get_work_frame", work_name, 52, work},
        {"get_work_frame", {{"frame_name", "none"}}, 52, "boolean: get_state"},
        {"get_total_work_frame", {}, 53, "strings: frame_names"},
        {"set_delete_work_frame", work_name, 50, "true: delete_work_frame"},
    };
}

}  // namespace zk::test
