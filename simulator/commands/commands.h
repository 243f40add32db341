#pragma once

#include "wire/command_table.h"

namespace sim {

// One function for each family of commands, in <family>.cpp.
void add_joint_commands(CommandTable& table);
void add_state_commands(CommandTable& table);
void add_limit_commands(CommandTable& table);
void add_frame_commands(CommandTable& table);
void add_motion_commands(CommandTable& table);
void add_trajectory_commands(CommandTable& table);
void add_streaming_commands(CommandTable& table);
void add_teach_commands(CommandTable& table);
void add_drag_commands(CommandTable& table);
void add_force_commands(CommandTable& table);
void add_force_position_commands(CommandTable& table);
void add_push_commands(CommandTable& table);
void add_fence_commands(CommandTable& table);
void add_modbus_commands(CommandTable& table);
void add_system_commands(CommandTable& table);
void add_io_commands(CommandTable& table);
void add_gripper_commands(CommandTable& table);
void add_hand_commands(CommandTable& table);
void add_axis_commands(CommandTable& table);
void add_file_commands(CommandTable& table);
void add_program_commands(CommandTable& table);
void add_waypoint_commands(CommandTable& table);
void add_fault_commands(CommandTable& table);

CommandTable all_commands();

}  // namespace sim
