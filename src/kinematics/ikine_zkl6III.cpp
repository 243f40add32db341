// Inverse kinematics of the later 63, whose joint 2 is set aside by d2. Numbers in brackets are the equations of
// docs/kinematics.md.
#include <algorithm>
#include <cmath>

#include "kinematics/six_joint.h"
#include "kinematics/solvers.h"
#include "zk/inverse_kinematics.h"

namespace zk {
namespace {

class Zkl63_3 {
 public:
    Zkl63_3(const RobotModel& model, const float* seed, const Matrix& world_T_tool)
        : model_(model),
          seed_(model, seed),
          seed7_(seed[6]),
          wrist_(shoulder_T_wrist<float>(model, world_T_tool)),
          range_(Range::widened(model)) {}

    // Two shoulders, two elbows, two wrists, the last changing fastest. NaN counts as out of reach everywhere.
    int solve(float* joint) {
        const float q = wrist_.x * wrist_.x + wrist_.y * wrist_.y - d2_ * d2_;  // (L5)
        if (!(q >= 0)) return kUnreachable;
        const float root = std::sqrt(q);
        const Shoulder shoulders[2] = {shoulder_at(root), shoulder_at(-root)};
        nearest_first(shoulders, [this](const Shoulder& shoulder, int i) { try_shoulder(shoulder, 2 * i); });
        if (!found_) {  // the seed is too far away, or NaN: the first candidate is the answer
            any_is_near_ = true;
            for (const Shoulder& shoulder : shoulders) try_shoulder(shoulder, 0);
        }
        return found_ ? write(joint) : kUnreachable;
    }

 private:
    // A joint 1, the point at its angle, and its part of the distance to the seed.
    struct Shoulder {
        float t1, y, x;
        float distance;
    };
    // A joint 2, the point at its angle before turns are added, and the part of joints 1 and 2.
    struct Elbow {
        float t2, y, x, angle;
        float distance;
    };
    struct Arm {
        float t1, t2, t3;
        SineCosine t23;
        float distance;
    };
    struct Ends {
        float t4, t6;
    };

    Shoulder shoulder_at(float v) const {
        const float y1 = -wrist_.x * d2_ - wrist_.y * v, x1 = wrist_.y * d2_ - wrist_.x * v;  // (L6)
        const float t1 = nearest(0, arc_tangent(y1, x1));
        return {t1, y1, x1, seed_.squared(0, t1)};
    }

    // Whether a candidate of at least this distance may be the answer: the nearest, or else the first of all.
    bool may_take(float distance, int order) const {
        return any_is_near_ ? !found_ : best_.farther_than(distance, order);
    }

    void try_shoulder(const Shoulder& shoulder, int order) {
        if (!may_take(shoulder.distance, order)) return;  // the other joints only add to it
        const auto [s1, c1] = direction(shoulder.y, shoulder.x);
        const Plane<float> plane = plane_of(wrist_, shoulder.t1, s1, c1, a2_);
        const float squares = plane.r * plane.r + plane.height * plane.height;
        const float k = (a3_ * a3_ + squares - (a4_ * a4_ + d4_ * d4_)) / (2 * a3_);  // (L9)
        const float q2 = squares - k * k;
        if (!(q2 >= 0)) return;
        const float root = std::sqrt(q2);
        const Elbow elbows[2] = {elbow_at(shoulder, plane, k, root), elbow_at(shoulder, plane, k, -root)};
        if (any_is_near_) {
            for (const Elbow& elbow : elbows) try_elbow(plane, elbow, order);
        } else {
            nearest_first(elbows, [&](const Elbow& elbow, int i) { try_elbow(plane, elbow, order + i); });
        }
    }

    Elbow elbow_at(const Shoulder& shoulder, const Plane<float>& plane, float k, float v) const {
        const float y2 = -plane.height * k - plane.r * v, x2 = plane.r * k - plane.height * v;
        const float angle = arc_tangent(y2, x2), t2 = nearest(1, angle);  // (L10)
        return {t2, y2, x2, angle, shoulder.distance + seed_.squared(1, t2)};
    }

    void try_elbow(const Plane<float>& plane, const Elbow& elbow, int order) {
        if (!may_take(elbow.distance, order)) return;
        const auto [s2, c2] = direction(elbow.y, elbow.x);
        const float gx = plane.r - a3_ * c2, gy = -plane.height - a3_ * s2;  // (L11)
        const float y23 = a4_ * gy + d4_ * gx, x23 = a4_ * gx - d4_ * gy;
        const float t3 = nearest(2, arc_tangent(y23, x23) - elbow.angle);  // (L12)
        const Arm arm = {plane.t1, elbow.t2, t3, direction(y23, x23), elbow.distance + seed_.squared(2, t3)};
        try_wrists(plane, arm, order);
    }

