/*
 * Inverse kinematics that checks its answer. Units, model and threads are those of zk/algorithm.h.
 */
#ifndef ZK_CHECKED_INVERSE_H
#define ZK_CHECKED_INVERSE_H

#include <stdint.h>

#include "zk/export.h"
#include "zk/transform_types.h"

/* How far from its target a checked answer may be: 0.01 mm and 0.1 mrad. */
#define ZK_CHECKED_METRES 1e-5f
#define ZK_CHECKED_RADIANS 1e-4f

/*
 * ZK_Model_Inverse (zk/arm_model.h) on the process-wide model: the posture within the limits that is nearest to the
 * seed, checked by forward kinematics. For models of one's own, options, and the cause of a refusal call that function.
 *
 * seed, joint: degrees, one for each joint of the arm; they may be the same array. target: metres, radians; the tool in
 * the work frame. flag: 1 takes the target's Euler angles for its orientation, every other value its quaternion.
 *
 * Returns 0 when the joints written to joint bring the tool to within ZK_CHECKED_METRES and ZK_CHECKED_RADIANS of the
 * target; 19 (ZK_BAD_ARGUMENT) on null, a quaternion that is not unit, and a seed outside the limits or not finite; 21
 * (ZK_NO_SOLUTION) when no joints within the limits meet the target, it is not finite, or the model has no geometry.
 * joint is written with 0 only. The search settings of zk/inverse_kinematics.h do not matter.
 *
 * Any thread, while no thread changes the process-wide model.
 */
ZK_API int ZK_Inverse_Kinematics_Checked(const float* seed, const Pose* target, float* joint, uint8_t flag);

#endif
