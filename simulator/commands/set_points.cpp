#include "commands/set_points.h"

#include <algorithm>
#include <cmath>

namespace sim {
namespace {

// A set-point at the client's own pace may be as far from the current joints as they move in this time at their speed
// limits.
constexpr double kFollowingSeconds = 0.2;

// Clients send a quaternion as w, x, y, z in millionths or, in one form of one command, in thousandths. Its norm
// distinguishes the two.
KDL::Rotation rotation(const Request& request, int w, int x, int y, int z) {
    constexpr double kTolerance = 0.1;
    const double length = std::hypot(std::hypot(w, x), std::hypot(y, z));
    const double scale = length > 1e4 ? 1e6 : 1e3;
    if (std::abs(length / scale - 1) > kTolerance) throw BadRequest(request.command() + ": no unit quaternion");
    return KDL::Rotation::Quaternion(x / length, y / length, z / length, w / length);
}

KDL::Frame set_point_pose(const Request& request) {
    if (request.has("pose_quat")) {
        const std::vector<int> p = request.integers("pose_quat", 7);
        return {rotation(request, p[3], p[4], p[5], p[6]), KDL::Vector(p[0] / 1e6, p[1] / 1e6, p[2] / 1e6)};
    }
    WirePose pose;
    std::ranges::copy(request.integers("pose", pose.size()), pose.begin());
    return frame_of(pose);
}

bool too_far(const Arm& arm, const JointVector& target) {
    const std::vector<Pace> paces = arm.paces();
    for (size_t i = 0; i < target.size(); ++i) {
        if (std::abs(target[i] - arm.joints()[i]) > kFollowingSeconds * paces[i].speed) return true;
    }
    return false;
}

}  // namespace

const char* reason(Verdict verdict) {
    switch (verdict) {
        case Verdict::kMalformed:
            return "malformed";
        case Verdict::kBeyondLimit:
            return "beyond a limit";
        case Verdict::kTooFar:
            return "too far from the current joints";
        case Verdict::kUnreachable:
            return "out of reach";
        case Verdict::kNotNow:
            return "the arm may not move, has moves to do, or was stopped";
        case Verdict::kFollowed:
            break;
    }
    return "";
}

std::optional<JointVector> joint_target(const Arm& arm, const Tool&, const Call& call) {
    JointVector target;
    for (const int joint : call.request.integers("joint", arm.joint_count())) target.push_back(joint / 1000.0);
    return target;
}

std::optional<JointVector> pose_target(const Arm& arm, const Tool& tool, const Call& call) {
    return tool.joints_at(set_point_pose(call.request), arm.motion().stream().last(arm.joints()));
}

Verdict follow_set_point(Arm& arm, const Tool& tool, const Call& call, const Following& following) {
    if (!arm.reason_not_to_move().empty()) return Verdict::kNotNow;
    const std::optional<JointVector> target = following.target(arm, tool, call);
    if (!target) return Verdict::kUnreachable;
    if (!arm.reason_not_to_move_to(*target).empty()) return Verdict::kBeyondLimit;
    if (following.near && too_far(arm, *target)) return Verdict::kTooFar;
    if (arm.clear_until(arm.joints(), *target) != *target) return Verdict::kBeyondLimit;
    const bool taken = arm.motion().follow({*target, arm.paces(), following.direct, following.status});
    return taken ? Verdict::kFollowed : Verdict::kNotNow;
}

std::vector<double> reported_joints(const Arm& arm) {
    std::vector<double> joints;
    for (const int joint : thousandths(arm.joints())) joints.push_back(joint / 1e3);
    return joints;
}

}  // namespace sim
