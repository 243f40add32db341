// The layer where units change: the model and the kinematics in degrees.
#include "algorithm/in_degrees.h"
#include "algorithm/units.h"
#include "model/robot_model.h"
#include "zk/algorithm.h"
#include "zk/inverse_kinematics.h"
#include "zk/kinematics.h"
#include "zk/model.h"

uint8_t defaut_traversal_mode = 1;
double invoke_inverse_time_total_min = 10000.0;
double invoke_inverse_time_total_max = 0;

namespace zk {
namespace {

template <float (*convert)(float)>
void set(RobotModel& model, Limit limit, const float* values) {
    if (values) set_limits(model, limit, converted<convert>(model, values).data());
}

template <float (*convert)(float)>
void get(const RobotModel& model, Limit limit, float* values) {
    if (!values) return;
    for (int joint = 0; joint < model.dof; ++joint) values[joint] = convert(model.joint_config[joint].*limit);
}

std::array<float, 6> params_of(const Pose& pose) {
    const auto& [p, q, e] = pose;
    return {p.x, p.y, p.z, e.rx, e.ry, e.rz};
}

void get_frame(const float (&params)[6], Pose& pose) {
    pose.position = {params[0], params[1], params[2]};
    pose.euler = {params[3], params[4], params[5]};
}

// A new fastest solution is not tested as a slowest one.
void record_time(double seconds) {
    const double milliseconds = seconds * 1000.0;
    if (milliseconds < invoke_inverse_time_total_min) {
        invoke_inverse_time_total_min = milliseconds;
    } else if (milliseconds > invoke_inverse_time_total_max) {
        invoke_inverse_time_total_max = milliseconds;
    }
}

}  // namespace

int solve_in_degrees(const RobotModel& model, const Search& search, const float* seed, const Pose& pose, float* joint,
                     std::uint8_t flag) {
    const int result = solve_model(model, search, converted<radians>(model, seed).data(), pose, joint, flag);
    if (result != 0) return result;
    for (int i = 0; i < model.dof; ++i) joint[i] = degrees_of_solution(joint[i]);
    return 0;
}

}  // namespace zk

using namespace zk;

ZK_API void invoke_libalgo_init(void) { libalgo_init(); }
ZK_API int invoke_libalgo_set_robot_type(int model, int sensor) {
    return libalgo_set_robot_and_sensor_type(model, sensor);
}

ZK_API void invoke_libalgo_set_tool_cs_params(const FrameRec* tool) {
    if (!tool) return;
    set_tool(robot, params_of(tool->pose).data());
    const float payload[11] = {tool->payload, tool->x, tool->y, tool->z};
    libalgo_set_payload_params(payload);
}
ZK_API void invoke_libalgo_get_tool_cs_params(FrameRec* tool) {
    if (!tool) return;
    get_frame(robot.tool_cs, tool->pose);
    float payload[11];
    libalgo_get_payload_params(payload);
    tool->payload = payload[0];
    tool->x = payload[1];
    tool->y = payload[2];
    tool->z = payload[3];
}
ZK_API void invoke_libalgo_set_work_cs_params(const FrameRec* work) {
    if (work) set_work_frame(robot, params_of(work->pose).data());
}
ZK_API void invoke_libalgo_get_work_cs_params(FrameRec* work) {
    if (work) get_frame(robot.work_cs, work->pose);
}

ZK_API void invoke_libalgo_set_robot_install_angle(float x, float y, float z) {
    const float angles[3] = {radians(x), radians(y), radians(z)};
    set_mounting(robot, angles);
}
ZK_API void invoke_libalgo_get_robot_install_angle(float* x, float* y, float* z) {
    if (!x || !y || !z) return;
    *x = degrees(robot.install_angle[0]);
    *y = degrees(robot.install_angle[1]);
    *z = degrees(robot.install_angle[2]);
}

// clang-format off
ZK_API void invoke_libalgo_set_jointlim_max(const float* limits)     { set<radians>(robot, &JointConfig::pos_max, limits); }
ZK_API void invoke_libalgo_get_jointlim_max(float* limits)           { get<degrees>(robot, &JointConfig::pos_max, limits); }
ZK_API void invoke_libalgo_set_jointlim_min(const float* limits)     { set<radians>(robot, &JointConfig::pos_min, limits); }
ZK_API void invoke_libalgo_get_jointlim_min(float* limits)           { get<degrees>(robot, &JointConfig::pos_min, limits); }
ZK_API void invoke_libalgo_set_joint_vel_maxlim(const float* limits) { set<radians_of_turns>(robot, &JointConfig::vel_max, limits); }
ZK_API void invoke_libalgo_get_joint_vel_maxlim(float* limits)       { get<turns>(robot, &JointConfig::vel_max, limits); }
ZK_API void invoke_libalgo_set_joint_acc_maxlim(const float* limits) { set<radians_of_turns>(robot, &JointConfig::acc_max, limits); }
ZK_API void invoke_libalgo_get_joint_acc_maxlim(float* limits)       { get<turns>(robot, &JointConfig::acc_max, limits); }
// clang-format on

ZK_API void invoke_libalgo_set_control_loop_period(float seconds) { libalgo_set_control_loop_period(seconds); }

ZK_API Pose invoke_forward_kinematics(const float* joint) {
    return forward_kinematics(converted<radians>(robot, joint).data());
}
ZK_API Matrix invoke_forward_kinematics_e(const float* joint) {
    return forward_kinematics_e(converted<radians>(robot, joint).data());
}

ZK_API int invoke_joint_overspeed_judgment(const float* from, const float* to, float scale) {
    const Joints before = converted<radians>(robot, from), after = converted<radians>(robot, to);
    return first_too_fast(robot, before.data(), after.data(), scale);
}

ZK_API int invoke_inverse_kinematics(const float* seed, const Pose* pose, float* joint, uint8_t flag) {
    return solve_in_degrees(robot, {theta_v}, seed, *pose, joint, flag == 0 ? 2 : flag);
}

ZK_API int invoke_inverse_kinematics_with_judgment_overspeed(const float* seed, const Pose* pose, float* joint,
                                                             uint8_t flag) {
    if (robot.robot_type == 1) ikine_set_solution_range_zk75(0.013f);
    timeval begin, end;
    get_time_of_day(&begin);
    const int result = solve_in_degrees(robot, {theta_v}, seed, *pose, joint, flag);
    get_time_of_day(&end);
    record_time(static_cast<double>(end.tv_usec - begin.tv_usec) / 1e6 +
                static_cast<double>(end.tv_sec - begin.tv_sec));
    return result == 0 ? invoke_joint_overspeed_judgment(seed, joint, 1.0f) : result;
}

ZK_API void get_time_of_day(struct timeval* now) { gettimeofday(now, nullptr); }
