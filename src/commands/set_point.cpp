#include "commands/set_point.h"

#include <algorithm>

namespace zk {

Request& quaternion_pose(Request& request, const Pose& pose, int32_t (*scale)(float)) {
    const Position& p = pose.position;
    const Quat& q = pose.quaternion;
    return request.numbers(
        "pose_quat", {double(millionths(p.x)), double(millionths(p.y)), double(millionths(p.z)), double(scale(q.w)),
                      double(scale(q.x)), double(scale(q.y)), double(scale(q.z))});
}

Request& pose_or_quat(Request& request, const Pose& pose) {
    const Quat& q = pose.quaternion;
    const double norm = q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z;
    const bool unit = norm > 0.99 && norm < 1.1;
    return unit ? quaternion_pose(request, pose, millionths) : request.pose("pose", pose);
}

void plain_numbers(Item array, int count, float* values) {
    if (!array.is_array()) return;
    for (int i = 0; i < std::min(count, array.size()); ++i) values[i] = static_cast<float>(array[i].number());
}

}  // namespace zk
