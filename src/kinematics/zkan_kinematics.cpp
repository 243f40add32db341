// Forward kinematics of the arm that the model describes: its family's chain between the model's frames.
#include "kinematics/statics.h"
#include "zk/kinematics.h"
#include "zk/numeric.h"

namespace zk {
namespace {

struct Family {
    Matrix (*flange)(const float* joint);
    Matrix (*rotation)(const float* joint);
};

// The family of the model, whose DH parameters and number its functions then work with.
Family refreshed_family() {
    libalgo_get_dh_value(&zk_robot_dh);
    zk_robot_type = static_cast<uint8_t>(libalgo_get_robot_type());
    switch (zk_robot_type) {
        case 1:
            return {forward_kinematics_e_zk75, forward_kinematics_rotate_zk75};
        case 3:
            return {forward_kinematics_e_zkl63_2, forward_kinematics_rotate_zkl63_2};
        case 4:
            return {forward_kinematics_e_zkl63_3, forward_kinematics_rotate_zkl63_3};
        case 5:
        case 6:
        case 8:
            return {forward_kinematics_e_orb6, forward_kinematics_rotate_orb6};
        case 7:
            return {forward_kinematics_e_tau7, forward_kinematics_rotate_tau7};
        default:
            return {forward_kinematics_e_zk65, forward_kinematics_rotate_zk65};
    }
}

template <void (*get)(Matrix*)>
Matrix model() {
    Matrix m;
    get(&m);
    return m;
}
constexpr auto flange_T_tool = model<libalgo_get_tool_cs_matrix>;
constexpr auto world_T_base = model<libalgo_get_robot_install_angle_matrix>;
constexpr auto work_T_world = model<libalgo_get_work_cs_to_base_matrix>;

const Matrix& base_T_flange(const float* joint) { return zk_T_BE = refreshed_family().flange(joint); }
Matrix base_R_flange(const float* joint) { return refreshed_family().rotation(joint); }

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

Matrix world_T_tool(const float* joint) {
    return matrix_m(matrix_m(world_T_base(), base_T_flange(joint)), flange_T_tool());
}

// Only the translation of world_T_tool.
Position tool_in_world(const float* joint) {
    return world_T_base() * (base_T_flange(joint) * translation(flange_T_tool()));
}

}  // namespace
}  // namespace zk

using namespace zk;

ZK_API Matrix forward_kinematics_e(const float* joint) { return base_T_flange(joint); }

ZK_API Matrix forward_kinematics_world_to_flange(const float* joint) {
    return matrix_m(world_T_base(), base_T_flange(joint));
}

ZK_API Matrix forward_kinematics_rotate(const float* joint) {
    const Matrix work_T_base = matrix_m(work_T_world(), world_T_base());
    return zk_T_BE_rotate_tool = rotation_of(matrix_m(matrix_m(work_T_base, base_R_flange(joint)), flange_T_tool()));
}

ZK_API Matrix forward_kinematics_rotate_flange(const float* joint) {
    const Matrix work_T_base = matrix_m(work_T_world(), world_T_base());
    return zk_T_BE_rotate_flange = rotation_of(matrix_m(work_T_base, base_R_flange(joint)));
}

ZK_API Position forward_kinematics_pos(const float* joint) {
    return zk_position = work_T_world() * tool_in_world(joint);
}

ZK_API Position forward_kinematics_pos_calibration(const float* joint) { return zk_position = tool_in_world(joint); }

ZK_API PoseAndMatrix forward_kinematics_for_unity(const float* joint) {
    const Matrix t = world_T_tool(joint);
    return {transformation_matrix_to_pose(t), t};
}

ZK_API Pose forward_kinematics(const float* joint) {
    return transformation_matrix_to_pose(matrix_m(work_T_world(), world_T_tool(joint)));
}
