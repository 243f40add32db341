#include "motion/motion_queue.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sim {
namespace {

constexpr double kSlowStopShare = 0.25;  // of the acceleration limit
constexpr double kEndOfPath = 1 - 1e-9;
constexpr size_t kMostMoves = 20'000;
constexpr size_t kMostJoined = 200;  // each is planned together with all it is joined to

bool same_place(const JointVector& a, const JointVector& b) {
    constexpr double kClose = 1e-6;  // degrees
    return std::equal(a.begin(), a.end(), b.begin(), [](double x, double y) { return std::abs(x - y) < kClose; });
}

}  // namespace

void MotionQueue::add(Move move, const JointVector& joints) {
    const bool joined = move.connect != 0;
    if (size() >= kMostMoves || (joined && joined_.size() >= kMostJoined)) throw NoPath("too many moves wait");
    Trajectory longer = joined_;
    if (longer.outdated()) longer.replan(longer.start());
    longer.add(std::move(move), end(joints));
    if (check) check(longer.path().course());
    if (!joined) waiting_.push_back(std::exchange(longer, {}));
    joined_ = std::move(longer);
}

JointVector MotionQueue::end(const JointVector& joints) const {
    if (!joined_.empty()) return joined_.end();
    if (!waiting_.empty()) return waiting_.back().end();
    const bool arrives = brake_ == Brake::kNone || brake_ == Brake::kPause;
    return running_ && arrives ? running_->path.at(1) : stream_.last(joints);
}

void MotionQueue::outdate() {
    for (Trajectory& trajectory : waiting_) trajectory.outdate();
    joined_.outdate();
}

void MotionQueue::check_again(const std::vector<Pace>& paces) {
    outdate();
    stream_.set_paces(paces);
    if (running_ && check) check(running_->rest());
}

void MotionQueue::drop_joined_of(const std::shared_ptr<Client>& client) {
    const Move* last = joined_.last();
    if (last && last->client.lock() == client) drop(std::exchange(joined_, {}));
}

void MotionQueue::stop() {
    drop_waiting();
    stream_.stop();
    brake(Brake::kStop, 1);
}

void MotionQueue::slow_stop() {
    drop_waiting();
    stream_.stop();
    brake(Brake::kSlowStop, kSlowStopShare);
}

void MotionQueue::delete_current() {
    if (running_ && !paused_) {
        brake(Brake::kRemove, 1);
    } else if (running_) {
        drop(running_->trajectory);
        running_.reset();
    } else if (!waiting_.empty()) {
        drop(waiting_.front());
        waiting_.pop_front();
    } else {
        drop(std::exchange(joined_, {}));
    }
}

void MotionQueue::remove(const void* owner) {
    if (running_ && running_->trajectory.last()->owner == owner) delete_current();
    for (Trajectory& trajectory : std::exchange(waiting_, {})) {
        if (trajectory.last()->owner == owner) {
            drop(trajectory);
        } else {
            waiting_.push_back(std::move(trajectory));
        }
    }
}

bool MotionQueue::pause() {
    if (!current() || paused_ || brake_ != Brake::kNone) return false;
    brake(Brake::kPause, 1);
    paused_ = !running_;
    return true;
}

bool MotionQueue::resume() {
    if (brake_ == Brake::kPause) {
        resume_at_rest_ = true;
        return true;
    }
    return std::exchange(paused_, false);
}

void MotionQueue::step(double seconds, JointVector& joints) {
    stream_.step(seconds, joints);
    if (running_ && !paused_) advance(seconds, joints);
    if (brake_ == Brake::kNone) report_dropped();
    if (!current()) paused_ = false;
    if (!running_ && !paused_ && !waiting_.empty() && stream_.resting()) begin(joints);
}

const Move* MotionQueue::current() const {
    if (running_) return &running_->trajectory.move_at(running_->position());
    return waiting_.empty() ? nullptr : &waiting_.front().move_at(0);
}

