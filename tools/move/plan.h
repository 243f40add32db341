// A motion before it is sent: where it leads, and whether the arm can go there.
#pragma once

#include <string>
#include <vector>

#include "command.h"

namespace tool {

enum class Motion { kJoints, kPose, kLine };

struct Plan {
    Motion motion;
    zk::Joints from, to;
    zk::Pose from_pose, to_pose;  // the tool in the work frame
};

// Plans a motion from where the arm is. Throws Failure when a joint would leave its limits, the pose is out of reach, a
// line cannot be followed to its end, or a joint would turn further than max_step.
Plan plan_joints(const zk::Arm& arm, const zk::Model& model, const zk::Joints& to, zk::Angle max_step);
Plan plan_pose(const zk::Arm& arm, const zk::Model& model, Motion motion, const zk::Pose& to, zk::Angle max_step);

// What it is about to do, for people.
std::string description(const Plan& plan, zk::Percent speed);

}  // namespace tool
