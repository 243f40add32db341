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
 * Algo_Inverse_Kinematics, with its answer checked by forward kinematics. An answer that misses the target is refined
 * until it meets it: that of model 1 misses by millimetres near alignment, and out of reach by the missing distance.
 * Where Algo_Inverse_Kinematics finds no solution for a seven-axis arm, this function searches from the seed.
 *
 * seed, joint: degrees, one for each joint of the arm; they may be the same array. target: metres, radians; the tool in
 * the work frame. flag: 0 takes the target's quaternion for its orientation, 1 its Euler angles.
 *
 * Returns 0 when the joints written to joint bring the tool to within ZK_CHECKED_METRES and ZK_CHECKED_RADIANS of the
 * target; 19 (ZK_BAD_ARGUMENT) on null, a quaternion that is not unit, and a seed outside the limits; 21
 * (ZK_NO_SOLUTION) when no joints were found that meet the target. joint is written with 0 only.
 *
 * A refined answer lies within the limits. A correct answer of Algo_Inverse_Kinematics is returned unchanged. With six
 * joints it may exceed a limit by half a degree, as those solvers allow; used as the next seed it is refused with 19.
 * zk_algo_judgment_overpos checks it. The check costs one more forward call. One thread at a time.
 *
 * Method: damped least squares on a Jacobian by central differences, Sugihara, Solvability-Unconcerned Inverse
 * Kinematics by the Levenberg-Marquardt Method, IEEE Transactions on Robotics 27 (2011).
 */
ZK_API int ZK_Inverse_Kinematics_Checked(const float* seed, const Pose* target, float* joint, uint8_t flag);

#endif
