#include "pose/pose_parts.h"
#include "zk/kinematics.h"
#include "zk/pose.h"

ZK_API Pose step_attitude(const float* joint, int frame, int axis, float theta) {
    const Pose r = forward_kinematics(joint);
    const int axes[3] = {axis == 3, axis == 4, axis == 5};
    const Euler turned = frame == zk::kWorkFrame
                             ? Rodrigues_rotate_simplify(axes, r.euler, theta, zk::pose_of(robot.work_cs))
                             : Rodrigues_rotate_simplify_tool(axes, r.euler, theta, zk::pose_of(robot.tool_cs));
    return zk::oriented(r, turned);
}
