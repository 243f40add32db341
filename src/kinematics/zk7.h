// The sub-problems of the 75's inverse kinematics. docs/kinematics.md derives them; numbers in the sources
// are its equations.
#pragma once

#include <cmath>

#include "kinematics/small_matrix.h"

namespace zk::zk7 {

using Joints = std::array<float, 7>;

// The model's values, read once a call. Limits and joints are DH angles, offsets included.
struct Arm {
    float d1, d3, d5, d7;  // base to shoulder, shoulder to elbow, elbow to wrist, wrist to flange; metres
    Joints lo, hi, offset, max_speed;
    float period;

    bool within(int joint, float q) const { return q >= lo[joint] && q <= hi[joint]; }
};

// The target of base_T_flange.
struct Target {
    Mat3 R;
    Vec3 p;
};

// The arc cosine's argument, which rounding or a target out of reach can take beyond 1.
inline float clamped(float x) { return std::fabs(x) > 1.0f ? std::copysign(1.0f, x) : x; }

// ------------------------------------------------------------------------------------------ The pseudo-inverse step --

// One step of the pseudo-inverse from the seed to the target, with a null-space term towards mid-range where no joint
// becomes too fast.
Joints pseudo_inverse_step(const Arm& arm, const Joints& seed, const Target& target);

// -------------------------------------------------------------------------------------------------- The closed form --

// The directions in which shoulder, elbow and wrist are bent: the signs of joints 2, 4 and 6.
struct Bends {
    float g2, g4, g6;
};
Bends bends_of(const Joints& q);

// The line from the shoulder to the wrist.
struct WristLine {
    Vec3 w, u;  // from shoulder to wrist, metres; its direction
    float L;    // its length, metres
};
WristLine wrist_line(const Arm& arm, const Target& target);

// The posture at joint 3 = 0, where the elbow lies in the vertical plane of the line.
struct ReferencePlane {
    float s1, c1, s2, c2;  // of joints 1 and 2 there
};
ReferencePlane reference_plane(const Arm& arm, const WristLine& line, float g4);

// A rotation that depends on the arm angle: sine sin psi + cosine cos psi + constant.
struct Coefficients {
    Mat3 sine, cosine, constant;
};

struct ArmAngle {
    float sine, cosine;
};

inline float element(const Coefficients& k, ArmAngle psi, int i, int j) {
    return k.cosine[i][j] * psi.cosine + k.constant[i][j] + k.sine[i][j] * psi.sine;  // (7.15)
}

// The arm with its elbow bent one way: joint 4, and what the other joints are at each arm angle.
struct ElbowBranch {
    float q4;
    Coefficients shoulder, wrist;
};
float elbow_joint(const Arm& arm, const WristLine& line, float g4);
ElbowBranch elbow_branch(float q4, const WristLine& line, const ReferencePlane& plane, const Target& target);

// The magnitude of the middle joint of three, joint 2 or 6.
float shoulder_bend(const ElbowBranch& branch, ArmAngle psi);
float wrist_bend(const ElbowBranch& branch, ArmAngle psi);

// Joints 1 and 3, and 5 and 7, with the shoulder or the wrist bent to the side of the sign g.
struct Direction {
    float y, x;
    float angle() const { return std::atan2(y, x); }
};
struct OuterPair {
    Direction first, last;
};
OuterPair about_shoulder(const ElbowBranch& branch, ArmAngle psi, float g2);
OuterPair about_wrist(const ElbowBranch& branch, ArmAngle psi, float g6);

// -------------------------------------------------------------------------------------------- Finding the arm angle --

// The arm angle of q about the line, NaN where its elbow lies on the line.  (7.21)
float arm_angle_of(const Arm& arm, const Joints& q, const WristLine& line, const ReferencePlane& plane);

// The solution at the arm angle of q, joint 7 moved to the side of the seed's. Zeros where q has no arm angle, since
// its elbow or that of the solution lies on the line.
Joints follow(const Arm& arm, const Joints& q, const Target& target, float seed7);

// Writes the solution within the limits that is nearest to the seed, over the full turn of the arm angle and all
// configurations, to out; without one, out stays.
void sweep(const Arm& arm, const Joints& seed, const Target& target, float* out);

}  // namespace zk::zk7
