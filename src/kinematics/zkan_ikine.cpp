// The one entry of the inverse kinematics: from a pose in the work frame to a target for the solver of the model.
#include <algorithm>
#include <cmath>

#include "zk/dense_matrix.h"
#include "zk/inverse_kinematics.h"
#include "zk/numeric.h"
#include "zk/seven_axis.h"

namespace zk {
namespace {

constexpr int kNoSolver = -4;

// A last joint that is up to two degrees past a full turn counts as the full turn.
float at_full_turn(float angle) {
    constexpr float kFullTurn = 6.2831850f, kDrifted = 6.3180919f;
    const float size = std::fabs(angle);
    return size > kFullTurn && size < kDrifted ? std::copysign(kFullTurn, angle) : angle;
}

// base_T_flange of a tool at world_T_tool: without mounting and tool.
Mat flange_target(const Matrix& world_T_tool) {
    Matrix world_T_base, flange_T_tool;
    libalgo_get_robot_install_angle_matrix(&world_T_base);
    libalgo_get_tool_cs_matrix(&flange_T_tool);
    const Matrix base_T_tool = matrix_m(matrix_inv_coordinate_system(world_T_base), world_T_tool);
    return matrix_to_mat(matrix_m(base_T_tool, matrix_inv_coordinate_system(flange_T_tool)));
}

}  // namespace
}  // namespace zk

using namespace zk;

ZK_API void calc_Tbase2tool_from_Pose(Matrix* world_T_tool, const Pose* pose, int flag) {
    Matrix work_T_world;
    libalgo_get_work_cs_to_base_matrix(&work_T_world);
    Pose target = *pose;
    if (flag == 1) target.quaternion = euler_to_quat(target.euler);
    *world_T_tool = matrix_m(matrix_inv_coordinate_system(work_T_world), pose_quat_to_transformation_matrix(target));
}

ZK_API int inverse_kinematics(const float* seed, const Pose* pose, float* joint, uint8_t flag) {
    Matrix world_T_tool;
    calc_Tbase2tool_from_Pose(&world_T_tool, pose, flag);
    const auto model = static_cast<uint8_t>(libalgo_get_robot_type());
    float local[8] = {};
    std::copy_n(seed, libalgo_get_rbt_dof(), local);
    float& last = local[model == 1 ? 6 : 5];
    last = at_full_turn(last);
    switch (model) {
        case 0:
            return inverse_kinematics_zk6(local, joint, world_T_tool);
        case 1:
            return inverse_kinematics_zk_75(local, joint, flange_target(world_T_tool));
        case 3:
            return inverse_kinematics_zkl63_2(local, joint, world_T_tool);
        case 4:
            return inverse_kinematics_zkl63_3(local, joint, world_T_tool);
        case 5:
        case 6:
        case 8:
            return inverse_kinematics_orb6(local, joint, world_T_tool);
        case 7:
            return inverse_kinematics_tau7(seed, joint, flange_target(world_T_tool));
        default:
            return kNoSolver;
    }
}

ZK_API int joint_overspeed_judgment(const float* from, const float* to, float scale) {
    if (scale < 0) scale = 0;
    float speed[8];
    libalgo_get_joint_vel_maxlim(speed);
    for (int j = 0; j < libalgo_get_rbt_dof(); ++j) {
        const float step = std::fabs(from[j] - to[j]);
        const float allowance = libalgo_get_control_loop_period() * speed[j] * scale;
        if (step > allowance) return j + 1;
    }
    return 0;
}
