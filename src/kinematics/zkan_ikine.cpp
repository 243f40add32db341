// The one entry of the inverse kinematics: from a pose in the work frame to a target for the solver of the model.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "kinematics/solvers.h"
#include "numeric/fixed_matrix.h"
#include "numeric/frame_inverse.h"
#include "zk/inverse_kinematics.h"
#include "zk/numeric.h"

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
Transform<float> flange_target(const RobotModel& model, const Matrix& world_T_tool) {
    const Matrix base_T_tool =
        product<double>(kept_inverse<Inverted::kMounting>(model.install_angle_matrix), world_T_tool);
    return transform_of<float>(product<double>(base_T_tool, kept_inverse<Inverted::kTool>(model.tool_cs_matrix)));
}

}  // namespace

Matrix tool_target(const RobotModel& model, const Pose& pose, int flag) {
    Pose target = pose;
    if (flag == 1) target.quaternion = euler_to_quat(target.euler);
    return product<double>(kept_inverse<Inverted::kWorkFrame>(model.work_cs_to_base_matrix),
                           pose_quat_to_transformation_matrix(target));
}

int solve_model(const RobotModel& model, const Search& search, const float* seed, const Pose& pose, float* joint,
                std::uint8_t flag) {
    const Matrix target = tool_target(model, pose, flag);
    const auto number = static_cast<std::uint8_t>(model.robot_type);
    float local[8] = {};
    std::copy_n(seed, model.dof, local);
    float& last = local[number == 1 ? 6 : 5];
    last = at_full_turn(last);
    switch (number) {
        case 0:
            return solve_zk6(model, local, joint, target);
        case 1:
            return solve_zk75(model, search, local, joint, flange_target(model, target));
        case 3:
            return solve_zkl63_2(model, local, joint, target);
        case 4:
            return solve_zkl63_3(model, local, joint, target);
        case 5:
        case 6:
        case 8:
            return solve_orb6(model, local, joint, target);
        case 7:
            return solve_tau7(model, search, seed, joint, flange_target(model, target));
        default:
            return kNoSolver;
    }
}

int first_too_fast(const RobotModel& model, const float* from, const float* to, float scale) {
    if (scale < 0) scale = 0;
    for (int j = 0; j < model.dof; ++j) {
        const float step = std::fabs(from[j] - to[j]);
        const float allowance = model.control_loop_period * model.joint_config[j].vel_max * scale;
        if (step > allowance) return j + 1;
    }
    return 0;
}

}  // namespace zk

ZK_API void calc_Tbase2tool_from_Pose(Matrix* world_T_tool, const Pose* pose, int flag) {
    *world_T_tool = zk::tool_target(robot, *pose, flag);
}

ZK_API int inverse_kinematics(const float* seed, const Pose* pose, float* joint, uint8_t flag) {
    return zk::solve_model(robot, {theta_v}, seed, *pose, joint, flag);
}

ZK_API int joint_overspeed_judgment(const float* from, const float* to, float scale) {
    return zk::first_too_fast(robot, from, to, scale);
}
