// An arm prepared for computing in double precision: its chain of turns, its frames both ways, and its limits.
//
// Every arm is a chain of turns about z and y alone: Rx(-90) Rz(t) = Ry(t) Rx(-90) and Rx(180) = Ry(180) Rz(180) take
// the twists of its DH parameters into a sign and a shift of each angle. So arms of one build share one solver. Numbers
// in brackets are the equations of docs/kinematics.md.
#pragma once

#include "kinematics/damped_least_squares.h"
#include "kinematics/small_matrix.h"
#include "numeric/turn.h"
#include "zk/model.h"

namespace zk::arm {

using Vector = Vec3Of<double>;
using Rotation = Mat3Of<double>;
using Frame = Transform<double>;
using damped::Joints;  // one for each joint, the rest 0; angles in radians
using damped::Limits;

enum class Build {
    kNone,
    kSphericalWrist,  // models 0, 3, 4: the last three axes meet in a point
    kParallelAxes,    // models 5, 6, 8: joints 2 to 4 are parallel
    kSphericalSeven,  // model 1: the first and the last three axes meet
    kOffsetSeven,     // model 7: the first three axes meet, elbow and wrist have offsets
};

struct Arm {
    Build build;
    int joints;
    Joints sign, shift;  // joint i turns by sign q_i + shift (A1)
    Vector link[7];      // where it leads from there, metres
    double upper, fore;  // lengths of upper arm and forearm, from joint 2 to the elbow to the wrist, metres
    double lean;         // of the forearm at angle 0 of the elbow, radians (A6)
    Turn unlean;         // back by the lean
    Frame work_T_root;   // the root is the base lifted to the height of joint 2
    Frame root_T_work;
    Frame end_T_tool;  // the end is the frame that the last joint turns
    Frame tool_T_end;
    Limits limits;
};

// The arm that the model describes. Its build is kNone for a model without geometry.
Arm prepared(const RobotModel& model);

inline Frame inverse(const Frame& t) {
    const Rotation r = transposed(rotation_of<double>(t));
    const Vector p = product(r, translation_of<double>(t));
    return {
        {{r[0][0], r[0][1], r[0][2], -p[0]}, {r[1][0], r[1][1], r[1][2], -p[1]}, {r[2][0], r[2][1], r[2][2], -p[2]}}};
}

}  // namespace zk::arm
