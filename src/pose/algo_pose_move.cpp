#include <cmath>

#include "numeric/fixed_matrix.h"
#include "numeric/sine_cosine.h"
#include "pose/pose_parts.h"
#include "zk/numeric.h"
#include "zk/pose.h"

namespace zk {
namespace {

struct Axis {
    float x = 0, y = 0, z = 0;
};

// The number of the axis to turn about, -1 for none. The last element of 1 or -1 counts, whatever its sign.
int chosen(const int* axis) {
    int number = -1;
    for (int i = 0; i < 3; ++i) {
        if (axis[i] == 1 || axis[i] == -1) number = i;
    }
    return number;
}

Axis column(const Matrix& a, int j) { return {a.m[0][j], a.m[1][j], a.m[2][j]}; }

// The orientation C K, K the rotation by theta about k, an axis in the frame of C:
//     K = cos(theta) I + (1 - cos(theta)) k k' + sin(theta) [k]x
Euler turned(const Euler& e, const Axis& k, float theta) {
    const auto [s, c] = sine_cosine(theta);
    const float v = 1 - c;
    const Matrix K{3,
                   3,
                   {{k.x * k.x * v + c, k.x * k.y * v - s * k.z, k.x * k.z * v + s * k.y},
                    {k.x * k.y * v + s * k.z, k.y * k.y * v + c, k.y * k.z * v - s * k.x},
                    {k.x * k.z * v - s * k.y, k.y * k.z * v + s * k.x, k.z * k.z * v + c}}};
    return matrix_to_euler(product<float>(euler_to_matrix(e), K));
}

// The turn is about the axes of the model's work or tool frame.
Pose rotated(const RobotModel& model, const float* delta, int frame, Pose p) {
    if (frame == kWorkFrame || frame == kToolFrame) {
        const bool in_work = frame == kWorkFrame;
        const Pose f = pose_of(in_work ? model.work_cs : model.tool_cs);
        const auto rotate = in_work ? Rodrigues_rotate_simplify : Rodrigues_rotate_simplify_tool;
        for (int i = 0; i < 3; ++i) {
            const int axis[3] = {i == 0, i == 1, i == 2};
            const float theta = radians(delta[3 + i]);
            if (theta != 0) p.euler = rotate(axis, p.euler, theta, f);
        }
    }
    return oriented(p, p.euler);
}

}  // namespace
}  // namespace zk

// The axes of f, seen from e, are the columns of inverse(C) F.
ZK_API Euler Rodrigues_rotate_simplify(const int* axis, Euler e, float theta, Pose f) {
    const Matrix C = pose_euler_to_transformation_matrix({{}, {}, e});
    const Matrix P = matrix_m(matrix_inv(C), pose_euler_to_transformation_matrix(f));
    const int number = zk::chosen(axis);
    return zk::turned(e, number < 0 ? zk::Axis{} : zk::column(P, number), theta);
}

ZK_API Euler Rodrigues_rotate_simplify_tool(const int* axis, Euler e, float theta, Pose) {
    const int number = zk::chosen(axis);
    return zk::turned(e, number < 0 ? zk::Axis{} : zk::column(unit_matrix(3), number), theta);
}

ZK_API Pose rotateMove(const float* delta, int frame, Pose p) { return zk::rotated(robot, delta, frame, p); }

ZK_API Pose dPosMoveWork(const float* delta, Pose p) {
    return {{p.position.x + delta[0], p.position.y + delta[1], p.position.z + delta[2]}, {}, {}};
}

// The orientation is extracted with no singular branch and no wrap, unlike that of matrix_to_euler.
ZK_API Pose dPosMoveTool(const float* delta, Pose p) {
    Matrix D = unit_matrix(4);
    for (int i = 0; i < 3; ++i) D.m[i][3] = delta[i];
    const Matrix R = matrix_m(pose_euler_to_transformation_matrix(p), D);
    const auto& m = R.m;
    const Euler e{std::atan2(m[2][1], m[2][2]), std::atan2(-m[2][0], std::sqrt(m[2][1] * m[2][1] + m[2][2] * m[2][2])),
                  std::atan2(m[1][0], m[0][0])};
    return zk::oriented({{m[0][3], m[1][3], m[2][3]}, {}, {}}, e);
}

ZK_API Pose dPosMove(const float* delta, int frame, Pose p) {
    if (frame == zk::kWorkFrame) return dPosMoveWork(delta, p);
    if (frame == zk::kToolFrame) return dPosMoveTool(delta, p);
    return {};
}

ZK_API Pose algo_pose_move(const float* delta, int frame, Pose p) {
    Pose moved = zk::rotated(robot, delta, frame, p);
    moved.position = dPosMove(delta, frame, p).position;
    return moved;
}
