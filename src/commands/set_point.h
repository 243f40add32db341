// Shared by streamed motion and force-position moves: the pose of a set-point, and the numbers of the reports.
#pragma once

#include "connection/reply.h"
#include "connection/request.h"

namespace zk {

// "pose_quat": the position in millionths of a metre, the quaternion in the given scale.
Request& quaternion_pose(Request& request, const Pose& pose, int32_t (*scale)(float));

// "pose_quat" when the quaternion is about a unit one, else "pose" with the Euler angles.
Request& pose_or_quat(Request& request, const Pose& pose);

// Reads the numbers of an array, unscaled; reads nothing when it is no array.
void plain_numbers(Item array, int count, float* values);

}  // namespace zk