const Move* MotionQueue::next_motion() const {
    const auto moves = [](const Move* move) { return move && move->type != "none"; };
    if (running_ && moves(current())) return current();
    for (const Trajectory& trajectory : waiting_) {
        if (moves(&trajectory.move_at(0))) return &trajectory.move_at(0);
    }
    return nullptr;
}

size_t MotionQueue::size() const {
    size_t moves = joined_.size() + (running_ ? running_->trajectory.size() : 0);
    for (const Trajectory& trajectory : waiting_) moves += trajectory.size();
    return moves;
}

std::string MotionQueue::status() const {
    switch (brake_) {
        case Brake::kPause:
            return "pause";
        case Brake::kSlowStop:
            return "slow_stop";
        case Brake::kStop:
        case Brake::kRemove:
            return "stop";
        case Brake::kNone:
            break;
    }
    if (paused_) return "pause";
    if (current()) return current()->status;
    return stream_.resting() ? "idle" : stream_.status();
}

// A trajectory starts elsewhere than planned when one before it was dropped.
void MotionQueue::begin(const JointVector& joints) {
    Trajectory trajectory = std::move(waiting_.front());
    waiting_.pop_front();
    try {
        if (trajectory.outdated() || !same_place(trajectory.start(), joints)) trajectory.replan(joints);
        Path path = trajectory.path();
        if (check) check(path.course());
        const Profile profile = path.profile();
        running_ = Running{std::move(trajectory), std::move(path), profile, 0, 0};
    } catch (const NoPath&) {
        drop(trajectory);
    }
}

void MotionQueue::advance(double seconds, JointVector& joints) {
    running_->time += seconds;
    const double covered = running_->position();
    joints = running_->path.at(covered);
    if (running_->time < running_->profile.duration()) return;
    running_->covered = covered;
    running_->time = 0;
    come_to_rest();
}

void MotionQueue::come_to_rest() {
    const Brake reason = std::exchange(brake_, Brake::kNone);
    brake_share_ = 0;
    const bool pausing = reason == Brake::kPause;
    paused_ = pausing && !std::exchange(resume_at_rest_, false);
    if (pausing && running_->covered < kEndOfPath) {
        running_->profile = Profile::between_rests(1 - running_->covered, running_->path.speed, running_->path.acc);
        return;
    }
    const Trajectory trajectory = std::move(running_->trajectory);
    running_.reset();
    if (reason == Brake::kNone || pausing) {
        report(trajectory, true);
    } else {
        drop(trajectory);
    }
}

// Only a harder brake replaces one in progress, so that a repeated stop does not prolong it.
void MotionQueue::brake(Brake reason, double share_of_acc) {
    paused_ = false;
    resume_at_rest_ = false;
    if (!running_) return;
    brake_ = std::max(brake_, reason);
    if (share_of_acc <= brake_share_) return;
    brake_share_ = share_of_acc;
    const double covered = running_->position();
    const Profile profile =
        Profile::braking(running_->profile.speed(running_->time), running_->path.acc * share_of_acc);
    // Near its target the move's own final ramp is shorter.
    if (covered + profile.length() >= 1) return;
    running_->covered = covered;
    running_->time = 0;
    running_->profile = profile;
}

void MotionQueue::drop(const Trajectory& trajectory) {
    for (Move& move : trajectory.moves()) dropped_.push_back(std::move(move));
}

void MotionQueue::drop_waiting() {
    for (const Trajectory& trajectory : std::exchange(waiting_, {})) drop(trajectory);
    drop(std::exchange(joined_, {}));
}

// Joined moves first: a waiting client has room for one report, which must be that of the move it waits for.
void MotionQueue::report_dropped() {
    std::stable_partition(dropped_.begin(), dropped_.end(), [](const Move& move) { return move.connect != 0; });
    for (const Move& move : std::exchange(dropped_, {})) {
        if (on_end) on_end(move, false);
    }
}

void MotionQueue::report(const Trajectory& trajectory, bool arrived) {
    for (const Move& move : trajectory.moves()) {
        if (on_end) on_end(move, arrived);
    }
}

}  // namespace sim
