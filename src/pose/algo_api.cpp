#include "zk/numeric.h"
#include "zk/pose.h"

ZK_API Matrix algo_pose_to_matrix(Pose p) { return pose_euler_to_transformation_matrix(p); }

ZK_API Pose algo_matrix_to_pose(Matrix T) { return transformation_matrix_to_pose(T); }

ZK_API Matrix algo_euler_to_matrix(Euler e) { return euler_to_matrix(e); }

ZK_API Pose algo_base_to_workframe(Matrix work_T_base, Pose p) {
    return algo_matrix_to_pose(matrix_m(work_T_base, algo_pose_to_matrix(p)));
}

ZK_API Pose algo_workframe_to_base(Matrix work_T_base, Pose p) {
    return algo_matrix_to_pose(matrix_m(matrix_inv(work_T_base), algo_pose_to_matrix(p)));
}
