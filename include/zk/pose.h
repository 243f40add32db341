/*
 * Poses: to matrices and back, between the base frame and a work frame, and moved by small steps.
 *
 * Lengths are metres and the angles of a Pose radians. Functions read the position and the Euler angles of a Pose, not
 * its quaternion. They return a Pose with all three fields filled, its Euler angles in the ranges of matrix_to_euler
 * (zk/numeric.h), unless a comment says otherwise. No function reports a failure or writes a global. A function that
 * reads the arm's model (zk/model.h) without a lock says so.
 */
#ifndef ZK_POSE_H
#define ZK_POSE_H

#include "zk/transform_types.h"

/* ---------------------------------------------------------------------------------------------------------------------
 * Conversions. Any thread.
 * ------------------------------------------------------------------------------------------------------------------ */

/* The 4 by 4 transform of a pose. */
ZK_API Matrix algo_pose_to_matrix(Pose p);

/* The pose of a 4 by 4 transform. */
ZK_API Pose algo_matrix_to_pose(Matrix T);

/* The 3 by 3 rotation of Euler angles. */
ZK_API Matrix algo_euler_to_matrix(Euler e);

/* ---------------------------------------------------------------------------------------------------------------------
 * Base frame and work frame. Any thread.
 *
 * work_T_base carries coordinates from the base frame to the work frame: the inverse of the work frame's own pose, and
 * what libalgo_get_work_cs_to_base_matrix delivers.
 * ------------------------------------------------------------------------------------------------------------------ */

/* From the base frame to the work frame: work_T_base T(p). */
ZK_API Pose algo_base_to_workframe(Matrix work_T_base, Pose p);

/* From the work frame to the base frame. Not finite when work_T_base is singular. */
ZK_API Pose algo_workframe_to_base(Matrix work_T_base, Pose p);

/* ---------------------------------------------------------------------------------------------------------------------
 * Where the arm would be. These read the model without a lock and run the forward kinematics: one thread at a time.
 * ------------------------------------------------------------------------------------------------------------------ */

/*
 * The pose after turning the end in place, at joint angles in degrees (as many as the arm has), by an angle in degrees
 * about axis 1, 2 or 3 (x, y, z) of the frame, of which only the rotation matters. Any other axis turns by the zero
 * axis: see Rodrigues_rotate_simplify. The position is that of forward_kinematics.
 */
ZK_API Pose algo_rotate_move(const float* joint, int axis, float angle, Pose frame);

/*
 * The pose in the work frame after moving the tool by dx, dy, dz (metres) along its own axes, at joint angles in
 * degrees (as many as the arm has). Leaves the mounting angles of the model out: wrong for an arm not mounted upright.
 */
ZK_API Pose algo_cartesian_tool(const float* joint, float dx, float dy, float dz);

/*
 * The pose after turning the end in place, at joint angles in radians, by theta radians about axis 3, 4 or 5 (x, y, z)
 * of the model's work frame (frame 0) or of the end itself (any other frame). Any other axis turns by the zero axis.
 */
ZK_API Pose step_attitude(const float* joint, int frame, int axis, float theta);

/* ---------------------------------------------------------------------------------------------------------------------
 * Steps of a pose. Those with a frame read the model without a lock; the others run on any thread.
 *
 * delta has six elements: a translation x, y, z in metres and rotations about x, y, z in degrees. frame is 0 for the
 * work frame and 1 for the tool frame.
 * ------------------------------------------------------------------------------------------------------------------ */

/*
 * The pose p after a step: the orientation of rotateMove with the position of dPosMove, each of the same p, so in the
 * tool frame the translation follows the axes from before the rotation. With any other frame the position is zero.
 */
ZK_API Pose algo_pose_move(const float* delta, int frame, Pose p);

/* The translation part, by dPosMoveWork or dPosMoveTool; with any other frame a Pose of zeros. */
ZK_API Pose dPosMove(const float* delta, int frame, Pose p);

/* The position plus the translation, with quaternion and Euler angles of zeros. */
ZK_API Pose dPosMoveWork(const float* delta, Pose p);

/* p moved along its own axes. The Euler angles lie within -pi to pi, unlike those of matrix_to_euler. */
ZK_API Pose dPosMoveTool(const float* delta, Pose p);

/*
 * p turned about x, then y, then z of the frame, each step from the orientation of the one before. An angle of exactly
 * 0 is skipped, and the position is kept. With any other frame the orientation is kept; its quaternion is always
 * new.
 */
ZK_API Pose rotateMove(const float* delta, int frame, Pose p);

/*
 * The orientation e turned by theta radians about one axis: of the frame f in the first, where e and f must refer to
 * the same frame; of e itself in the second, which does not read f. The axis is the last of the three elements
 * that is 1 or -1, the sign making no difference. With none set the axis is zero, and e comes back when cos(theta) is
 * above 0. Method: the rotation formula of Rodrigues.
 */
ZK_API Euler Rodrigues_rotate_simplify(const int* axis, Euler e, float theta, Pose f);
ZK_API Euler Rodrigues_rotate_simplify_tool(const int* axis, Euler e, float theta, Pose f);

#endif
