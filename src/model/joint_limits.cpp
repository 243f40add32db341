// Limits and senses of the joints.
#include <algorithm>

#include "model/robot_model.h"
#include "model/stored_field.h"
#include "zk/model.h"

namespace zk {
namespace {

void get_limits(const RobotModel& model, Limit limit, float* values) {
    for (int joint = 0; joint < 8; ++joint) values[joint] = model.joint_config[joint].*limit;
}

void get_modeling_limits(const RobotModel& model, Limit limit, float* values) {
    for (int joint = 0; joint < 8; ++joint) {
        values[joint] = model.joint_config[joint].*limit + model.dh.offset[joint];
    }
}

}  // namespace

void set_limits(RobotModel& model, Limit limit, const float* values) {
    for (int joint = 0; joint < 8; ++joint) model.joint_config[joint].*limit = values[joint];
}

}  // namespace zk

using namespace zk;

ZK_API void libalgo_set_jointlim_max(const float* limits) { set_limits(robot, &JointConfig::pos_max, limits); }
ZK_API void libalgo_get_jointlim_max(float* limits) { get_limits(robot, &JointConfig::pos_max, limits); }
ZK_API void libalgo_set_jointlim_min(const float* limits) { set_limits(robot, &JointConfig::pos_min, limits); }
ZK_API void libalgo_get_jointlim_min(float* limits) { get_limits(robot, &JointConfig::pos_min, limits); }
ZK_API void libalgo_set_joint_vel_maxlim(const float* limits) { set_limits(robot, &JointConfig::vel_max, limits); }
ZK_API void libalgo_get_joint_vel_maxlim(float* limits) { get_limits(robot, &JointConfig::vel_max, limits); }
ZK_API void libalgo_set_joint_acc_maxlim(const float* limits) { set_limits(robot, &JointConfig::acc_max, limits); }
ZK_API void libalgo_get_joint_acc_maxlim(float* limits) { get_limits(robot, &JointConfig::acc_max, limits); }

ZK_API void libalgo_get_modeling_jointlim_max(float* limits) {
    get_modeling_limits(robot, &JointConfig::pos_max, limits);
}
ZK_API void libalgo_get_modeling_jointlim_min(float* limits) {
    get_modeling_limits(robot, &JointConfig::pos_min, limits);
}

ZK_API void libalgo_set_joint_config(int16_t joint, const JointConfig* config) { robot.joint_config[joint] = *config; }
ZK_API void libalgo_get_joint_config(int16_t joint, JointConfig* config) { *config = robot.joint_config[joint]; }

ZK_API void libalgo_set_joint_direction(const float* direction) {
    for (int joint = 0; joint < robot.dof; ++joint) {
        if (direction[joint] > 0) robot.joint_direction[joint] = 1;
        if (direction[joint] < 0) robot.joint_direction[joint] = -1;
    }
}
ZK_API void libalgo_get_joint_direction(float* direction) { std::copy_n(robot.joint_direction, 7, direction); }
