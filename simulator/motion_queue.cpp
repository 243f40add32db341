#include "motion_queue.h"

#include <algorithm>
#include <utility>

namespace sim {
namespace {

constexpr double kSlowStopShare = 0.25;  // of the acceleration limit
constexpr double kEndOfPath = 1 - 1e-9;

}  // namespace

void MotionQueue::stop() {
    drop_waiting();
    stream_.stop();
    brake(Brake::stop, 1);
}

void MotionQueue::slow_stop() {
    drop_waiting();
    stream_.stop();
    brake(Brake::slow_stop, kSlowStopShare);
}

void MotionQueue::delete_current() {
    if (running_ && !paused_) {
        brake(Brake::remove, 1);
    } else if (running_) {
        dropped_.push_back(std::move(running_->move));
        running_.reset();
    } else if (!waiting_.empty()) {
        dropped_.push_back(std::move(waiting_.front()));
        waiting_.pop_front();
    }
}

bool MotionQueue::pause() {
    if (!current() || paused_ || brake_ != Brake::none) return false;
    brake(Brake::pause, 1);
    paused_ = !running_;
    return true;
}

bool MotionQueue::resume() {
    if (brake_ == Brake::pause) {
        resume_at_rest_ = true;
        return true;
    }
    return std::exchange(paused_, false);
}

void MotionQueue::step(double seconds, JointVector& joints) {
    stream_.step(seconds, joints);
    if (running_ && !paused_) advance(seconds, joints);
    if (brake_ == Brake::none) report_dropped();
    if (!current()) paused_ = false;
    if (!running_ && !paused_ && !waiting_.empty() && stream_.resting()) begin(joints);
}

const Move* MotionQueue::current() const {
    if (running_) return &running_->move;
    return waiting_.empty() ? nullptr : &waiting_.front();
}

std::string MotionQueue::status() const {
    switch (brake_) {
        case Brake::pause:
            return "pause";
        case Brake::slow_stop:
            return "slow_stop";
        case Brake::stop:
        case Brake::remove:
            return "stop";
        case Brake::none:
            break;
    }
    if (paused_) return "pause";
    if (current()) return current()->status;
    return stream_.resting() ? "idle" : stream_.status();
}

void MotionQueue::begin(const JointVector& joints) {
    Move move = std::move(waiting_.front());
    waiting_.pop_front();
    std::optional<Path> path = move.plan(joints);
    if (!path) {
        if (on_end) on_end(move, false);
        return;
    }
    const Profile profile = Profile::between_rests(1, path->speed, path->acc);
    running_ = Running{std::move(move), std::move(*path), profile, 0, 0};
}

void MotionQueue::advance(double seconds, JointVector& joints) {
    running_->time += seconds;
    const double covered = std::min(1.0, running_->covered + running_->profile.distance(running_->time));
    joints = running_->path.at(covered);
    if (running_->time < running_->profile.duration()) return;
    running_->covered = covered;
    running_->time = 0;
    come_to_rest();
}

void MotionQueue::come_to_rest() {
    const Brake reason = std::exchange(brake_, Brake::none);
    brake_share_ = 0;
    const bool pausing = reason == Brake::pause;
    paused_ = pausing && !std::exchange(resume_at_rest_, false);
    if (pausing && running_->covered < kEndOfPath) {
        running_->profile = Profile::between_rests(1 - running_->covered, running_->path.speed, running_->path.acc);
        return;
    }
    const Move move = std::move(running_->move);
    running_.reset();
    if (reason == Brake::none || pausing) {
        if (on_end) on_end(move, true);
    } else {
        dropped_.push_back(move);
    }
}

// A brake in progress is only ever replaced by a harder one, so that a client that repeats its stop does not prolong
// it.
void MotionQueue::brake(Brake reason, double share_of_acc) {
    paused_ = false;
    resume_at_rest_ = false;
    if (!running_) return;
    brake_ = std::max(brake_, reason);
    if (share_of_acc <= brake_share_) return;
    brake_share_ = share_of_acc;
    const double covered = running_->covered + running_->profile.distance(running_->time);
    const Profile profile =
        Profile::braking(running_->profile.speed(running_->time), running_->path.acc * share_of_acc);
    // Near its target the move's own end brakes sooner.
    if (covered + profile.length() >= 1) return;
    running_->covered = covered;
    running_->time = 0;
    running_->profile = profile;
}

void MotionQueue::drop_waiting() {
    dropped_.insert(dropped_.end(), std::make_move_iterator(waiting_.begin()), std::make_move_iterator(waiting_.end()));
    waiting_.clear();
}

// Joined moves first: a client that waits has room for one report, and must find that of the move it waits for.
void MotionQueue::report_dropped() {
    std::stable_partition(dropped_.begin(), dropped_.end(), [](const Move& move) { return move.connect != 0; });
    for (const Move& move : std::exchange(dropped_, {})) {
        if (on_end) on_end(move, false);
    }
}

}  // namespace sim
