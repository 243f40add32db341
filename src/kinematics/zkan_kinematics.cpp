// Forward kinematics of the arm that the model describes: its family's chain between the model's frames.
#include <algorithm>
#include <cstdint>

#include "kinematics/forward.h"
#include "kinematics/statics.h"
#include "numeric/fixed_matrix.h"
#include "zk/kinematics.h"
#include "zk/numeric.h"

namespace zk {
namespace {

// What the interface keeps of each computation of the whole arm, besides its result.
std::uint8_t keep_arm(const RobotModel& model, const float* joint) {
    zk_robot_dh = model.dh;
    zk_robot_type = static_cast<std::uint8_t>(model.robot_type);
    if (zk_robot_type == 1) std::copy_n(joint, 7, zk_c_angle);
    return zk_robot_type;
}

const Matrix& kept_flange(const RobotModel& model, const float* joint) {
    keep_arm(model, joint);
    return zk_T_BE = zk_T_1N = base_T_flange(model, joint);
}

const Matrix& kept_rotation(const RobotModel& model, const float* joint) {
    Matrix& keep = keep_arm(model, joint) == 4 ? zk_T_1N : zk_T_1N_rotate;
    return keep = base_R_flange(model, joint);
}

Matrix rotation_of(Matrix t) {
    t.rows = t.cols = 3;
    for (int i = 0; i < 4; ++i) t.m[i][3] = t.m[3][i] = 0;
    return t;
}

Position translation(const Matrix& t) { return {t.m[0][3], t.m[1][3], t.m[2][3]}; }

Position operator*(const Matrix& t, const Position& p) {
    const auto row = [&](int i) { return t.m[i][0] * p.x + t.m[i][1] * p.y + t.m[i][2] * p.z + t.m[i][3]; };
    return {row(0), row(1), row(2)};
}

Matrix world_T_tool(const RobotModel& model, const Matrix& base_T_flange) {
    return product<double>(product<double>(model.install_angle_matrix, base_T_flange), model.tool_cs_matrix);
}

// Only the translation of world_T_tool.
Position tool_in_world(const RobotModel& model, const Matrix& base_T_flange) {
    return model.install_angle_matrix * (base_T_flange * translation(model.tool_cs_matrix));
}

Matrix work_R_flange(const RobotModel& model, const Matrix& base_R_flange) {
    return product<double>(product<double>(model.work_cs_to_base_matrix, model.install_angle_matrix), base_R_flange);
}

}  // namespace
}  // namespace zk

using namespace zk;

ZK_API Matrix forward_kinematics_e(const float* joint) { return kept_flange(robot, joint); }

ZK_API Matrix forward_kinematics_world_to_flange(const float* joint) {
    return product<double>(robot.install_angle_matrix, kept_flange(robot, joint));
}

ZK_API Matrix forward_kinematics_rotate(const float* joint) {
    const Matrix work_R_tool = product<double>(work_R_flange(robot, kept_rotation(robot, joint)), robot.tool_cs_matrix);
    return zk_T_BE_rotate_tool = rotation_of(work_R_tool);
}

ZK_API Matrix forward_kinematics_rotate_flange(const float* joint) {
    return zk_T_BE_rotate_flange = rotation_of(work_R_flange(robot, kept_rotation(robot, joint)));
}

ZK_API Position forward_kinematics_pos(const float* joint) {
    return zk_position = robot.work_cs_to_base_matrix * tool_in_world(robot, kept_flange(robot, joint));
}

ZK_API Position forward_kinematics_pos_calibration(const float* joint) {
    return zk_position = tool_in_world(robot, kept_flange(robot, joint));
}

ZK_API PoseAndMatrix forward_kinematics_for_unity(const float* joint) {
    const Matrix t = world_T_tool(robot, kept_flange(robot, joint));
    return {transformation_matrix_to_pose(t), t};
}

ZK_API Pose forward_kinematics(const float* joint) {
    const Matrix t = world_T_tool(robot, kept_flange(robot, joint));
    return transformation_matrix_to_pose(product<double>(robot.work_cs_to_base_matrix, t));
}
