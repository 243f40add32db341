#include <algorithm>
#include <array>

#include "pose/pose_parts.h"
#include "zk/kinematics.h"
#include "zk/model.h"
#include "zk/numeric.h"
#include "zk/pose.h"

namespace zk {
namespace {

using Joints = std::array<float, 8>;

// As many joints as the arm has, the rest zero.
Joints joints_in_radians(const RobotModel& model, const float* degrees) {
    Joints q{};
    const int dof = std::clamp<int>(model.dof, 0, q.size());
    std::transform(degrees, degrees + dof, q.begin(), [](float angle) { return angle * 0.017453292f; });
    return q;
}

// work_T_base base_T_flange flange_T_tool D, D the displacement. The mounting rotation is left out.
Pose displaced_tool(const RobotModel& model, const Matrix& base_T_flange, float dx, float dy, float dz) {
    const Matrix base_T_tool = matrix_m(base_T_flange, model.tool_cs_matrix);
    const Matrix D{4, 4, {{1, 0, 0, dx}, {0, 1, 0, dy}, {0, 0, 1, dz}, {0, 0, 0, 1}}};
    return algo_base_to_workframe(model.work_cs_to_base_matrix, algo_matrix_to_pose(matrix_m(base_T_tool, D)));
}

}  // namespace
}  // namespace zk

ZK_API Matrix algo_pose_to_matrix(Pose p) { return pose_euler_to_transformation_matrix(p); }

ZK_API Pose algo_matrix_to_pose(Matrix T) { return transformation_matrix_to_pose(T); }

ZK_API Matrix algo_euler_to_matrix(Euler e) { return euler_to_matrix(e); }

ZK_API Pose algo_base_to_workframe(Matrix work_T_base, Pose p) {
    return algo_matrix_to_pose(matrix_m(work_T_base, algo_pose_to_matrix(p)));
}

ZK_API Pose algo_workframe_to_base(Matrix work_T_base, Pose p) {
    return algo_matrix_to_pose(matrix_m(matrix_inv(work_T_base), algo_pose_to_matrix(p)));
}

ZK_API Pose algo_rotate_move(const float* joint, int axis, float angle, Pose frame) {
    const Pose r = forward_kinematics(zk::joints_in_radians(robot, joint).data());
    const int axes[3] = {axis == 1, axis == 2, axis == 3};
    return zk::oriented(r, Rodrigues_rotate_simplify(axes, r.euler, zk::radians(angle), frame));
}

ZK_API Pose algo_cartesian_tool(const float* joint, float dx, float dy, float dz) {
    const Matrix base_T_flange = forward_kinematics_e(zk::joints_in_radians(robot, joint).data());
    return zk::displaced_tool(robot, base_T_flange, dx, dy, dz);
}
