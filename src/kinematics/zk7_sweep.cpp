// The arm angle of the 75 swept over its full turn.
#include "kinematics/zk7.h"
#include "numeric/sine_cosine.h"

namespace zk::zk7 {
namespace {

// The candidate nearest to the seed so far.
class Nearest {
 public:
    Nearest(const Arm& arm, const Joints& seed, float* out) : arm_(arm), seed_(seed), out_(out) {}

    // Whether a candidate with this joint can still be the nearest one. A sum of squares in single precision does not
    // fall when terms are added to it, so no rejected candidate could have been the nearest.
    bool may_have(int joint, float q, float distance_of_others) const {
        return arm_.within(joint, q) && distance_of_others + squared(joint, q) < distance_;
    }
    float squared(int joint, float q) const { return (q - seed_[joint]) * (q - seed_[joint]); }

    void offer(const Joints& q) {
        float distance = 0;  // (7.23)
        for (int i = 0; i < 7; ++i) {
            if (!arm_.within(i, q[i])) return;
            distance += squared(i, q[i]);
        }
        if (!(distance < distance_)) return;
        distance_ = distance;
        for (int i = 0; i < 7; ++i) out_[i] = q[i];
    }

 private:
    const Arm& arm_;
    const Joints& seed_;
    float* out_;
    float distance_ = 1000;
};

// The four ways to bend shoulder and wrist, those of the seed first. Joints 2, 4 and 6 cost least and exclude most.
void offer_bends(Nearest& nearest, const ElbowBranch& branch, ArmAngle psi, const Bends& seed) {
    if (!nearest.may_have(3, branch.q4, 0)) return;
    const float elbow = nearest.squared(3, branch.q4);
    const float q2 = shoulder_bend(branch, psi), q6 = wrist_bend(branch, psi);
    for (const float g2 : {seed.g2, -seed.g2}) {
        if (!nearest.may_have(1, g2 * q2, elbow)) continue;
        const float inner = nearest.squared(1, g2 * q2) + elbow;
        const OuterPair shoulder = about_shoulder(branch, psi, g2);
        for (const float g6 : {seed.g6, -seed.g6}) {
            if (!nearest.may_have(5, g6 * q6, inner)) continue;
            const OuterPair wrist = about_wrist(branch, psi, g6);
            nearest.offer({shoulder.first, g2 * q2, shoulder.last, branch.q4, wrist.first, g6 * q6, wrist.last});
        }
    }
}

}  // namespace

void sweep(const Arm& arm, const Joints& seed, const Target& target, float* out) {
    constexpr float kPi = 3.1415927f, kStep = 0.06f;
    const Bends bends = bends_of(seed);
    const WristLine line = wrist_line(arm, target);
    const float q4 = elbow_joint(arm, line, bends.g4);
    const ElbowBranch same = elbow_branch(q4, line, reference_plane(arm, line, bends.g4), target);
    const ElbowBranch other = elbow_branch(-q4, line, reference_plane(arm, line, -bends.g4), target);  // (7.20)

    Nearest nearest(arm, seed, out);
    ArmAngle psi = {8.742278e-08f, -1.0f};
    for (float angle = -kPi; angle <= kPi;) {
        offer_bends(nearest, same, psi, bends);
        offer_bends(nearest, other, psi, bends);
        angle += kStep;
        const auto [sine, cosine] = sine_cosine(angle);
        psi = {sine, cosine};
    }
}

}  // namespace zk::zk7
