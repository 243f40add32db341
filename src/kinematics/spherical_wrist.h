// Inverse kinematics of six-joint arms whose last three axes meet in one point: joints 1 to 3 follow from the wrist
// point alone, joints 4 to 6 then from the rotation. Two shoulders, two elbows and two wrists make eight candidates.
// Numbers in brackets are the equations of docs/kinematics.md.
//
// The geometry of an arm:
//     Arm(const DhParams& dh)
//     Elbows elbows(float r, float z)            both t3 with the wrist point at (r, z) in the plane of joints 2 and 3;
//                                                NaN out of reach
//     Point toward_t23(float r, float z, SineCosine t3)     a point at the angle t2 + t3
//     static Axes forearm(SineCosine t1, SineCosine t23)    the frame that joint 4 turns in, at t4 = 0
//     kLastTwist      sign of the twist before joint 6
//     kJoint5NearPi   its model angle is about half a turn, where the arc tangent jumps
//     kSumFromSeed    t4 + t6 is counted next to the seed's, and not next to 0
#pragma once

#include <cmath>

#include "kinematics/six_joint.h"

namespace zk {

struct Point {
    float y, x;
};

// A joint 3, and its sine and cosine.
struct Elbow {
    float t3;
    SineCosine sc3;
};
struct Elbows {
    Elbow first, second;
};

// Three unit vectors in the shoulder frame.
struct Axes {
    float x[3], y[3], z[3];
};

template <class Arm>
class SphericalWrist {
 public:
    SphericalWrist(const RobotModel& model, const float* seed, const Matrix& world_T_tool)
        : model_(model),
          seed_(model, seed),
          wrist_(shoulder_T_wrist<float>(model, world_T_tool)),
          range_(Range::widened(model)),
          arm_(model.dh) {}

    // The six joints to `joint`; kSolved, kUnreachable or kBeyondLimits.
    int solve(float* joint) {
        nearest_first(shoulders().both, [this](const Shoulder& shoulder, int order) { try_shoulder(shoulder, order); });
        if (found() && model_.is_avoid_Singularity == 1) hold_singular_wrist();
        if (found()) best_.theta[5] = beside(seed_.theta[5], best_.theta[5]);
        return write(joint);
    }

 private:
    static constexpr float kTooFar = 1000;

    // A joint 1, its part of the distance to the seed, and what follows from it.
    struct Shoulder {
        float t1;
        SineCosine sc1;
        float distance;
        float r;  // the wrist point's distance from the axis of joint 1, in the plane of the arm
    };
    struct Shoulders {
        Shoulder both[2];
    };
    // A joint 3, and the part of joints 1 and 3.
    struct UpperArm {
        Elbow elbow;
        float distance;
    };
    // Joints 4 to 6.
    struct Hand {
        float t4, t5, t6;
    };
    bool found() const { return best_.distance < kTooFar; }

    // With the wrist point on the axis of joint 1 that joint keeps the seed.
    Shoulders shoulders() const {
        constexpr float kOnAxis = 5e-5f;
        if (std::fabs(wrist_.x) < kOnAxis && std::fabs(wrist_.y) < kOnAxis) {
            const Shoulder only = shoulder(seed_.theta[0], sine_cosine(seed_.theta[0]));
            return {{only, only}};
        }
        const float from_y = arc_tangent(wrist_.x, wrist_.y);  // (S4)
        const auto [s1, c1] = direction(wrist_.y, wrist_.x);
        return {{shoulder(range_.wrapped(0, kQuarterTurn - from_y), {s1, c1}),
                 shoulder(range_.wrapped(0, -kQuarterTurn - from_y), {-s1, -c1})}};
    }

    Shoulder shoulder(float t1, SineCosine sc1) const {
        return {t1, sc1, seed_.squared(0, t1), wrist_.x * sc1.c + wrist_.y * sc1.s};
    }

    UpperArm upper_arm(const Shoulder& shoulder, Elbow elbow) const {
        elbow.t3 = range_.wrapped(2, elbow.t3);
        return {elbow, shoulder.distance + seed_.squared(2, elbow.t3)};
    }

    void try_shoulder(const Shoulder& shoulder, int order) {
        if (!range_.holds(0, shoulder.t1)) return;
        if (!best_.farther_than(shoulder.distance, order)) return;  // the other joints only add to it
        const auto [first, second] = arm_.elbows(shoulder.r, wrist_.z);
        const UpperArm arms[2] = {upper_arm(shoulder, first), upper_arm(shoulder, second)};
        nearest_first(arms, [&](const UpperArm& arm, int elbow) { try_arm(shoulder, arm, order + 2 * elbow); });
    }

