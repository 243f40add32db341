#include "devices/drag_teach.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sim {
namespace {

constexpr size_t kMaxSamples = 10 * 60 * 1000 / DragTeach::kSampleMs;  // ten minutes
constexpr double kSampleSeconds = DragTeach::kSampleMs / 1000.0;

// From 0 to 1 by a raised sine: the maximum speed is 2, the maximum acceleration 2 pi.
double eased(double u) {
    const double turn = 2 * std::numbers::pi;
    return u - std::sin(turn * u) / turn;
}

double shortest_seconds(const Arm& arm, const JointVector& from, const JointVector& to) {
    double seconds = 0;
    for (size_t i = 0; i < from.size(); ++i) {
        const double turn = std::abs(to[i] - from[i]);
        seconds = std::max(
            {seconds, 2 * turn / arm.limits[i].speed(), std::sqrt(2 * std::numbers::pi * turn / arm.limits[i].acc())});
    }
    return seconds;
}

// The Catmull-Rom cubic between b and c, at u from 0 to 1.
double between(double a, double b, double c, double d, double u) {
    const double leaving = (c - a) / 2, arriving = (d - b) / 2;
    return b + u * (leaving + u * (3 * (c - b) - 2 * leaving - arriving + u * (leaving + arriving - 2 * (c - b))));
}

// The recorded joints at a time in samples.
JointVector sampled(const std::vector<JointVector>& samples, double time) {
    const size_t last = samples.size() - 1;
    const size_t b = std::min(static_cast<size_t>(std::max(time, 0.0)), last - 1);
    const JointVector &before = samples[b > 0 ? b - 1 : 0], &from = samples[b], &to = samples[b + 1],
                      &after = samples[std::min(b + 2, last)];
    JointVector joints(from.size());
    for (size_t i = 0; i < joints.size(); ++i)
        joints[i] = between(before[i], from[i], to[i], after[i], time - static_cast<double>(b));
    return joints;
}

// How many times longer it has to take, so that the joints keep within their speeds.
double slowing_of(const Course& course, const Arm& arm) {
    constexpr double kStep = 0.005, kShare = 0.99;  // seconds; of the speed limits, since it varies within a step
    double slowing = 1;
    JointVector before = course.at(0);
    for (double time = kStep; time < course.seconds; time += kStep) {
        const JointVector joints = course.at(time);
        for (size_t i = 0; i < joints.size(); ++i) {
            const double speed = std::abs(joints[i] - before[i]) / kStep;
            slowing = std::max(slowing, speed / (kShare * arm.limits[i].speed()));
        }
        before = joints;
    }
    return slowing;
}

}  // namespace

void DragTeach::start(bool record, const std::string& status) {
    active_ = true;
    status_ = status;
    recording_now_ = record;
    sample_time_ = 0;
    leg_seconds_ = 0;
    legs_.assign(script.begin(), script.end());
    if (record) recording_ = {arm_.joints()};
    arm_.set_dragged(true);
}

void DragTeach::stop() {
    if (recording_now_ && recording_.size() < kMaxSamples) recording_.push_back(arm_.joints());
    active_ = recording_now_ = false;
    legs_.clear();
    arm_.set_dragged(false);
}

void DragTeach::lead(const HandLeg& leg) { legs_.push_back(leg); }

void DragTeach::step(double seconds) {
    if (active_ && !arm_.reason_to_brake().empty()) stop();
    if (!active_) return;
    const bool anew = leg_seconds_ > 0 && limits_ != arm_.limits;
    if (anew || (leg_seconds_ == 0 && !legs_.empty())) begin_leg();
    if (leg_seconds_ > 0) {
        leg_time_ = std::min(leg_time_ + seconds, leg_seconds_);
        const double share = eased(leg_time_ / leg_seconds_);
        JointVector joints(from_);
        for (size_t i = 0; i < joints.size(); ++i) joints[i] += share * (legs_.front().joints[i] - from_[i]);
        arm_.drag_to(within_limits(joints));
        if (leg_time_ == leg_seconds_) {
            legs_.pop_front();
            leg_seconds_ = 0;
        }
    }
    record(seconds);
}

// A joint that is beyond its limit goes no further.
JointVector DragTeach::within_limits(JointVector joints) const {
    for (size_t i = 0; i < joints.size(); ++i) {
        const double now = arm_.joints()[i], low = arm_.limits[i].min_pos / 1e3, high = arm_.limits[i].max_pos / 1e3;
        joints[i] = std::clamp(joints[i], std::min(low, now), std::max(high, now));
    }
    return joints;
}

void DragTeach::begin_leg() {
    from_ = arm_.joints();
    limits_ = arm_.limits;
    leg_time_ = 0;
    leg_seconds_ = std::max({legs_.front().seconds, shortest_seconds(arm_, from_, legs_.front().joints), 1e-3});
}

void DragTeach::record(double seconds) {
    sample_time_ += seconds;
    if (sample_time_ < kSampleSeconds - 1e-9) return;
    sample_time_ -= kSampleSeconds;
    if (recording_now_ && recording_.size() < kMaxSamples) recording_.push_back(arm_.joints());
}

// The difference between the current joints and the start of the recording shrinks along the path.
Path DragTeach::replay(const JointVector& start) const {
    constexpr double kRampSeconds = 0.25;  // at the start and at the end
    const double duration = static_cast<double>(recording_.size() - 1) * kSampleSeconds;
    Path path;
    path.at = [samples = recording_, start](double s) {
        JointVector joints = sampled(samples, s * static_cast<double>(samples.size() - 1));
        for (size_t i = 0; i < joints.size(); ++i) joints[i] += (1 - s) * (start[i] - samples[0][i]);
        return joints;
    };
    path.speed = 1 / duration;
    path.speed /= slowing_of({[&](double time) { return path.at(time / duration); }, duration}, arm_);
    path.acc = 2 * path.speed / kRampSeconds;
    return path;
}

}  // namespace sim
