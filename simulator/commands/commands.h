#pragma once

namespace sim {

class Arm;
class CommandTable;
class Dispatcher;
class DragTeach;
class FaultEffects;
class Files;
class ForceControl;
class ForceHold;
class FrameStore;
class Gripper;
class Hand;
class LinearAxis;
class Memory;
class ModbusMaster;
class Programs;
class Tool;
struct Devices;
struct Ports;
struct PushSettings;
struct Safety;
struct SimulatedTime;
struct Wall;

// One function for each family of commands, in <family>.cpp. It gets the parts of the controller on which they act, and
// the memory of those that set what the controller keeps over a loss of power.
void add_joint_commands(CommandTable& table, Memory& memory, Arm& arm);
void add_state_commands(CommandTable& table, Memory& memory, const Arm& arm, Tool& tool);
void add_limit_commands(CommandTable& table, Memory& memory, Arm& arm, Tool& tool);
void add_frame_commands(CommandTable& table, Memory& memory, const Arm& arm, Tool& tool);
void add_motion_commands(CommandTable& table, Arm& arm, const Tool& tool);
void add_trajectory_commands(CommandTable& table, Arm& arm, Programs& programs);
void add_streaming_commands(CommandTable& table, Arm& arm, const Tool& tool, LinearAxis& expansion);
void add_teach_commands(CommandTable& table, Arm& arm, const Tool& tool);
void add_drag_commands(CommandTable& table, Memory& memory, Arm& arm, DragTeach& drag, const ForceHold& hold);
void add_force_commands(CommandTable& table, Arm& arm, ForceControl& force);
void add_force_position_commands(CommandTable& table, Arm& arm, const Tool& tool, ForceControl& force);
void add_push_commands(CommandTable& table, PushSettings& settings, const Arm& arm);
void add_fence_commands(CommandTable& table, Memory& memory, Safety& safety, const FrameStore& tools);
void add_modbus_commands(CommandTable& table, ModbusMaster& modbus);
void add_system_commands(CommandTable& table, Memory& memory, const SimulatedTime& time, Arm& arm,
                         ModbusMaster& modbus);
void add_io_commands(CommandTable& table, Ports& ports);
void add_gripper_commands(CommandTable& table, Memory& memory, Gripper& gripper);
void add_hand_commands(CommandTable& table, Hand& hand);
void add_axis_commands(CommandTable& table, Memory& memory, Devices& devices);
void add_file_commands(CommandTable& table, Files& files, Programs& programs, const DragTeach& drag);
void add_program_commands(CommandTable& table, Memory& memory, Programs& programs, const Arm& arm);
void add_waypoint_commands(CommandTable& table, Memory& memory, const Arm& arm);
void add_world_commands(CommandTable& table, Ports& ports, ModbusMaster& modbus, Wall& wall, Gripper& gripper);
void add_time_commands(CommandTable& table, SimulatedTime& time);
void add_fault_commands(CommandTable& table, Dispatcher& dispatcher, FaultEffects& effects, Files& files, Arm& arm);

}  // namespace sim
