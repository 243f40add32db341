// Four rows of a batch at once, where the processor can. Each row is the same to the bit as by itself: every operation
// is done to four numbers, in the same order.
#pragma once

#include "zk/arm_model.h"

namespace zk::arm {

inline constexpr int kFour = 4;

// Whether the processor has the instructions.
bool can_do_four();

// ZK_Model_Forward of four rows. False when one of them is not ordinary, a pitch of a right angle for example; then
// nothing is written.
bool forward_four(const ZK_Model& model, const float* joint, Pose* pose);

// ZK_Model_Inverse of four rows. Returns a bit for each row that is done, with an answer written; the others are not
// ordinary: another posture may be nearer, a joint is beyond its limits, the target is singular or not in order.
int inverse_four(const ZK_Model& model, const Pose* target, const float* seed, const ZK_InverseOptions& options,
                 float* joint);

}  // namespace zk::arm
