/*
 * Inverse kinematics of the seven-axis arms, model 1 (75) and model 7 (72), below the dispatch of
 * zk/inverse_kinematics.h. Joint angles are radians, lengths metres; the target is base_T_flange as a 4 by 4 Mat, so
 * tool, mounting and work frame are already removed. Geometry and limits are those of the model (zk/model.h).
 *
 * Nothing here allocates or keeps anything between calls. The model is read without a lock: call from one thread at a
 * time while it may change. docs/kinematics.md derives the solvers.
 */
#ifndef ZK_SEVEN_AXIS_H
#define ZK_SEVEN_AXIS_H

#include "zk/dense_matrix.h"

/* ----------------------------------------------------------------------------------------------- The 75, model 1 -- */

/*
 * Joints that bring the flange of the 75 to the target: reads seven values of the seed, writes seven to out. The
 * solution range of ikine_set_solution_range_zk75 decides how the arm angle is found, the turn of the elbow about the
 * line from shoulder to wrist. Up to 1.0 (narrow, the per-cycle form) it is that of one pseudo-inverse step from the
 * seed. Above 1.0 (wide) it is swept over a full turn in steps of 0.06, and of all configurations within the limits the
 * nearest to the seed is returned. Wide mode adds no whole turn to joint 7: it answers between -pi and pi, also for a
 * seed beyond, and finds no solution where the limits allow joint 7 only beyond.
 *
 * Returns 0 for joints within the limits and -2 for none; after -2 the content of out is undefined. When wide mode
 * finds no candidate it tests what out held before: fill it with values beyond the limits. The model's joint offsets
 * stay added to the seed.
 *
 * The answer is not compared with the target. With joint 2 or 6 of the seed within 5 degrees of zero, or joint 3 within
 * 8, the narrow answer is one pseudo-inverse step, exact for small motions only. A target out of reach returns 0 as
 * well. ZK_Inverse_Kinematics_Checked (zk/checked_inverse.h) compares.
 *
 * Method: arm angle after Shimizu, Kakuya, Yoon, Kitagaki and Kosuge, Analytical Inverse Kinematic Computation for
 * 7-DOF Redundant Manipulators With Joint Limits, IEEE Transactions on Robotics 24 (2008); pseudo-inverse step with a
 * null-space term after Liegeois (1977).
 */
ZK_API int inverse_kinematics_zk_75(float* seed, float* out, Mat target);

/* ----------------------------------------------------------------------------------------------- The 72, model 7 -- */

/*
 * Joints that bring the flange of the 72 to the target, to 1e-6 m and rad before rounding: the solution that the
 * iteration reaches from the seed, within the limits, with a slight pull to the middle of each joint's range. It need
 * not be the nearest one. When the seed fails, seeds around it are tried, within a distance that grows with that to the
 * target, and over the whole range where the solution range of ikine_set_solution_range_zk75 is above 1.0. A seed
 * outside the limits is moved to them.
 *
 * Returns 0 for a solution, -2 when the only one found lies beyond the limits, -1 when none was found; out is written
 * with 0 only.
 *
 * Method: damped least squares with the damping of Sugihara, Solvability-Unconcerned Inverse Kinematics by the
 * Levenberg-Marquardt Method, IEEE Transactions on Robotics 27 (2011); null-space term after Liegeois (1977).
 */
ZK_API int inverse_kinematics_tau7(const float* seed, float* out, Mat target);

/*
 * Jacobian and pose of the 72's flange at seven joint angles. J becomes 6 by 7 and turns joint speeds (rad/s) into the
 * flange's velocity (m/s, rows 1 to 3) and angular velocity (rad/s, rows 4 to 6) in the flange's own frame; T becomes
 * base_T_flange, 4 by 4. Limits are not checked. Neither pointer may be null.
 */
ZK_API void ikine_jacobe_and_pose_tau72(const float* joint, Mat* J, Mat* T);

/* ------------------------------------------------------------------------------------------ Helpers. Any thread. -- */

/* out = a b for two transforms of three rows of four, the last row 0, 0, 0, 1 implied; out may be a or b. */
ZK_API void marr_m(const float* a, const float* b, float* out);

/* 1 when the Euclidean norm of a Vec is below 1e-10, or its length below 1, else 0. */
ZK_API int utils_is_zero_vec(Mat v);

/* vec_angle_axis_diff with a wider test for equal rotations (1e-10) and the angle in single precision. */
ZK_API Mat utils_angle_axis_diff(Mat T1, Mat T2);

#endif
