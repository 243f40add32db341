#pragma once

#include <memory>
#include <numbers>
#include <string>
#include <vector>

namespace KDL {
class Chain;
}

namespace sim {

// One number per joint; angles in degrees unless a name says otherwise.
using JointVector = std::vector<double>;

constexpr double kRadians = std::numbers::pi / 180;  // in a degree

enum class Sensor { kBare, kOneForce, kSixForce };

// What the mechanics of a joint allow.
struct JointRange {
    double min;    // degrees
    double max;    // degrees
    double speed;  // degrees per second
    double acc;    // degrees per second squared
};

struct RobotModel {
    std::string name;  // in "Product_version", such as "ZK65-B"
    Sensor sensor;
    std::shared_ptr<const KDL::Chain> chain;  // base to flange
    std::vector<JointRange> joints;
    JointVector home;  // the joints at the start, away from limits and singularities

    size_t joint_count() const { return joints.size(); }
};

// The arm and its end sensor by name. Throws std::invalid_argument for a name that `model_names` does not hold.
RobotModel make_model(const std::string& name);
std::vector<std::string> model_names();

}  // namespace sim
