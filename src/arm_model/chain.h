// Forward kinematics and Jacobian of a prepared arm. The turns of a build and the directions of its links are known to
// the compiler, so that a chain becomes straight code.
#pragma once

#include <utility>

#include "arm_model/arm.h"
#include "numeric/turn.h"

namespace zk::arm {

// A joint of a build: the axis that it turns about, and the components that its link may have.
struct JointForm {
    bool about_y;
    bool x, y, z;
};

template <Build build>
struct Form;
template <>
struct Form<Build::kSphericalWrist> {  // (A2)
    static constexpr JointForm kJoints[] = {{false, 1, 0, 0}, {true, 1, 1, 0}, {true, 1, 0, 1},
                                            {false, 0, 0, 0}, {true, 0, 0, 0}, {false, 0, 0, 0}};
};
template <>
struct Form<Build::kParallelAxes> {  // (A3)
    static constexpr JointForm kJoints[] = {{false, 1, 0, 0}, {true, 1, 0, 0},  {true, 1, 0, 0},
                                            {true, 0, 1, 1},  {false, 0, 0, 0}, {true, 0, 0, 0}};
};
template <>
struct Form<Build::kSphericalSeven> {  // (A4)
    static constexpr JointForm kJoints[] = {{false, 0, 0, 0}, {true, 0, 0, 0}, {false, 0, 0, 1}, {true, 0, 0, 0},
                                            {false, 0, 0, 1}, {true, 0, 0, 0}, {false, 0, 0, 0}};
};
template <>
struct Form<Build::kOffsetSeven> {  // (A5)
    static constexpr JointForm kJoints[] = {{false, 0, 0, 0}, {true, 0, 0, 0}, {false, 1, 0, 1}, {true, 1, 0, 0},
                                            {false, 0, 0, 1}, {true, 1, 0, 0}, {false, 0, 0, 0}};
};

// The columns of the transform from the root to where the chain has come.
template <class Real>
struct Walk {
    using Column = Vec3Of<Real>;
    Column x = {1, 0, 0}, y = {0, 1, 0}, z = {0, 0, 1}, p = {0, 0, 0};

    template <bool about_y>
    void turn(TurnOf<Real> t) {
        Column& along = about_y ? z : x;
        Column& across = about_y ? x : y;
        for (int k = 0; k < 3; ++k) {
            const Real turned = along[k] * t.c + across[k] * t.s;
            across[k] = across[k] * t.c - along[k] * t.s;
            along[k] = turned;
        }
    }
    void lead(const Column& axis, double by) {
        for (int k = 0; k < 3; ++k) p[k] += axis[k] * by;
    }
    Transform<Real> frame() const {
        return {{{x[0], y[0], z[0], p[0]}, {x[1], y[1], z[1], p[1]}, {x[2], y[2], z[2], p[2]}}};
    }
};

// Walks along the chain; at_joint(i, walk) sees the frame that joint i turns, before it turns.
template <Build build, class Real, class AtJoint>
Transform<Real> walked(const Arm& arm, const std::array<Real, 7>& q, AtJoint at_joint) {
    constexpr auto& joints = Form<build>::kJoints;
    constexpr int count = sizeof joints / sizeof joints[0];
    TurnOf<Real> turns[count];
    for (int i = 0; i < count; ++i) turns[i] = turn_of(arm.sign[i] * q[i] + arm.shift[i]);
    Walk<Real> walk;
    const auto step = [&]<int i>(std::integral_constant<int, i>) {
        constexpr JointForm form = joints[i];
        at_joint(i, walk);
        walk.template turn<form.about_y>(turns[i]);
        if constexpr (form.x) walk.lead(walk.x, arm.link[i][0]);
        if constexpr (form.y) walk.lead(walk.y, arm.link[i][1]);
        if constexpr (form.z) walk.lead(walk.z, arm.link[i][2]);
    };
    [&]<int... i>(std::integer_sequence<int, i...>) { (step(std::integral_constant<int, i>()), ...); }
    (std::make_integer_sequence<int, count>());
    return walk.frame();
}

// Calls f.operator()<build>() for the build of the arm.
template <class F>
auto for_build(Build build, F f) {
    switch (build) {
        case Build::kParallelAxes:
            return f.template operator()<Build::kParallelAxes>();
        case Build::kSphericalSeven:
            return f.template operator()<Build::kSphericalSeven>();
        case Build::kOffsetSeven:
            return f.template operator()<Build::kOffsetSeven>();
        default:
            return f.template operator()<Build::kSphericalWrist>();
    }
}

template <class Real>
Transform<Real> root_T_end(const Arm& arm, const std::array<Real, 7>& q) {
    return for_build(arm.build, [&]<Build build>() { return walked<build>(arm, q, [](int, const Walk<Real>&) {}); });
}

template <class Real>
Transform<Real> work_T_tool(const Arm& arm, const std::array<Real, 7>& q) {
    return arm.work_T_root * root_T_end(arm, q) * arm.end_T_tool;
}

// Where the joints of a posture are, seen from the root.
template <class Real>
struct Axes {
    Vec3Of<Real> axis[7], at[7];
};

template <class Real>
Transform<Real> root_T_end(const Arm& arm, const std::array<Real, 7>& q, Axes<Real>& axes) {
    return for_build(arm.build, [&]<Build build>() {
        return walked<build>(arm, q, [&](int i, const Walk<Real>& walk) {
            axes.axis[i] = Form<build>::kJoints[i].about_y ? walk.y : walk.z;
            axes.at[i] = walk.p;
        });
    });
}

using damped::Jacobian;  // rows 1 to 3: velocity; rows 4 to 6: angular velocity

// The Jacobian of a point, in the axes of the root. Column i is the turn of joint i: its axis, and the axis crossed
// with the way from the joint to the point (A7). Columns beyond the arm's joints stay.
template <class Real>
void fill_jacobian(const Arm& arm, const Axes<Real>& axes, const Vec3Of<Real>& point, zk::Jacobian<Real>& J) {
    for (int i = 0; i < arm.joints; ++i) {
        const Vec3Of<Real> axis = scaled(Real(arm.sign[i]), axes.axis[i]),
                           velocity = cross(axis, minus(point, axes.at[i]));
        for (int k = 0; k < 3; ++k) {
            J[k][i] = velocity[k];
            J[k + 3][i] = axis[k];
        }
    }
}

// The Jacobian of the tool tip.
inline Jacobian tool_jacobian(const Arm& arm, const Joints& q) {
    Axes<double> axes;
    Jacobian J{};
    const Frame tool = root_T_end(arm, q, axes) * arm.end_T_tool;
    fill_jacobian(arm, axes, translation_of<double>(tool), J);
    return J;
}

}  // namespace zk::arm
