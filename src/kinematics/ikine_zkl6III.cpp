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
        const TwoPoints at = both_signs(wrist_.x, wrist_.y, d2_, root);  // (L6)
        const Angles t1 = nearest(0, at.angles()), distances = seed_.squared(0, t1);
        const Shoulder shoulders[2] = {{t1[0], at.direction_of(0), distances[0]},
                                       {t1[1], at.direction_of(1), distances[1]}};
        nearest_first(shoulders, [this](const Shoulder& shoulder, int i) { try_shoulder(shoulder, 2 * i); });
        if (!found_) {  // the seed is too far away, or NaN: the first candidate is the answer
            any_is_near_ = true;
            for (const Shoulder& shoulder : shoulders) try_shoulder(shoulder, 0);
        }
        return found_ ? write(joint) : kUnreachable;
    }

 private:
    // A joint 1, its sine and cosine, and its part of the distance to the seed.
    struct Shoulder {
        float t1;
        SineCosine sc1;
        float distance;
    };
    // A joint 2, its angle before turns are added, and the part of joints 1 and 2.
    struct Elbow {
        float t2;
        SineCosine sc2;
        float angle;
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

    // Two points, and their angles.
    struct TwoPoints {
        float y[2], x[2];
        Angles angles() const {
            const auto [first, second] = arc_tangents(y[0], x[0], y[1], x[1]);
            return Angles{first, second};
        }
        SineCosine direction_of(int i) const { return direction(y[i], x[i]); }
    };

    // The points (y, x) = (-p k - q v, q k - p v) for v and for -v.
    static TwoPoints both_signs(float p, float q, float k, float v) {
        return {{-p * k - q * v, -p * k + q * v}, {q * k - p * v, q * k + p * v}};
    }

    // Whether a candidate of at least this distance may be the answer: the nearest, or else the first of all.
    bool may_take(float distance, int order) const {
        return any_is_near_ ? !found_ : best_.farther_than(distance, order);
    }

    void try_shoulder(const Shoulder& shoulder, int order) {
        if (!may_take(shoulder.distance, order)) return;  // the other joints only add to it
        const auto [s1, c1] = shoulder.sc1;
        const Plane<float> plane = plane_of(wrist_, shoulder.t1, s1, c1, a2_);
        const float squares = plane.r * plane.r + plane.height * plane.height;
        const float k = (a3_ * a3_ + squares - (a4_ * a4_ + d4_ * d4_)) / (2 * a3_);  // (L9)
        const float q2 = squares - k * k;
        if (!(q2 >= 0)) return;
        const float root = std::sqrt(q2);
        const TwoPoints at = both_signs(plane.height, plane.r, k, root);  // (L10)
        const Angles angle = at.angles(), t2 = nearest(1, angle), distances = shoulder.distance + seed_.squared(1, t2);
        const Elbow elbows[2] = {{t2[0], at.direction_of(0), angle[0], distances[0]},
                                 {t2[1], at.direction_of(1), angle[1], distances[1]}};
        if (any_is_near_) {
            for (const Elbow& elbow : elbows) try_elbow(plane, elbow, order);
        } else {
            nearest_first(elbows, [&](const Elbow& elbow, int i) { try_elbow(plane, elbow, order + i); });
        }
    }

    void try_elbow(const Plane<float>& plane, const Elbow& elbow, int order) {
        if (!may_take(elbow.distance, order)) return;
        const auto [s2, c2] = elbow.sc2;
        const float gx = plane.r - a3_ * c2, gy = -plane.height - a3_ * s2;  // (L11)
        const float y23 = a4_ * gy + d4_ * gx, x23 = a4_ * gx - d4_ * gy;
        const float t3 = nearest(2, Angles{arc_tangent(y23, x23) - elbow.angle})[0];  // (L12)
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
            offer(arm, order, Angles{t4, opposite(t4)}, t5, Angles{t6, opposite(t6)});
        } else {
            const auto [t4, t6] = singular_wrist(n, c5);
            offer(arm, order, Angles{t4, t4}, t5, Angles{t6, t6});
        }
    }

    // Of the wrist with sin t5 above 0; in the other one both pairs change sign.  (L14)
    static Ends regular_wrist(const float (&n)[3][3]) {
        const auto [t4, t6] = arc_tangents(n[1][2], n[0][2], n[2][1], -n[2][0]);
        return {t4, t6};
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

    // Angles moved by turns: into the limits of a joint, then next to the seed, within the limits or not.
    Angles nearest(int j, Angles theta) const { return beside(Angles{} + seed_.theta[j], range_.wrapped(j, theta)); }

    // Of the two wrists of an arm, with t5 and -t5, keeps the nearer to the seed; the first of all when none is near.
    void offer(const Arm& arm, int order, Angles t4, float t5, Angles t6) {
        t4 = nearest(3, t4), t6 = nearest(5, t6);
        const Angles both5 = nearest(4, Angles{t5, -t5});
        const Angles distance = arm.distance + seed_.squared(3, t4) + seed_.squared(4, both5) + seed_.squared(5, t6);
        for (int i = 0; i < 2; ++i) {
            if (!may_take(distance[i], order)) continue;
            best_ = {{arm.t1, arm.t2, arm.t3, t4[i], both5[i], t6[i]}, distance[i], order};
            found_ = true;
        }
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
