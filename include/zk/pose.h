/*
 * Poses: to matrices and back, and between the base frame and a work frame.
 *
 * Lengths are metres and the angles of a Pose radians. A Pose that goes in is read by its position and its Euler
 * angles; its quaternion has no effect. A Pose that comes out has all three fields filled, its Euler angles in the
 * ranges of matrix_to_euler (zk/numeric.h), unless a comment says otherwise. Nothing here reports failure, and nothing
 * writes a global; a function that reads the arm's model (zk/model.h) does so without a lock and says so.
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

/* A pose told in the base frame, told in the work frame: work_T_base T(p). */
ZK_API Pose algo_base_to_workframe(Matrix work_T_base, Pose p);

/* A pose told in the work frame, told in the base frame. Not finite when work_T_base is singular. */
ZK_API Pose algo_workframe_to_base(Matrix work_T_base, Pose p);

#endif
