#include "commands/commands.h"

namespace sim {

CommandTable all_commands() {
    CommandTable table;
    add_joint_commands(table);
    add_state_commands(table);
    add_limit_commands(table);
    add_frame_commands(table);
    add_motion_commands(table);
    add_trajectory_commands(table);
    add_streaming_commands(table);
    add_teach_commands(table);
    add_drag_commands(table);
    add_force_commands(table);
    add_force_position_commands(table);
    add_push_commands(table);
    add_fence_commands(table);
    add_modbus_commands(table);
    add_system_commands(table);
    add_io_commands(table);
    add_gripper_commands(table);
    add_hand_commands(table);
    add_axis_commands(table);
    add_file_commands(table);
    add_program_commands(table);
    add_waypoint_commands(table);
    add_fault_commands(table);
    return table;
}

}  // namespace sim
