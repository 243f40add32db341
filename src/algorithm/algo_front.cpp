// The public names of the local kinematics.
#include "zk/algorithm.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "algorithm/in_degrees.h"
#include "algorithm/units.h"
#include "zk/inverse_kinematics.h"
#include "zk/model.h"
#include "zk/numeric.h"
#include "zk/pose.h"
#include "zk/status.h"

float angleU = 0;
float angleV = 0;
float angleH = 0;
Pose g_tool_pose;
Pose g_work_pose;

namespace zk {
namespace {

constexpr int kNarrow = 1, kWhole = 0;  // strategies of ikine_set_7dof_solver_search_strategy

// To a hundredth of the squared norm; NaN passes.
bool is_unit(const Quat& q) {
    const double squared = q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z;
    return !(squared > 1.01 || squared < 0.99);
}

bool all_finite(std::initializer_list<float> values) {
    return std::all_of(values.begin(), values.end(), [](float value) { return std::isfinite(value); });
}

// Looks at the position and at the orientation that the flag names.
bool is_finite(const Pose& pose, uint8_t flag) {
    const auto& [p, q, e] = pose;
    return all_finite({p.x, p.y, p.z}) &&
           (flag == 1 ? all_finite({e.rx, e.ry, e.rz}) : all_finite({q.w, q.x, q.y, q.z}));
}

// The sweep of model 1 leaves its output as it was where it finds no candidate, and then tests that output against the
// limits. So it gets an output beyond every limit.
int solve_by_sweep(const RobotModel& model, const Search& search, const float* seed, const Pose& pose, float* joint,
                   uint8_t flag) {
    float swept[7];
    std::fill_n(swept, 7, INFINITY);
    const int result = solve_in_degrees(model, search, seed, pose, swept, flag);
    if (result == 0) std::copy_n(swept, 7, joint);
    return result;
}

// So far within that no rounding decides: it saves two divisions.
bool is_well_within(const JointConfig& limits, float degrees) {
    constexpr double kRounding = 1e-5, kLargest = 50;  // radians
    const double angle = degrees * kRadiansPerDegree;
    return angle > limits.pos_min + kRounding && angle < limits.pos_max - kRounding && std::fabs(angle) < kLargest;
}

bool within_limits(const RobotModel& model, const float* joint) {
    for (int i = 0; i < model.dof; ++i) {
        const JointConfig& limits = model.joint_config[i];
        if (is_well_within(limits, joint[i])) continue;
        if (joint[i] < degrees(limits.pos_min) || joint[i] > degrees(limits.pos_max)) return false;
    }
    return true;
}

}  // namespace
}  // namespace zk

using namespace zk;

ZK_API const char* Algo_Version(void) { return "1.4.8"; }

ZK_API void Algo_Init_Sys_Data(int model, int sensor) {
    invoke_libalgo_init();
    invoke_libalgo_set_robot_type(model, sensor);
}

ZK_API void Algo_Set_Angle(float x, float y, float z) {
    const auto radians = [](float degrees) { return static_cast<float>(degrees * 3.141592653589793 / 180.0); };
    angleU = radians(x);
    angleV = radians(y);
    angleH = radians(z);
    invoke_libalgo_set_robot_install_angle(x, y, z);
}
ZK_API void Algo_Get_Angle(float* x, float* y, float* z) { invoke_libalgo_get_robot_install_angle(x, y, z); }

ZK_API void Algo_Set_ToolFrame(const FrameRec* tool) {
    if (!tool) return;
    invoke_libalgo_set_tool_cs_params(tool);
    g_tool_pose = tool->pose;
}
ZK_API void Algo_Get_Curr_ToolFrame(FrameRec* tool) { invoke_libalgo_get_tool_cs_params(tool); }
ZK_API void Algo_Set_WorkFrame(const FrameRec* work) {
    if (!work) return;
    invoke_libalgo_set_work_cs_params(work);
    g_work_pose = work->pose;
}
ZK_API void Algo_Get_Curr_WorkFrame(FrameRec* work) { invoke_libalgo_get_work_cs_params(work); }

