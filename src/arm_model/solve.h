// Inverse kinematics of a prepared arm.
#pragma once

#include "arm_model/choice.h"

namespace zk::arm {

enum class Refusal { kNone, kOutOfReach, kBeyondLimits, kLargerStep };

struct Answer {
    Refusal refusal;
    int joint;  // the one furthest beyond its limits, counted from 0, where the refusal is for limits
    Joints q;
};

// The posture nearest to the seed, within the limits, that brings the end to the target in the root. No joint moves
// further from the seed than max_step, which is infinite for no bound.
Answer solve(const Arm& arm, const Frame& target, const Wanted& wanted, double max_step);

// Moves q towards the target within the limits, by the steps of least weight, and with the pull as far as that leaves
// the target alone. False when it does not come there.
bool refined(const Arm& arm, const Frame& target, const Wanted& wanted, Joints& q, const Joints& pull = {});

// The way from one frame to another, translation and axis times angle, in the axes that both are seen in.
damped::Error difference(const Frame& from, const Frame& to);

// The limits of `wanted` cut to this distance from some joints.
Limits within_step(const Limits& limits, const Joints& from, double max_step);

// Whether they leave a joint no room: within_step, when a seed is further beyond its limits than the step.
bool are_empty(const Limits& limits);

}  // namespace zk::arm
