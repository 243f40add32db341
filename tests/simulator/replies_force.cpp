// What the simulator replies to orders about drag teaching and forces.
#include "simulator/replies.h"

namespace zk::test {

// At rest, and nothing recorded before the first row.
ReplyRows drag_rows(size_t joints) {
    return {
        {"drag_trajectory_origin", {}, 119, "boolean: trajectory_state"},
        {"start_drag_teach", {{"trajectory_record", 1}}, 113, "true: drag_teach"},
        {"zk_sim_hand", {{"seconds", 3600}, {"joint", array(joints, 0)}}, 0, "true: done"},
        {"stop_drag_teach", {}, 114, "true: drag_teach"},
        {"run_drag_trajectory", {}, 115, "boolean: run_state"},  // says so when it has ended
        {"pause_drag_trajectory", {}, 116, "boolean: pause_state"},
        {"continue_drag_trajectory", {}, 117, "boolean: continue_state"},
        {"stop_drag_trajectory", {}, 118, "boolean: stop_state"},
        {"start_multi_drag_teach", {{"mode", 0}, {"singular_wall", 1}}, 120, "true: set_state"},
        {"stop_drag_teach", {}, 114, "true: drag_teach"},
        {"set_drag_teach_sensitivity", {{"grade", 70}}, 272, "true: set_state"},
        {"get_drag_teach_sensitivity", {}, 273, "number: grade"},
    };
}

// Calibrations end at once, refused, on an arm without power.
ReplyRows six_force_rows(size_t joints) {
    const Json held{{"sensor", 1}, {"mode", 0}, {"direction", 2}, {"N", 0}};
    return {
        {"get_force_data", {}, 123, "numbers: force_data zero_force_data work_zero_force_data tool_zero_force_data"},
        {"clear_force_data", {}, 124, "true: clear_state"},
        {"Start_Force_Position_Move", {}, 160, "true: set_state"},
        {"Force_Position_Move", {}, 161, "joints: joint pose: all_direction_force number: force arm_err"},
        {"Stop_Force_Position_Move", {}, 162, "true: set_state"},
        {"set_force_position", held, 121, "true: set_state"},
        {"stop_force_position", {}, 122, "true: stop_state"},
        {"set_arm_power", {{"arm_power", 0}}, 86, "true: arm_power"},
        {"set_force_sensor", {}, 125, "boolean: set_state"},
        {"manual_set_force_pose4", {{"joint", array(joints, 0)}}, 125, "boolean: set_state"},
        {"stop_set_force_sensor", {}, 126, "boolean: stop_state"},
        {"set_arm_power", {{"arm_power", 1}}, 86, "true: arm_power"},
    };
}

ReplyRows one_force_rows(size_t joints) {
    return {
        {"get_Fz", {}, 133, "boolean: set_state number: Fz zero_Fz work_zero_Fz tool_zero_Fz"},
        {"clear_Fz", {}, 134, "true: set_state"},
        {"set_arm_power", {{"arm_power", 0}}, 86, "true: arm_power"},
        {"auto_set_Fz", {}, 125, "boolean: set_state"},
        {"manual_set_Fz", {{"pose1", array(joints, 0)}, {"pose2", array(joints, 1)}}, 125, "boolean: set_state"},
        {"set_arm_power", {{"arm_power", 1}}, 86, "true: arm_power"},
    };
}

}  // namespace zk::test
