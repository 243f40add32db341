#pragma once

#include <algorithm>
#include <functional>
#include <kdl/frames.hpp>
#include <memory>
#include <string>
#include <vector>

#include "motion/profile.h"
#include "motion/robot_model.h"
#include "wire/refusal.h"

namespace sim {

class Client;

// The reason why no path to a move's target exists.
struct NoPath : Refusal {
    using Refusal::Refusal;
};

// The joints over time, from 0 to `seconds`.
struct Course {
    std::function<JointVector(double time)> at;
    double seconds = 0;
};

// A path of the joints over a parameter from 0 to 1, with the limits of the parameter's speed and acceleration.
struct Path {
    std::function<JointVector(double)> at;
    double speed = 0;    // per second
    double acc = 0;      // per second squared
    bool rests = false;  // the path itself starts and ends at rest: its parameter runs at constant speed

    Profile profile() const { return rests ? Profile::even(1, speed) : Profile::between_rests(1, speed, acc); }
    Course course() const { return course(profile(), 0, 0); }
    // The rest of the path, `covered` before this profile, in which it has come to `time`.
    Course course(const Profile& profile, double covered, double time) const {
        const auto joints = [at = at, profile, covered, time](double t) {
            return at(std::min(1.0, covered + profile.distance(time + t)));
        };
        return {joints, profile.duration() - time};
    }
};

// One move that a client ordered.
struct Move {
    std::string type;              // in the trajectory query: "movej", or "none" for a wait
    std::string status;            // in the real-time push: "move_J"
    std::vector<int> data;         // target in the units of the wire; if empty, the joints at the end of the path
    int connect = 0;               // non-zero: joined to the next, and ends without a report
    double blend = 0;              // the share of its last ramp in which the next move already starts: 0 to 1
    std::weak_ptr<Client> client;  // gets the arrival report

    // If set, called instead of that report.
    std::function<void(bool arrived)> ended = {};

    // The path from these joints, made when the move starts. Throws NoPath if there is none.
    std::function<Path(const JointVector& start)> plan;

    const void* owner = nullptr;  // whose moves they are, for `MotionQueue::remove`

    // Of a spline: the points up to this one. Two or more replace the joined moves before it.
    std::vector<KDL::Frame> points;
};

}  // namespace sim
