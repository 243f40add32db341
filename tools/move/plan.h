// A motion before it is sent: where it leads, whether the arm can go there, and whether its user agrees.
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

// Throws Failure when a joint would be beyond its limits.
void check_limits(const zk::Model& model, const zk::Joints& to);

// Throws Failure when the arm is off or in error.
void check_ready(const zk::Arm& arm);

// A connection that stops the arm when the program ends early, by Ctrl-C too.
zk::Arm connect_to_move(const ArmOption& arm);

// Asks the user. Throws Failure when there is no terminal to ask on.
bool confirmed();

bool is_near(const zk::Joints& a, const zk::Joints& b, zk::Angle tolerance = zk::degrees(0.05));

// What the commands that move have in common.
struct MoveRequest {
    ArmOption arm;
    double speed = 20, max_step = 90;
    bool yes = false, dry_run = false;

    void add_to(CLI::App& command);
    zk::Arm connect() const { return connect_to_move(arm); }
};

// Says what is about to be done, asks unless the request says not to, moves, and waits for the arrival. Returns false,
// and moves nothing, for a dry run. Throws Failure when the arm may not move, or has moved since it was planned.
bool carry_out(const zk::Arm& arm, const Plan& plan, const MoveRequest& request);

}  // namespace tool
