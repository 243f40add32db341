/*
 * Inverse kinematics that has looked at its answer. What zk/algorithm.h says of units, model and threads holds here.
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
 * As Algo_Inverse_Kinematics, with the answer checked by forward kinematics. Where Algo_Inverse_Kinematics answers and
 * misses, as the seven-axis arm of model 1 does near alignment by millimetres and out of reach by as much as is
 * missing, the answer is refined until it meets the target; and where it finds none for a seven-axis arm, whose free
 * axis it looks at in one place only, solutions about the seed are looked for.
 *
 * seed, joint: degrees, one for each joint of the arm; they may be the same array. target: metres, radians; the tool in
 * the work frame. flag: 0 takes the target's quaternion for its orientation, 1 its Euler angles.
 *
 * Returns 0 when the tool stands within ZK_CHECKED_METRES and ZK_CHECKED_RADIANS of the target at the joints written to
 * joint, all of them within their limits; 19 (ZK_BAD_ARGUMENT) on null, a quaternion that is no orientation, and a seed
 * outside the limits; 21 (ZK_NO_SOLUTION) when no joints were found that meet the target. joint is written with 0
 * alone. An answer that Algo_Inverse_Kinematics has right costs one forward call more; refining takes some fifteen
 * microseconds. One thread at a time.
 *
 * Method: damped least squares on a Jacobian by central differences, Sugihara, Solvability-Unconcerned Inverse
 * Kinematics by the Levenberg-Marquardt Method, IEEE Transactions on Robotics 27 (2011).
 */
ZK_API int ZK_Inverse_Kinematics_Checked(const float* seed, const Pose* target, float* joint, uint8_t flag);

#endif
