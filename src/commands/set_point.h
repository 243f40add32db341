// What streamed motion and force-position moves share: the pose of a set-point, and the numbers of the reports.
#pragma once

#include "connection/reply.h"
#include "connection/request.h"

namespace zk {

// "pose_quat": the position in millionths of a metre, the quaternion in the given scale.
Request& quaternion_pose(Request& request, const Pose& pose, int32_t (*scale)(float));

// By the quaternion, when it is about a unit one; else "pose", by the Euler angles.
Request& pose_or_quat(Request& request, const Pose& pose);

// Numbers of an array without a scale, as many as it holds; anything else than an array gives none.
void plain_numbers(Item array, int count, float* values);

}  // namespace zk
