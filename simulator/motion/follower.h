#pragma once

#include <limits>
#include <string>
#include <vector>

#include "motion/pursuit.h"
#include "motion/robot_model.h"

namespace sim {

struct SetPoint {
    JointVector joints;
    std::vector<Pace> paces;  // degrees
    bool direct;              // only the speed limit holds; otherwise the acceleration limit too
    std::string status;       // in the real-time push
};

// Follows the set-points that a client streams. Without new ones the joints come to rest at the last.
class Follower {
 public:
    // Replaces the set-point by a new one. False after a stop until the stream has paused.
    bool follow(SetPoint set_point);

    // A joint brakes at its acceleration limit; with direct set-points it rests at once.
    void stop();

    void set_paces(const std::vector<Pace>& paces) { set_point_.paces = paces; }

    void step(double seconds, JointVector& joints);

    bool resting() const { return resting_; }
    // Resting, and ready for a new stream.
    bool rests() const { return resting_ && !stopped_; }
    const std::string& status() const { return set_point_.status; }

    // The joints at which it comes to rest: the last set-point, or the current joints.
    const JointVector& last(const JointVector& standing) const { return resting_ ? standing : set_point_.joints; }

 private:
    double next_speed(size_t joint, double distance, double seconds) const;
    void stop_where_possible(const JointVector& joints);

    SetPoint set_point_;
    std::vector<double> speeds_;  // degrees per second
    bool resting_ = true;
    bool stopping_ = false;
    bool stopped_ = false;                                      // until the stream pauses
    double silence_ = std::numeric_limits<double>::infinity();  // seconds since the last set-point
};

}  // namespace sim
