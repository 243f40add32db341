#pragma once

#include <functional>
#include <kdl/frames.hpp>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "profile.h"
#include "robot_model.h"

namespace sim {

class Client;

// Why the arm cannot go where a move wants it.
struct NoPath : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A path of the joints over a parameter from 0 to 1, with the speed and acceleration that its parameter may have.
struct Path {
    std::function<JointVector(double)> at;
    double speed = 0;    // per second
    double acc = 0;      // per second squared
    bool rests = false;  // begins and ends at rest by itself, so that its parameter goes at an even pace

    Profile profile() const { return rests ? Profile::even(1, speed) : Profile::between_rests(1, speed, acc); }
};

// One move as a client ordered it.
struct Move {
    std::string type;              // in the trajectory query: "movej"
    std::string status;            // in the real-time push: "move_J"
    std::vector<int> data;         // target, as the wire tells it; when empty, the joints at the end of the path
    int connect = 0;               // non-zero: joined to the next, and ends without a report
    double blend = 0;              // of its last ramp, on which the next begins already: 0 to 1
    std::weak_ptr<Client> client;  // gets the arrival report

    // Called in the place of that report, if there is one.
    std::function<void(bool arrived)> ended = {};

    // The path from where the arm stands when the move's turn comes. Throws NoPath if there is none.
    std::function<Path(const JointVector& start)> plan;

    // Of a spline: the points up to this one. With more than one, its path runs through the joined moves before it.
    std::vector<KDL::Frame> points;
};

}  // namespace sim
