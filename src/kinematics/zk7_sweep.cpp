// The arm angle of the 75 swept over its full turn.
#include <algorithm>
#include <array>

#include "kinematics/zk7.h"
#include "numeric/arc_tangent.h"
#include "numeric/sine_cosine.h"

namespace zk::zk7 {
namespace {

// The arm angles of the sweep, from -pi on.
constexpr int kSteps = 105;
constexpr float kPi = 3.1415927f, kStep = 0.06f;

const std::array<ArmAngle, kSteps>& arm_angles() {
    static const auto kAngles = [] {
        std::array<ArmAngle, kSteps> made;
        float angle = -kPi;
        for (ArmAngle& psi : made) {
            const auto [sine, cosine] = sine_cosine(angle);
            psi = {sine, cosine};
            angle += kStep;
        }
        return made;
    }();
    return kAngles;
}

// The candidate nearest to the seed so far. Of equals the first in order is the nearest, in whatever order they are
// offered.
class Nearest {
 public:
    Nearest(const Arm& arm, const Joints& seed, float* out) : arm_(arm), seed_(seed), out_(out) {}

    // Whether a candidate of this distance, or with this joint, can be the nearest one. The margin is for sums that are
    // not added up in the order of the joints, and for rough angles. NaN passes.
    bool may_be(float distance) const { return !(0.999f * distance > distance_ + 1e-9f); }
    bool may_have(int joint, float q, float distance_of_others) const {
        return arm_.within(joint, q) && may_be(distance_of_others + squared(joint, q));
    }
    float squared(int joint, float q) const { return (q - seed_[joint]) * (q - seed_[joint]); }
    // Within a last digit of the angle, at a third of the cost.
    float roughly(int joint, Direction q) const { return squared(joint, arc_tangent(q.y, q.x)); }
    // Joint 7 is found between -pi and pi.
    float least_of_last() const { return squared(6, std::clamp(seed_[6], -kPi, kPi)); }

    void offer(const Joints& q, int order) {
        float distance = 0;  // (7.23)
        for (int i = 0; i < 7; ++i) {
            if (!arm_.within(i, q[i])) return;
            distance += squared(i, q[i]);
        }
        if (!(distance < distance_ || (distance == distance_ && order < order_))) return;
        distance_ = distance;
        order_ = order;
        for (int i = 0; i < 7; ++i) out_[i] = q[i];
    }

 private:
    const Arm& arm_;
    const Joints& seed_;
    float* out_;
    float distance_ = 1000;
    int order_ = 0;
};

// The four ways to bend shoulder and wrist, those of the seed first in order. Joints 2, 4 and 6 cost least and exclude
// most. What joint 7 adds at least is known before.
void offer_bends(Nearest& nearest, int order, const ElbowBranch& branch, ArmAngle psi, const Bends& seed) {
    const float least7 = nearest.least_of_last(), elbow = nearest.squared(3, branch.q4);
    if (!nearest.may_have(3, branch.q4, least7)) return;
    const float q2 = shoulder_bend(branch, psi);
    const bool may_have[2] = {nearest.may_have(1, seed.g2 * q2, elbow + least7),
                              nearest.may_have(1, -seed.g2 * q2, elbow + least7)};
    if (!may_have[0] && !may_have[1]) return;
    const float q6 = wrist_bend(branch, psi);
    for (int i = 0; i < 4; ++i) {
        if (!may_have[i / 2]) continue;
        const float g2 = i < 2 ? seed.g2 : -seed.g2, g6 = i % 2 == 0 ? seed.g6 : -seed.g6;
        const float inner = nearest.squared(1, g2 * q2) + elbow;
        if (!nearest.may_have(5, g6 * q6, inner + least7)) continue;
        const OuterPair wrist = about_wrist(branch, psi, g6);
        const float with_wrist =
            inner + nearest.squared(5, g6 * q6) + nearest.roughly(4, wrist.first) + nearest.roughly(6, wrist.last);
        if (!nearest.may_be(with_wrist)) continue;
        const OuterPair shoulder = about_shoulder(branch, psi, g2);
        if (!nearest.may_be(with_wrist + nearest.roughly(0, shoulder.first) + nearest.roughly(2, shoulder.last)))
            continue;
        nearest.offer({shoulder.first.angle(), g2 * q2, shoulder.last.angle(), branch.q4, wrist.first.angle(), g6 * q6,
                       wrist.last.angle()},
                      order + i);
    }
}

// The step whose arm angle is next to that of the seed.
int step_of(float arm_angle) {
    const float step = (arm_angle + kPi) / kStep;
    return step > 0 && step < kSteps ? static_cast<int>(step) : 0;
}

}  // namespace

void sweep(const Arm& arm, const Joints& seed, const Target& target, float* out) {
    const Bends bends = bends_of(seed);
    const WristLine line = wrist_line(arm, target);
    const ReferencePlane plane = reference_plane(arm, line, bends.g4);
    const float q4 = elbow_joint(arm, line, bends.g4);
    const ElbowBranch same = elbow_branch(q4, line, plane, target);
    const ElbowBranch other = elbow_branch(-q4, line, reference_plane(arm, line, -bends.g4), target);  // (7.20)

    Nearest nearest(arm, seed, out);
    const auto offer_step = [&](int step) {
        const ArmAngle psi = arm_angles()[step];
        offer_bends(nearest, 8 * step, same, psi, bends);
        offer_bends(nearest, 8 * step + 4, other, psi, bends);
    };
    // From the arm angle of the seed to both sides: the nearest is found early, and excludes most of the others.
    const int start = step_of(arm_angle_of(arm, seed, line, plane));
    for (int i = 0; i < kSteps; ++i) {
        const int away = (i + 1) / 2;
        offer_step((start + kSteps + (i % 2 == 0 ? -away : away)) % kSteps);
    }
}

}  // namespace zk::zk7
