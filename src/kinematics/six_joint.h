// What the solvers of the six-joint arms share: the wrist's target, the seed, the limits and the distance to the seed.
// Angles named theta or t are the DH model's, joint angle plus offset. Numbers in brackets are the equations of
// docs/kinematics.md.
#pragma once

#include <cmath>

#include "kinematics/small_matrix.h"
#include "numeric/arc_tangent.h"
#include "numeric/frame_inverse.h"
#include "numeric/sine_cosine.h"
#include "zk/model.h"
#include "zk/numeric.h"

namespace zk {

inline constexpr float kTurn = 6.2831855f, kHalfTurn = 3.1415927f, kQuarterTurn = 1.5707964f;

// Four angles in a register.
typedef float Angles __attribute__((vector_size(16)));

// Angles moved by a turn, up where they are below and down where they are above. Without a branch: no processor can
// predict the direction.
template <class Mask>
Angles turned(Angles theta, Mask below, Mask above) {
    const Mask turn = (Mask)(Angles{} + kTurn);
    return theta + ((Angles)(below & turn) - (Angles)(above & turn));
}

// Angles moved by a turn where that brings them nearer to the seed's.
inline Angles beside(Angles seed, Angles theta) {
    const Angles e = seed - theta;
    return turned(theta, e > kHalfTurn, e < -kHalfTurn);
}
inline float beside(float seed, float theta) { return beside(Angles{seed}, Angles{theta})[0]; }

// The angle of the opposite direction, atan2(-y, -x).
inline float opposite(float theta) { return std::signbit(theta) ? theta + kHalfTurn : theta - kHalfTurn; }

// The angle with the same sine and the opposite cosine, atan2(y, -x).
inline float mirrored(float theta) { return std::copysign(kHalfTurn, theta) - theta; }

// Sine and cosine of the angle of a point. NaN where the squares overflow: no arm reaches that far.
inline SineCosine direction(float y, float x) {
    const float length = std::sqrt(x * x + y * y);
    if (length == 0) return {0, 1};
    if (std::isinf(length)) return {NAN, NAN};
    return {y / length, x / length};
}

// The status of a solver.
inline constexpr int kSolved = 0, kUnreachable = -1, kBeyondLimits = -2;

// The wrist in the shoulder frame, which is the mounted base lifted by d1.
template <class Real>
struct Wrist {
    Real m[3][3];  // rotation of the flange
    Real x, y, z;  // the point d6 before the flange on its axis
};

template <class Real>
Wrist<Real> shoulder_T_wrist(const RobotModel& model, const Matrix& world_T_tool) {
    const auto base_T_world = transform_of<double>(kept_inverse<Inverted::kMounting>(model.install_angle_matrix));
    const auto tool_T_flange = transform_of<double>(kept_inverse<Inverted::kTool>(model.tool_cs_matrix));
    const Transform<double> base_T_flange = base_T_world * transform_of<double>(world_T_tool) * tool_T_flange;  // (F1)
    const auto& t = base_T_flange.m;
    Wrist<Real> wrist;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) wrist.m[i][j] = static_cast<Real>(t[i][j]);
    }
    const double d1 = model.dh.d[0], d6 = model.dh.d[5];
    wrist.x = static_cast<Real>(t[0][3] - d6 * t[0][2]);  // (F2)
    wrist.y = static_cast<Real>(t[1][3] - d6 * t[1][2]);
    wrist.z = static_cast<Real>(t[2][3] - d6 * t[2][2] - d1);
    return wrist;
}

// The rotation of the flange and the wrist point, seen from the vertical plane of the arm at t1.
template <class Real>
struct Plane {
    Real t1;
    Real x[3], y[3], z[3];  // rows of the rotation: along the plane, across it, upward
    Real r, height;         // the wrist point in the plane, from the axis of joint 2
};

