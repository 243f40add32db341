#pragma once

#include <limits>
#include <string>
#include <vector>

#include "robot_model.h"

namespace sim {

// How fast a joint may go: degrees per second, and per second squared.
struct Pace {
    double speed;
    double acc;
};

struct SetPoint {
    JointVector joints;
    std::vector<Pace> paces;
    bool direct;         // taken as it comes, at the speed limit alone; otherwise within the acceleration limit too
    std::string status;  // in the real-time push
};

// Follows set-points that a client streams. Whenever none comes the joints come to rest at the last one.
class Follower {
 public:
    // The newest set-point takes the place of the one before. False after a stop, for as long as the stream goes on as
    // if nothing had happened.
    bool follow(SetPoint set_point);

    // A joint in mid-pursuit brakes at its acceleration limit, one that takes its set-points as they come rests at the
    // last.
    void stop();

    void step(double seconds, JointVector& joints);

    bool resting() const { return resting_; }
    const std::string& status() const { return set_point_.status; }

    // Where it will come to rest: at the last set-point, or where the joints stand.
    const JointVector& last(const JointVector& standing) const { return resting_ ? standing : set_point_.joints; }

 private:
    double next_speed(size_t joint, double distance, double seconds) const;
    void stop_where_possible(const JointVector& joints);

    SetPoint set_point_;
    std::vector<double> speeds_;  // degrees per second
    bool resting_ = true;
    bool stopping_ = false;
    bool stopped_ = false;                                      // and the stream has not paused since
    double silence_ = std::numeric_limits<double>::infinity();  // seconds since the last set-point came
};

}  // namespace sim
