// The model record: selection of an arm, feedback, and single values.
#include <algorithm>
#include <cstring>

#include "model/model_tables.h"
#include "model/robot_model.h"
#include "model/stored_field.h"
#include "zk/model.h"
#include "zk/numeric.h"

RobotModel robot;
DhParams dh_default;
DynamicsParams dyn_param_default;

using namespace zk;

// -------------------------------------------------------------------------------------------------------- Selection --

bool zk::select_arm(RobotModel& model, int number, int sensor) {
    std::memset(&model, 0, sizeof model);
    model.control_loop_period = 0.002f;
    model.gravity_acc[2] = -9.81f;
    model.tool_cs_matrix = model.work_cs_to_base_matrix = model.install_angle_matrix = unit_matrix(4);
    model.robot_type = number;
    model.sensor_type = sensor;
    return configure(model, number, sensor);
}

ZK_API int libalgo_set_robot_and_sensor_type(int model, int sensor) {
    if (!select_arm(robot, model, sensor)) return -1;
    dh_default = robot.dh;
    std::copy_n(robot.dynamics_params.link, 8, dyn_param_default.link);
    return 0;
}

ZK_API int libalgo_init(void) { return libalgo_set_robot_and_sensor_type(0, 0); }
ZK_API int libalgo_clear(void) { return libalgo_init(); }

ZK_API int libalgo_get_robot_type(void) { return robot.robot_type; }
ZK_API int libalgo_get_sensor_type(void) { return robot.sensor_type; }
ZK_API int libalgo_get_rbt_dof(void) { return robot.dof; }

// ------------------------------------------------------------------------------------------------ Control, feedback --

ZK_API void libalgo_update_feedback_data(const RobotFeedback* feedback) {
    robot.feedback = *feedback;
    for (int joint = 0; joint < robot.dof; ++joint) {
        robot.trajectory_planning_joint_cur[joint] = feedback->cur[joint];
        robot.feedback.cur[joint] += robot.dh.offset[joint];
        robot.feedback.joint[joint] += robot.dh.offset[joint];
    }
}
ZK_API void libalgo_get_robot_feedback_data(RobotFeedback* feedback) { *feedback = robot.feedback; }

ZK_API void libalgo_get_trajectory_planning_joint_cur(float* joint) {
    load(robot.trajectory_planning_joint_cur, joint);
}
ZK_API void libalgo_set_trajectory_planning_joint_cmd(const float* joint) {
    store(robot.trajectory_planning_joint_cmd, joint);
}
ZK_API void libalgo_get_trajectory_planning_joint_cmd(float* joint) {
    load(robot.trajectory_planning_joint_cmd, joint);
}

ZK_API void libalgo_set_tcp_config(const float* config) { store(robot.tcp_config, config); }
ZK_API void libalgo_get_tcp_config(float* config) { load(robot.tcp_config, config); }

ZK_API void libalgo_set_user_collision_threshold(const CollisionThreshold* threshold) {
    robot.user_collision_threshold = *threshold;
}
ZK_API void libalgo_get_user_collision_threshold(CollisionThreshold* threshold) {
    *threshold = robot.user_collision_threshold;
}

ZK_API void libalgo_set_control_loop_period(float period) { robot.control_loop_period = period; }
ZK_API float libalgo_get_control_loop_period(void) { return robot.control_loop_period; }

ZK_API int libalgo_set_safety_level(uint16_t level) {
    if (level > 8) return -1;
    robot.safety_level = level;
    return 0;
}
ZK_API int libalgo_get_safety_level(void) { return robot.safety_level; }

ZK_API int libalgo_set_system_all_dof(int dof) {
    if (dof < robot.dof) return -1;
    robot.system_all_dof = dof;
    return 0;
}
ZK_API int libalgo_get_system_all_dof(void) { return robot.system_all_dof; }

ZK_API void libalgo_set_is_avoid_Singularity(unsigned int avoid) { robot.is_avoid_Singularity = avoid; }
ZK_API int libalgo_get_is_avoid_Singularity(void) { return static_cast<int>(robot.is_avoid_Singularity); }