    void try_wrists(const Plane<float>& plane, const Arm& arm, int order) {
        if (!may_take(arm.distance, order)) return;
        const SineCosine t23 = arm.t23;
        float n[3][3];  // (L3)
        for (int j = 0; j < 3; ++j) {
            n[0][j] = t23.c * plane.x[j] - t23.s * plane.z[j];
            n[1][j] = plane.y[j];
            n[2][j] = t23.s * plane.x[j] + t23.c * plane.z[j];
        }
        const float c5 = std::fabs(std::fabs(n[2][2]) - 1) <= 1e-6f ? std::copysign(1.0f, n[2][2]) : n[2][2];
        if (!(std::fabs(c5) <= 1)) return;
        const float t5 = arc_tangent(std::sqrt((1 - c5) * (1 + c5)), c5);  // (L13)
        if (std::fabs(c5) < 1) {
            const auto [t4, t6] = regular_wrist(n);
            offer(arm, order, t4, t5, t6);
            offer(arm, order, opposite(t4), -t5, opposite(t6));
        } else {
            const auto [t4, t6] = singular_wrist(n, c5);
            offer(arm, order, t4, t5, t6);
            offer(arm, order, t4, -t5, t6);
        }
    }

    // Of the wrist with sin t5 above 0; in the other one both pairs change sign.  (L14)
    static Ends regular_wrist(const float (&n)[3][3]) {
        return {arc_tangent(n[1][2], n[0][2]), arc_tangent(n[2][1], -n[2][0])};
    }

    // Only t4 + t6, or t6 - t4, is defined. It is split evenly between the joints, counted from the seed's joint 4 and
    // its seventh value.
    Ends singular_wrist(const float (&n)[3][3], float c5) const {
        const float s4 = seed_.theta[3], e = seed7_;
        if (c5 > 0) {
            const float h = (arc_tangent(n[1][0], n[0][0]) - s4 - e) / 2;  // (L15)
            return {s4 + h, h + e};
        }
        const float h = (arc_tangent(n[1][0], -n[0][0]) + s4 - e) / 2;  // (L16)
        return {s4 - h, h + e};
    }

    // The angle moved by turns: into its limits, then next to the seed, within the limits or not.
    float nearest(int j, float theta) const { return beside(seed_.theta[j], range_.wrapped(j, theta)); }

    // Keeps the nearest to the seed; the first of all when none is near.
    void offer(const Arm& arm, int order, float t4, float t5, float t6) {
        const float theta[6] = {arm.t1, arm.t2, arm.t3, nearest(3, t4), nearest(4, t5), nearest(5, t6)};
        const float distance =
            arm.distance + seed_.squared(3, theta[3]) + seed_.squared(4, theta[4]) + seed_.squared(5, theta[5]);
        if (!may_take(distance, order)) return;
        std::copy_n(theta, 6, best_.theta);
        best_.distance = distance;
        best_.order = order;
        found_ = true;
    }

    int write(float* joint) const {
        const auto angle = [&](int j) {
            const float theta = j == 5 ? best_.theta[j] + seed_.turns : best_.theta[j];
            return range_.wrapped(j, theta) - model_.dh.offset[j];
        };
        return write_up_to_limit(model_, range_, 0.0f, 6, angle, joint);
    }

    const RobotModel& model_;
    const Seed<float> seed_;
    const float seed7_;
    const Wrist<float> wrist_;
    const Range range_;
    const float d2_ = model_.dh.d[1], d4_ = model_.dh.d[3];
    const float a2_ = model_.dh.a[1], a3_ = model_.dh.a[2], a4_ = model_.dh.a[3];
    Best<float> best_ = {{}, 1000};
    bool found_ = false, any_is_near_ = false;
};

}  // namespace

int solve_zkl63_3(const RobotModel& model, const float* seed, float* joint, const Matrix& world_T_tool) {
    return Zkl63_3(model, seed, world_T_tool).solve(joint);
}

}  // namespace zk

ZK_API int inverse_kinematics_zkl63_3(const float* seed, float* joint, Matrix world_T_tool) {
    return zk::solve_zkl63_3(robot, seed, joint, world_T_tool);
}
