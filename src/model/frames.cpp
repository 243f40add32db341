// Tool, work frame and mounting of the arm.
#include "model/robot_model.h"
#include "model/stored_field.h"
#include "zk/model.h"
#include "zk/numeric.h"

namespace {

Matrix transform_of(Position position, Euler euler) {
    return pose_euler_to_transformation_matrix({position, {}, euler});
}

Matrix transform_of(const float* params) {
    return transform_of({params[0], params[1], params[2]}, {params[3], params[4], params[5]});
}

// [R p]^-1 = [R' -R'p]
Matrix inverse_of_rigid(const Matrix& t) {
    Matrix inverse = unit_matrix(4);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) inverse.m[i][j] = t.m[j][i];
        inverse.m[i][3] = -(t.m[0][i] * t.m[0][3] + t.m[1][i] * t.m[1][3] + t.m[2][i] * t.m[2][3]);
    }
    return inverse;
}

}  // namespace

namespace zk {

void set_tool(RobotModel& model, const float* params) {
    store(model.tool_cs, params);
    model.tool_cs_matrix = transform_of(params);
}

void set_work_frame(RobotModel& model, const float* params) {
    store(model.work_cs, params);
    model.work_cs_to_base_matrix = inverse_of_rigid(transform_of(params));
}

void set_mounting(RobotModel& model, const float* angles) {
    store(model.install_angle, angles);
    model.install_angle_matrix = transform_of({0, 0, 0}, {angles[0], angles[1], angles[2]});
    // Gravity is (0, 0, -9.81) in the world, and so -9.81 times the third row of world_R_base in the base frame.
    for (int i = 0; i < 3; ++i) model.gravity_acc[i] = -9.81f * model.install_angle_matrix.m[2][i];
}

}  // namespace zk

using namespace zk;

ZK_API void libalgo_set_tool_cs_params(const float* params) { set_tool(robot, params); }
ZK_API void libalgo_get_tool_cs_params(float* params) { load(robot.tool_cs, params); }
ZK_API void libalgo_get_tool_cs_matrix(Matrix* flange_T_tool) { *flange_T_tool = robot.tool_cs_matrix; }

ZK_API void libalgo_set_work_cs_params(const float* params) { set_work_frame(robot, params); }
ZK_API void libalgo_get_work_cs_params(float* params) { load(robot.work_cs, params); }
ZK_API void libalgo_get_work_cs_to_base_matrix(Matrix* work_T_world) { *work_T_world = robot.work_cs_to_base_matrix; }

ZK_API void libalgo_set_robot_install_angle(const float* angles) { set_mounting(robot, angles); }
ZK_API void libalgo_get_robot_install_angle(float* angles) { load(robot.install_angle, angles); }
ZK_API void libalgo_get_robot_install_angle_matrix(Matrix* world_T_base) { *world_T_base = robot.install_angle_matrix; }

ZK_API void libalgo_get_robot_gravity_acc(float* gravity) { load(robot.gravity_acc, gravity); }