template <class Real>
Plane<Real> plane_of(const Wrist<Real>& wrist, Real t1, Real s1, Real c1, Real a2) {
    const auto& m = wrist.m;
    Plane<Real> plane;
    plane.t1 = t1;
    for (int j = 0; j < 3; ++j) {  // (P2), (L2)
        plane.x[j] = c1 * m[0][j] + s1 * m[1][j];
        plane.y[j] = c1 * m[1][j] - s1 * m[0][j];
        plane.z[j] = m[2][j];
    }
    plane.r = c1 * wrist.x + s1 * wrist.y - a2;  // (L7)
    plane.height = wrist.z;
    return plane;
}

// The seed in model angles. Joint 6 is solved within one turn; its whole turns are added to the answer.
template <class Real>
struct Seed {
    Real theta[6];
    float turns;

    Seed(const RobotModel& model, const float* joint) : turns(std::trunc(joint[5] / kTurn) * kTurn) {
        for (int j = 0; j < 6; ++j) theta[j] = static_cast<Real>(joint[j]) + model.dh.offset[j];  // (F3)
        theta[5] -= turns;
    }

    // A term of E = 2.4 e1^2 + 2.4 e2^2 + 2.4 e3^2 + e4^2 + e5^2 + e6^2, the distance to the seed.
    template <class Angle>
    Angle squared(int j, Angle angle) const {
        const Angle e = angle - theta[j];
        return j < 3 ? Real(2.4) * e * e : e * e;
    }
};

// The range of each joint in model angles.
struct Range {
    float min[6], max[6];

    explicit Range(const RobotModel& model) {
        for (int j = 0; j < 6; ++j) {
            min[j] = model.joint_config[j].pos_min + model.dh.offset[j];
            max[j] = model.joint_config[j].pos_max + model.dh.offset[j];
        }
    }
    // Half a degree more on both sides, so that an arm at its limit can be solved for.
    static Range widened(const RobotModel& model) {
        constexpr double kSlack = 0.0087;
        Range range(model);
        for (int j = 0; j < 6; ++j) {
            range.min[j] = static_cast<float>(range.min[j] - kSlack);
            range.max[j] = static_cast<float>(range.max[j] + kSlack);
        }
        return range;
    }
    bool holds(int joint, float theta) const { return theta >= min[joint] && theta <= max[joint]; }

    // Angles outside the range of a joint, moved by a turn towards it.
    Angles wrapped(int joint, Angles theta) const {
        const auto below = theta<min[joint], above = theta> max[joint];
        return turned(theta, below, above);
    }
    float wrapped(int joint, float theta) const { return wrapped(joint, Angles{theta})[0]; }
};

// The candidate nearest to the seed so far. Of equals the first in order is the nearest, in whatever order they are
// tried.
template <class Real>
struct Best {
    Real theta[6] = {};
    Real distance;
    int order = 0;

    bool farther_than(Real other, int its_order) const {
        return other < distance || (other == distance && its_order < order);
    }
};

// The nearest is tried first, since it excludes most of the others. Each has its distance as far as it is known.
template <class Part, int count, class Try>
void nearest_first(const Part (&parts)[count], Try try_part) {
    int nearest = 0;
    for (int i = 1; i < count; ++i) {
        if (parts[i].distance < parts[nearest].distance) nearest = i;
    }
    try_part(parts[nearest], nearest);
    for (int i = 0; i < count; ++i) {
        if (i != nearest) try_part(parts[i], i);
    }
}

// Writes the joint angles up to and including the first one beyond its limit.
template <class Real, class JointAngle>
int write_up_to_limit(const RobotModel& model, const Range& range, Real slack, int joints, JointAngle angle,
                      float* joint) {
    for (int j = 0; j < joints; ++j) {
        const Real offset = model.dh.offset[j], q = angle(j);
        joint[j] = static_cast<float>(q);
        if (!(q <= range.max[j] - offset + slack && q >= range.min[j] - offset - slack)) return kBeyondLimits;
    }
    return kSolved;
}

}  // namespace zk
