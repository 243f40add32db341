#include "motion/tool_planner.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "motion/spline.h"

namespace sim {
namespace {

// The tolerated distance of the tool from its curve between two solved points.
constexpr double kMetresBeside = 5e-5;
constexpr double kRadiansBeside = 5e-4;

constexpr double kPieceLength = 0.01;  // initial, by `distance_between`
constexpr size_t kFewestPieces = 8;
constexpr size_t kMostPieces = 4000;

std::vector<KDL::Frame> sampled(const Curve& curve, size_t pieces) {
    std::vector<KDL::Frame> tools;
    for (size_t i = 0; i <= pieces; ++i) tools.push_back(curve(static_cast<double>(i) / pieces));
    return tools;
}

size_t pieces_of(const Curve& curve) {
    const std::vector<KDL::Frame> rough = sampled(curve, 256);
    double length = 0;
    for (size_t i = 1; i < rough.size(); ++i) length += distance_between(rough[i - 1], rough[i]);
    if (!(length < kMostPieces * kPieceLength)) throw NoPath("the path is too long");
    return std::max(kFewestPieces, static_cast<size_t>(std::ceil(length / kPieceLength)));
}

// The limits of the parameter's speed and acceleration that keep a quantity within its own. One half of the
// acceleration is for the ramps, the other for curvature.
void hold(Path& path, double slope, double bend, double speed, double acc) {
    const auto lower = [](double& limit, double value) { limit = limit > 0 ? std::min(limit, value) : value; };
    if (slope > 0) lower(path.speed, speed / slope);
    if (slope > 0) lower(path.acc, acc / 2 / slope);
    if (bend > 0) lower(path.speed, std::sqrt(acc / 2 / bend));
}

}  // namespace

ToolPlanner::ToolPlanner(const Arm& arm, const Tool& tool, double percent)
    : arm_(arm), around_(tool.surroundings()), limits_(tool.limits), share_(percent / 100) {}

KDL::Frame ToolPlanner::tool_at(const JointVector& joints) const { return around_.tool_of(arm_.flange_at(joints)); }

Path ToolPlanner::along(const Curve& curve, const JointVector& start) const {
    for (size_t pieces = pieces_of(curve); pieces <= kMostPieces; pieces *= 2) {
        const std::vector<KDL::Frame> tools = sampled(curve, pieces);
        const std::vector<JointVector> knots = solve(tools, start);
        std::vector<double> parameters;
        for (size_t i = 0; i <= pieces; ++i) parameters.push_back(static_cast<double>(i) / pieces);
        Path path;
        path.at = [joints = std::make_shared<const Spline>(parameters, knots)](double s) { return joints->at(s); };
        if (!keeps_to(curve, path.at, pieces)) continue;
        set_pace(tools, knots, path);
        arm_.check(path.course());
        slow_for_bends(pieces, path);
        return path;
    }
    throw NoPath("the arm cannot follow the path");
}

std::vector<JointVector> ToolPlanner::solve(const std::vector<KDL::Frame>& tools, const JointVector& start) const {
    std::vector<JointVector> knots{start};
    for (size_t i = 1; i < tools.size(); ++i) {
        const auto joints = arm_.joints_at(around_.flange_of(tools[i]), knots.back());
        if (!joints) throw NoPath("the path leads out of reach");
        knots.push_back(*joints);
    }
    return knots;
}

bool ToolPlanner::keeps_to(const Curve& curve, const std::function<JointVector(double)>& joints, size_t pieces) const {
    for (size_t i = 0; i < pieces; ++i) {
        const double middle = (i + 0.5) / pieces;
        const KDL::Twist beside = KDL::diff(curve(middle), tool_at(joints(middle)));
        if (!(beside.vel.Norm() < kMetresBeside && beside.rot.Norm() < kRadiansBeside)) return false;
    }
    return true;
}

void ToolPlanner::set_pace(const std::vector<KDL::Frame>& tools, const std::vector<JointVector>& knots,
                           Path& path) const {
    const double pieces = static_cast<double>(tools.size() - 1);
    double way = 0, bend = 0, turn = 0;
    JointVector joints(knots.front().size());
    for (size_t i = 1; i < tools.size(); ++i) {
        const KDL::Twist step = KDL::diff(tools[i - 1], tools[i]);
        way = std::max(way, step.vel.Norm() * pieces);
        turn = std::max(turn, step.rot.Norm() * pieces);
        if (i > 1) bend = std::max(bend, (step.vel - (tools[i - 1].p - tools[i - 2].p)).Norm() * pieces * pieces);
        for (size_t j = 0; j < joints.size(); ++j)
            joints[j] = std::max(joints[j], std::abs(knots[i][j] - knots[i - 1][j]) * pieces);
    }
    constexpr double kThousandth = 1e-3;
    hold(path, way, bend, limits_.line_speed * share_ * kThousandth, limits_.line_acc * kThousandth);
    hold(path, turn, 0, limits_.angular_speed * share_ * kThousandth, limits_.angular_acc * kThousandth);
    // A path that moves a joint too fast is refused, not slowed down.
    for (size_t j = 0; j < joints.size(); ++j)
        if (joints[j] > 0) path.acc = std::min(path.acc, arm_.limits[j].acc() / 2 / joints[j]);
}

// Near a singularity the joints turn faster and slower along an even path of the tool.
void ToolPlanner::slow_for_bends(size_t pieces, Path& path) const {
    constexpr size_t kFiner = 4;  // the bend is greatest next to a solved point
    const size_t steps = kFiner * pieces;
    const auto at = [&](size_t i) { return path.at(static_cast<double>(i) / steps); };
    JointVector before = at(0), here = at(1);
    for (size_t i = 2; i <= steps; ++i) {
        const JointVector next = at(i);
        for (size_t j = 0; j < next.size(); ++j) {
            const double bend = std::abs(next[j] - 2 * here[j] + before[j]) * steps * steps;
            hold(path, 0, bend, 0, arm_.limits[j].acc());
        }
        before = std::exchange(here, next);
    }
}

}  // namespace sim
