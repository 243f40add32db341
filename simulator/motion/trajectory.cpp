#include "motion/trajectory.h"

#include <algorithm>
#include <iterator>

#include "motion/arm.h"

namespace sim {
namespace {

// Where two ramps overlap, their accelerations add up.
constexpr double kShareOfAcc = 0.5;

}  // namespace

void Trajectory::add(Move move, const JointVector& start) {
    const bool takes_over = move.points.size() > 1;
    const JointVector from = empty() ? start : takes_over ? legs_.back().start : end();
    const bool to_joints = move.data.empty();
    Leg leg{std::move(move), to_joints, from, {}, {}, 0};
    plan(leg);
    if (takes_over) legs_.back().path.reset();
    legs_.push_back(std::move(leg));
    schedule();
}

void Trajectory::plan(Leg& leg) {
    leg.path = leg.move.plan(leg.start);
    if (leg.to_joints) leg.move.data = thousandths(leg.path->at(1));
}

void Trajectory::replan(const JointVector& start) {
    JointVector from = start;
    for (Leg& leg : legs_) {
        leg.start = from;
        if (!leg.path) continue;
        plan(leg);
        from = leg.path->at(1);
    }
    outdated_ = false;
    schedule();
}

// Each leg has ramps of its own. It starts within the final ramp of the one before, at the blend's share of that ramp,
// by the shorter of both ramps: so the sum of their speeds never exceeds that of the faster leg.
void Trajectory::schedule() {
    const Leg* before = nullptr;
    for (Leg& leg : legs_) {
        leg.begin = before ? before->begin : 0;
        if (!leg.path) continue;
        leg.profile = Profile::between_rests(1, leg.path->speed, leg.path->acc * kShareOfAcc);
        if (before) {
            const double ramp = std::min(before->profile.ramp(), leg.profile.ramp());
            leg.begin += before->profile.duration() - ramp * Profile::slow_end(before->move.blend);
        }
        before = &leg;
    }
}

std::vector<Trajectory::Leg> Trajectory::planned(const std::vector<Leg>& legs) {
    std::vector<Leg> planned;
    std::copy_if(legs.begin(), legs.end(), std::back_inserter(planned), [](const Leg& leg) { return bool(leg.path); });
    return planned;
}

Path Trajectory::path() const {
    const auto legs = std::make_shared<const std::vector<Leg>>(planned(legs_));
    if (legs->size() == 1) return *legs->front().path;
    const double seconds = legs->back().begin + legs->back().profile.duration();
    double longest_ramp = 0;
    for (const Leg& leg : *legs) longest_ramp = std::max(longest_ramp, leg.profile.ramp());
    Path path;
    path.at = [legs, seconds](double parameter) { return joints_at(*legs, parameter * seconds); };
    path.rests = true;
    if (seconds == 0) return path;
    path.speed = 1 / seconds;
    path.acc = path.speed * Profile::acc_of_ramp(1, longest_ramp);
    return path;
}

// The leg that started last, and the rest of the one before.

JointVector Trajectory::joints_at(const std::vector<Leg>& legs, double time) {
    auto leg = std::upper_bound(legs.begin() + 1, legs.end(), time, [](double t, const Leg& l) { return t < l.begin; });
    const auto on_leg = [time](const Leg& l) { return l.path->at(std::min(1.0, l.profile.distance(time - l.begin))); };
    --leg;
    JointVector joints = on_leg(*leg);
    if (leg == legs.begin()) return joints;
    const JointVector before = on_leg(*std::prev(leg));
    for (size_t i = 0; i < joints.size(); ++i) joints[i] += before[i] - leg->start[i];
    return joints;
}

const Move& Trajectory::move_at(double parameter) const {
    const double time = parameter * (legs_.back().begin + legs_.back().profile.duration());
    const Leg* current = nullptr;
    for (const Leg& leg : legs_) {
        if (leg.path && (!current || leg.begin <= time)) current = &leg;
    }
    return current->move;
}

std::vector<Move> Trajectory::moves() const {
    std::vector<Move> moves;
    for (const Leg& leg : legs_) moves.push_back(leg.move);
    return moves;
}

}  // namespace sim
