#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "follower.h"
#include "profile.h"
#include "robot_model.h"

namespace sim {

class Client;

// A path of the joints over a parameter from 0 to 1, with the speed and acceleration that its parameter may have.
struct Path {
    std::function<JointVector(double)> at;
    double speed = 0;  // per second
    double acc = 0;    // per second squared
};

// One trajectory as a client ordered it.
struct Move {
    std::string type;              // in the trajectory query: "movej"
    std::string status;            // in the real-time push: "move_J"
    std::vector<int> data;         // target, as the wire tells it
    int connect = 0;               // non-zero: joined to the next, and ends without a report
    std::weak_ptr<Client> client;  // gets the arrival report

    // The path from where the arm stands when the move's turn comes; nothing if there is none.
    std::function<std::optional<Path>(const JointVector& start)> plan;
};

// Runs moves one after the other, and brakes, pauses and drops them.
class MotionQueue {
 public:
    // Called for every move that ends: reached its target, or dropped before it.
    std::function<void(const Move&, bool arrived)> on_end;

    void add(Move move) { waiting_.push_back(std::move(move)); }

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
    size_t size() const { return waiting_.size() + (running_ ? 1 : 0); }
    bool idle() const { return !current() && stream_.resting(); }

    // All moves are stopped, and none has been added since.
    bool stopping() const { return brake_ > Brake::pause && waiting_.empty(); }

    // As the real-time push names it.
    std::string status() const;

 private:
    // In the order in which one takes the place of another.
    enum class Brake { none, pause, slow_stop, stop, remove };

    struct Running {
        Move move;
        Path path;
        Profile profile;
        double covered;  // of the path before this profile began
        double time;     // in this profile
    };

    void begin(const JointVector& joints);
    void advance(double seconds, JointVector& joints);
    void come_to_rest();
    void brake(Brake reason, double share_of_acc);
    void drop_waiting();
    void report_dropped();

    Follower stream_;
    std::optional<Running> running_;
    std::deque<Move> waiting_;
    std::vector<Move> dropped_;  // to be reported at rest
    Brake brake_ = Brake::none;
    double brake_share_ = 0;  // of the acceleration limit
    bool paused_ = false;
    bool resume_at_rest_ = false;
};

}  // namespace sim