ZK_API void Algo_Set_Joint_Max_Limit(const float* limits) { invoke_libalgo_set_jointlim_max(limits); }
ZK_API void Algo_Get_Joint_Max_Limit(float* limits) { invoke_libalgo_get_jointlim_max(limits); }
ZK_API void Algo_Set_Joint_Min_Limit(const float* limits) { invoke_libalgo_set_jointlim_min(limits); }
ZK_API void Algo_Get_Joint_Min_Limit(float* limits) { invoke_libalgo_get_jointlim_min(limits); }
ZK_API void Algo_Set_Joint_Max_Speed(const float* limits) { invoke_libalgo_set_joint_vel_maxlim(limits); }
ZK_API void Algo_Get_Joint_Max_Speed(float* limits) { invoke_libalgo_get_joint_vel_maxlim(limits); }
ZK_API void Algo_Set_Joint_Max_Acc(const float* limits) { invoke_libalgo_set_joint_acc_maxlim(limits); }
ZK_API void Algo_Get_Joint_Max_Acc(float* limits) { invoke_libalgo_get_joint_acc_maxlim(limits); }

ZK_API Pose Algo_Forward_Kinematics(const float* joint) { return joint ? invoke_forward_kinematics(joint) : Pose{}; }
ZK_API Matrix Forward_Kinematics_e(const float* joint) { return Algo_Pos2Matrix(Algo_Forward_Kinematics(joint)); }

ZK_API int zk_algo_judgment_overpos(const float* joint) { return within_limits(robot, joint) ? 0 : -1; }

ZK_API int Algo_Inverse_Kinematics(const float* seed, const Pose* pose, float* joint, uint8_t flag) {
    if (!seed || !pose) return ZK_BAD_ARGUMENT;
    if (flag == 0 && !is_unit(pose->quaternion)) return ZK_BAD_ARGUMENT;
    if (!within_limits(robot, seed)) return ZK_BAD_ARGUMENT;
    if (defaut_traversal_mode != 0) ikine_set_7dof_solver_search_strategy(kNarrow);
    if (!is_finite(*pose, flag)) return ZK_NO_SOLUTION;
    const Search search = {theta_v};
    const auto solve = robot.robot_type == 1 && search.is_wide() ? solve_by_sweep : solve_in_degrees;
    return solve(robot, search, seed, *pose, joint, flag == 0 ? 2 : flag) == 0 ? ZK_OK : ZK_NO_SOLUTION;
}
ZK_API int Algo_Inverse_Kinematics_Wrap(InverseKinematicsCall* call) {
    if (!call) return ZK_BAD_ARGUMENT;
    return Algo_Inverse_Kinematics(call->seed, call->pose, call->joint, static_cast<uint8_t>(call->flag));
}

ZK_API void Algo_Set_Redundant_Parameter_Traversal_Mode(bool whole_range) {
    defaut_traversal_mode = 0;
    ikine_set_7dof_solver_search_strategy(whole_range ? kWhole : kNarrow);
}

ZK_API Matrix Algo_Pos2Matrix(Pose pose) { return algo_pose_to_matrix(pose); }
ZK_API Pose Algo_Matrix2Pos(Matrix matrix) { return algo_matrix_to_pose(matrix); }
ZK_API Matrix Algo_Euler2Matrix(Euler euler) { return algo_euler_to_matrix(euler); }
ZK_API Quat Algo_Euler2Quaternion(Euler euler) { return euler_to_quat(euler); }
ZK_API Euler Algo_Quaternion2Euler(Quat quaternion) { return quat_to_euler(quaternion); }

ZK_API int ZK_Complete_Pose(Pose* pose) {
    if (!pose) return ZK_BAD_ARGUMENT;
    pose->quaternion = euler_to_quat(pose->euler);
    return ZK_OK;
}

ZK_API Pose Algo_Base2WorkFrame(Matrix work_T_base, Pose pose) { return algo_base_to_workframe(work_T_base, pose); }
ZK_API Pose Algo_WorkFrame2Base(Matrix work_T_base, Pose pose) { return algo_workframe_to_base(work_T_base, pose); }

ZK_API Pose Algo_End2Tool(Pose pose) {
    const Matrix end = Algo_Pos2Matrix(pose), tool = Algo_Pos2Matrix(g_tool_pose), work = Algo_Pos2Matrix(g_work_pose);
    return Algo_Base2WorkFrame(work, Algo_Matrix2Pos(matrix_m(end, tool)));
}
ZK_API Pose Algo_Tool2End(Pose pose) {
    const Matrix tool = Algo_Pos2Matrix(g_tool_pose), work = Algo_Pos2Matrix(g_work_pose);
    const Matrix end_in_base = Algo_Pos2Matrix(Algo_WorkFrame2Base(work, pose));
    return Algo_Matrix2Pos(matrix_m(end_in_base, matrix_inv(tool)));
}
