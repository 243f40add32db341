#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "motion/follower.h"
#include "motion/trajectory.h"

namespace sim {

// Runs trajectories one after the other; brakes, pauses and drops them.
class MotionQueue {
 public:
    // Called for every move that ends, at its target or dropped before it.
    std::function<void(const Move&, bool arrived)> on_end;

    // Throws NoPath for a course that the arm may not run.
    std::function<void(const Course&)> check;

    // Plans a move from the end of the queued ones; `joints` are the current ones. A joined move waits for one that is
    // not joined; then all run as one trajectory. Throws NoPath and changes nothing when no path exists or too many
    // moves wait.
    void add(Move move, const JointVector& joints);

    // The joints at the end of all moves; `joints` are the current ones.
    JointVector end(const JointVector& joints) const;

    // The last of the joined moves that wait for their successor; null if there is none.
    const Move* last_joined() const { return joined_.last(); }

    // Takes a streamed set-point. False while moves are queued, and after a stop until the stream has paused. Moves
    // wait until the arm rests at the last set-point.
    bool follow(SetPoint set_point) { return !current() && stream_.follow(std::move(set_point)); }
    const Follower& stream() const { return stream_; }

    // The moves that wait are planned anew before they start, since limits have changed.
    void outdate();
    // The same, with these limits of the joints. Throws NoPath if the running trajectory may not go on.
    void check_again(const std::vector<Pace>& paces);

    // Drops the joined moves of this client that wait for their successor.
    void drop_joined_of(const std::shared_ptr<Client>& client);

    // These brake on the path. Dropped moves are reported when the arm has come to rest.
    void stop();
    void slow_stop();
    void delete_current();
    void remove(const void* owner);  // the moves of this owner
    void delete_all() { stop(); }

    // False if there is nothing to pause, or nothing is paused.
    bool pause();
    bool resume();

    void step(double seconds, JointVector& joints);

    // The running move, or the next one; null if there is none.
    const Move* current() const;
    // The same, but behind waits the move that they delay.
    const Move* next_motion() const;
    size_t size() const;  // moves, joined ones included
    bool idle() const { return !current() && stream_.resting(); }

    // True when nothing changes before the next order: idle, or paused at rest.
    bool rests() const { return (paused_ || !current()) && dropped_.empty() && stream_.rests(); }

    // True if all moves were stopped and none has been added since.
    bool stopping() const { return brake_ > Brake::kPause && waiting_.empty(); }

    // Its name in the real-time push.
    std::string status() const;

 private:
    // A later one replaces an earlier one.
    enum class Brake { kNone, kPause, kSlowStop, kStop, kRemove };

    struct Running {
        Trajectory trajectory;
        Path path;
        Profile profile;
        double covered;  // of the path before this profile began
        double time;     // in this profile

        double position() const { return std::min(1.0, covered + profile.distance(time)); }
        Course rest() const { return path.course(profile, covered, time); }
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
    Trajectory joined_;          // still waiting for its last move
    std::vector<Move> dropped_;  // to be reported at rest
    Brake brake_ = Brake::kNone;
    double brake_share_ = 0;  // of the acceleration limit
    bool paused_ = false;
    bool resume_at_rest_ = false;
};

}  // namespace sim
