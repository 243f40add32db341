#pragma once

#include <optional>

#include "motion/tool.h"
#include "wire/command_table.h"

namespace sim {

// The result of a set-point in its report. The codes are above all statuses of clients, which return both.
enum class Verdict { kFollowed = 0, kMalformed = 257, kBeyondLimit, kTooFar, kUnreachable, kNotNow };

const char* reason(Verdict verdict);

// The joints of a set-point, in degrees; nothing when no joints reach it. Throw BadRequest. The joints of a
// pose are solved from those of the set-point before, so that the arm keeps its posture.
using Target = std::optional<JointVector> (*)(const Arm&, const Tool&, const Call&);
std::optional<JointVector> joint_target(const Arm& arm, const Tool& tool, const Call& call);
std::optional<JointVector> pose_target(const Arm& arm, const Tool& tool, const Call& call);

struct Following {
    Target target;
    bool direct;  // taken as it comes, at the speed limit alone; otherwise within the acceleration limit too
    bool near;    // refused if it is too far from the current joints

    const char* status;  // in the real-time push
};

// Has the arm follow the set-point of a request, if it can. Throws BadRequest.
Verdict follow_set_point(Arm& arm, const Tool& tool, const Call& call, const Following& following);

// The current joints in degrees, rounded to the wire's resolution: clients do not scale the numbers of reports.
std::vector<double> reported_joints(const Arm& arm);

}  // namespace sim
