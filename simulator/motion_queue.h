#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "follower.h"
#include "trajectory.h"

namespace sim {

// Runs trajectories one after the other, and brakes, pauses and drops them.
class MotionQueue {
 public:
    // Called for every move that ends: reached its target, or dropped before it.
    std::function<void(const Move&, bool arrived)> on_end;

    // Throws NoPath for a path that the arm must not run.
    std::function<void(const Path&)> check;

    // Plans the move from where the arm, which now has these joints, will be at its turn. A joined move is kept until
    // one comes that is not; then all run as one trajectory. Throws NoPath, also where too many moves wait, and has not
    // changed then.
    void add(Move move, const JointVector& joints);

    // Where the arm, which now has these joints, will be when everything is done.
    JointVector end(const JointVector& joints) const;

    // The last of the moves that wait for one to be joined to; null when there is none.
    const Move* last_joined() const { return joined_.last(); }

    // Takes a streamed set-point. False while there are moves, which wait in turn until the arm rests at the last one,
    // and after a stop until the stream has paused.
    bool follow(SetPoint set_point) { return !current() && stream_.follow(std::move(set_point)); }
    const Follower& stream() const { return stream_; }

    // These brake on the path. What is dropped is reported when the arm has come to rest.
    void stop();
    void slow_stop();
    void delete_current();
    void delete_all() { stop(); }

    // False when there is nothing to pause, or nothing paused.
    bool pause();
    bool resume();

    void step(double seconds, JointVector& joints);

    // The running move, or the one that runs next; null when there is none.
    const Move* current() const;
    size_t size() const;  // moves, the joined ones among them
    bool idle() const { return !current() && stream_.resting(); }

    // All moves are stopped, and none has been added since.
    bool stopping() const { return brake_ > Brake::kPause && waiting_.empty(); }

    // As the real-time push names it.
    std::string status() const;

 private:
    // In the order in which one takes the place of another.
    enum class Brake { kNone, kPause, kSlowStop, kStop, kRemove };

    struct Running {
        Trajectory trajectory;
        Path path;
        Profile profile;
        double covered;  // of the path before this profile began
        double time;     // in this profile

        double position() const { return std::min(1.0, covered + profile.distance(time)); }
    };

    void begin(const JointVector& joints);
    void advance(double seconds, JointVector& joints);
    void come_to_rest();
    void brake(Brake reason, double share_of_acc);
    void drop(const Trajectory& trajectory);
    void drop_waiting();
    void report(const Trajectory& trajectory, bool arrived);
    void report_dropped();

    Follower stream_;
    std::optional<Running> running_;
    std::deque<Trajectory> waiting_;
    Trajectory joined_;          // as far as it has come
    std::vector<Move> dropped_;  // to be reported at rest
    Brake brake_ = Brake::kNone;
    double brake_share_ = 0;  // of the acceleration limit
    bool paused_ = false;
    bool resume_at_rest_ = false;
};

}  // namespace sim
