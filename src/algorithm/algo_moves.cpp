// The front of the pose arithmetic that moves a pose.
#include "zk/algorithm.h"
#include "zk/pose.h"

ZK_API Pose Algo_Cartesian_Tool(const float* joint, float dx, float dy, float dz) {
    return algo_cartesian_tool(joint, dx, dy, dz);
}
ZK_API Pose Algo_RotateMove(const float* joint, int axis, float angle, Pose frame) {
    return algo_rotate_move(joint, axis, angle, frame);
}
ZK_API Pose Algo_PoseMove(const float* delta, int frame, Pose pose) { return algo_pose_move(delta, frame, pose); }