    // The two candidates of a shoulder and an elbow; an elbow out of reach is NaN, which no limit test passes.
    void try_arm(const Shoulder& shoulder, const UpperArm& arm, int order) {
        const float t1 = shoulder.t1, t3 = arm.elbow.t3;
        if (!range_.holds(2, t3)) return;
        if (!best_.farther_than(arm.distance, order)) return;
        const Point toward = arm_.toward_t23(shoulder.r, wrist_.z, arm.elbow.sc3);
        const float t2 = range_.wrapped(1, arc_tangent(toward.y, toward.x) - t3);
        if (!range_.holds(1, t2)) return;
        const float of_arm = seed_.squared(0, t1) + seed_.squared(1, t2) + seed_.squared(2, t3);
        if (!best_.farther_than(of_arm, order)) return;

        const Hand hand = first_hand(Arm::forearm(shoulder.sc1, direction(toward.y, toward.x)));
        const Hand turned = {opposite(hand.t4), -hand.t5, opposite(hand.t6)};
        offer(order, t1, t2, t3, hand);
        offer(order, t1, t2, t3, turned);
    }

    // With F the forearm's axes and k the last twist's sign, F' m = Rz(t4) Ry(t5) Rx(0 or 180) Rz(t6) has the third
    // column k (cos t4 sin t5, sin t4 sin t5, cos t5); turned back by t4 it has the second row k (sin t6, cos t6, 0).
    // So t6 fits t4 also where rounding alone decides t4. The first wrist has sin t5 >= 0.
    Hand first_hand(const Axes& f) const {
        constexpr float k = Arm::kLastTwist;
        const float x = k * dot(f.x, 2), y = k * dot(f.y, 2);
        const float t4 = arc_tangent(y, x);  // (S3)
        const float t5 = arc_tangent(std::sqrt(x * x + y * y), k * dot(f.z, 2));
        const auto [s4, c4] = sine_cosine(t4);
        const float sine = c4 * dot(f.y, 0) - s4 * dot(f.x, 0), cosine = c4 * dot(f.y, 1) - s4 * dot(f.x, 1);
        return {t4, t5, arc_tangent(k * sine, k * cosine)};
    }

    float dot(const float (&axis)[3], int column) const {
        return axis[0] * wrist_.m[0][column] + axis[1] * wrist_.m[1][column] + axis[2] * wrist_.m[2][column];
    }

    // Keeps the candidate, whose joints 1 to 3 are within limits, if it is the nearest to the seed; the first of
    // equals.
    void offer(int order, float t1, float t2, float t3, const Hand& h) {
        const float t5 = Arm::kJoint5NearPi ? beside(seed_.theta[4], h.t5) : h.t5;
        const float t6 = beside(seed_.theta[5], h.t6);
        if (!range_.holds(3, h.t4) || !range_.holds(4, t5) || !range_.holds(5, t6)) return;
        const float theta[6] = {t1, t2, t3, h.t4, t5, t6};
        float distance = 0;
        for (int j = 0; j < 6; ++j) distance += seed_.squared(j, theta[j]);
        if (best_.farther_than(distance, order)) best_ = {{t1, t2, t3, h.t4, t5, t6}, distance, order};
    }

    // With t5 near 0 only t4 + t6 = p is defined. The sum keeps the pose, the difference stays that of the seed.
    void hold_singular_wrist() {
        constexpr float kNearZero = 0.087f;
        if (!(std::fabs(best_.theta[4]) < kNearZero)) return;
        const SineCosine t1 = sine_cosine(best_.theta[0]);
        const auto& m = wrist_.m;
        const float s4 = seed_.theta[3], s6 = seed_.theta[5];
        // (S12)
        float p = arc_tangent(t1.s * m[0][0] - t1.c * m[1][0], t1.s * m[0][1] - t1.c * m[1][1]);
        const float e = Arm::kSumFromSeed ? p - (s4 + s6) : p;
        const auto within_half_turn = [](float angle) { return -kHalfTurn < angle && angle < kHalfTurn; };
        if (within_half_turn(e + kTurn)) {
            p += kTurn;
        } else if (within_half_turn(e - kTurn)) {
            p -= kTurn;
        }
        best_.theta[3] = (s4 + p - s6) / 2;
        best_.theta[5] = (p - s4 + s6) / 2;
    }

    // Converts model angles to joint values. Without a solution these are the model's zero pose.
    int write(float* joint) const {
        const float* offset = model_.dh.offset;
        for (int j = 0; j < 6; ++j) joint[j] = (j == 5 ? best_.theta[j] + seed_.turns : best_.theta[j]) - offset[j];
        if (!found()) return kUnreachable;
        for (int j = 0; j < 6; ++j) {
            if (joint[j] > range_.max[j] - offset[j] || joint[j] < range_.min[j] - offset[j]) return kBeyondLimits;
        }
        return kSolved;
    }

    const RobotModel& model_;
    const Seed<float> seed_;
    const Wrist<float> wrist_;
    const Range range_;
    const Arm arm_;
    Best<float> best_ = {{}, kTooFar};
};

}  // namespace zk
