#include "motion/robot_model.h"

#include <array>
#include <kdl/chain.hpp>
#include <stdexcept>

namespace sim {
namespace {

constexpr size_t kMaxJoints = 7;
constexpr double kAcceleration = 1000;  // degrees per second squared, on every joint of every arm

using Row = std::array<double, kMaxJoints>;

// modified: Rx(alpha) Tx(a) Rz(theta) Tz(d) for each joint; standard: Rz(theta) Tz(d) Tx(a) Rx(alpha).
enum class Convention { kModified, kStandard };

struct ArmTable {
    const char* name;
    size_t joints;
    size_t sensors;  // how many of "-B", "-ZF", "-6F" the arm is available with
    Convention convention;
    std::array<double, 3> flange;  // metres, last `d`, by sensor
    Row d, a;                      // metres
    Row alpha, offset;             // degrees
    Row min, max;                  // degrees
    Row speed;                     // degrees per second
    Row home;                      // degrees
};

constexpr const char* kSensorMarks[] = {"-B", "-ZF", "-6F"};

constexpr ArmTable kArms[] = {
    {.name = "ZK65",
     .joints = 6,
     .sensors = 3,
     .convention = Convention::kModified,
     .flange = {0.144, 0.152, 0.1725},
     .d = {0.2405, 0, 0, 0.21, 0},
     .a = {0, 0, 0.256, 0, 0, 0},
     .alpha = {0, 90, 0, 90, -90, 90},
     .offset = {0, 90, 90, 0, 0, 0},
     .min = {-178, -130, -135, -178, -128, -360},
     .max = {178, 130, 135, 178, 128, 360},
     .speed = {180, 180, 225, 225, 225, 225},
     .home = {10, -20, -60, 15, -40, 20}},
    {.name = "ZK75",
     .joints = 7,
     .sensors = 3,
     .convention = Convention::kStandard,
     .flange = {0.144, 0.152, 0.1725},
     .d = {0.2405, 0, 0.256, 0, 0.21, 0, 0},
     .a = {0, 0, 0, 0, 0, 0, 0},
     .alpha = {-90, 90, -90, 90, -90, 90, 0},
     .offset = {0, 0, 0, 0, 0, 0, 0},
     .min = {-178, -130, -178, -135, -178, -128, -360},
     .max = {178, 130, 178, 135, 178, 128, 360},
     .speed = {180, 180, 225, 225, 225, 225, 225},
     .home = {10, -30, 15, -60, 20, -40, 10}},
    {.name = "63",
     .joints = 6,
     .sensors = 3,
     .convention = Convention::kModified,
     .flange = {0.115, 0.123, 0.1435},
     .d = {0.172, 0, 0, 0.405, 0},
     .a = {0, -0.086, 0.38, 0.069, 0, 0},
     .alpha = {0, -90, 0, 90, -90, -90},
     .offset = {0, -90, 90, 0, 180, 180},
     .min = {-178, -178, -178, -178, -178, -360},
     .max = {178, 178, 145, 178, 178, 360},
     .speed = {180, 180, 225, 225, 225, 225},
     .home = {10, 20, 60, 15, 50, 20}},
    {.name = "ORB65",
     .joints = 6,
     .sensors = 3,
     .convention = Convention::kModified,
     .flange = {0.0795, 0.0875, 0.108},
     .d = {0.1625, 0, 0, -0.05888, 0.11},
     .a = {0, -0.086, 0.26, 0.24, 0, 0},
     .alpha = {0, -90, 0, 0, 90, -90},
     .offset = {0, -90, 0, 90, 0, 0},
     .min = {-180, -180, -160, -140, -180, -180},
     .max = {180, 180, 145, 140, 180, 180},
     .speed = {180, 180, 225, 225, 225, 225},
     .home = {10, 20, 60, 15, 60, 20}},
    {.name = "62",
     .joints = 6,
     .sensors = 1,
     .convention = Convention::kModified,
     .flange = {0.0707},
     .d = {0.136, 0, 0, -0.0585, 0.071},
     .a = {0, -0.07, 0.148, 0.136, 0, 0},
     .alpha = {0, -90, 0, 0, 90, -90},
     .offset = {0, -90, 0, 90, 0, 0},
     .min = {-180, -180, -160, -140, -180, -180},
     .max = {180, 180, 145, 140, 180, 180},
     .speed = {225, 225, 225, 180, 180, 180},
     .home = {10, 20, 60, 15, 60, 20}},
    {.name = "72",
     .joints = 7,
     .sensors = 1,
     .convention = Convention::kModified,
     .flange = {0.0905},
     .d = {0.218, 0, 0.28, 0, 0.2525, 0, 0},
     .a = {0, 0, 0, 0.04, -0.019, 0, 0.067},
     .alpha = {0, -90, 90, 90, -90, 90, 90},
     .offset = {0, 0, 0, 0, 0, 90, 0},
     .min = {-172, -105, -172, -170, -172, -90, -172},
     .max = {172, 105, 172, 55, 172, 120, 172},
     .speed = {180, 180, 180, 180, 225, 225, 225},
     .home = {10, -30, 15, -80, 20, 30, 10}},
    {.name = "ORB63",
     .joints = 6,
     .sensors = 3,
     .convention = Convention::kModified,
     .flange = {0.0795, 0.0875, 0.108},
     .d = {0.1625, 0, 0, -0.0589, 0.11},
     .a = {0, -0.086, 0.41, 0.38, 0, 0},
     .alpha = {0, -90, 0, 0, 90, -90},
     .offset = {0, -90, 0, 90, 0, 0},
     .min = {-180, -180, -160, -140, -180, -180},
     .max = {180, 180, 145, 140, 180, 180},
     .speed = {180, 180, 225, 225, 225, 225},
     .home = {10, 20, 60, 15, 60, 20}},
};

KDL::Frame twist_and_offset(double alpha, double a) {
    return KDL::Frame(KDL::Rotation::RotX(alpha * kRadians)) * KDL::Frame(KDL::Vector(a, 0, 0));
}

KDL::Frame turn_and_lift(double offset, double d) {
    return KDL::Frame(KDL::Rotation::RotZ(offset * kRadians)) * KDL::Frame(KDL::Vector(0, 0, d));
}

// A KDL segment rotates about its joint and then appends its tip frame. The modified convention puts the twist before a
// joint; here it belongs to the tip of the segment before.
KDL::Chain make_chain(const ArmTable& arm, double flange) {
    KDL::Chain chain;
    if (arm.convention == Convention::kModified)
        chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::None), twist_and_offset(arm.alpha[0], arm.a[0])));
    for (size_t i = 0; i < arm.joints; ++i) {
        const bool last = i + 1 == arm.joints;
        KDL::Frame tip = turn_and_lift(arm.offset[i], last ? flange : arm.d[i]);
        if (arm.convention == Convention::kStandard) {
            tip = tip * twist_and_offset(arm.alpha[i], arm.a[i]);
        } else if (!last) {
            tip = tip * twist_and_offset(arm.alpha[i + 1], arm.a[i + 1]);
        }
        chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::RotZ), tip));
    }
    return chain;
}

RobotModel model_of(const ArmTable& arm, size_t sensor) {
    RobotModel model;
    model.name = std::string(arm.name) + kSensorMarks[sensor];
    model.sensor = static_cast<Sensor>(sensor);
    model.chain = std::make_shared<const KDL::Chain>(make_chain(arm, arm.flange[sensor]));
    for (size_t i = 0; i < arm.joints; ++i) {
        model.joints.push_back({arm.min[i], arm.max[i], arm.speed[i], kAcceleration});
        model.home.push_back(arm.home[i]);
    }
    return model;
}

}  // namespace

RobotModel make_model(const std::string& name) {
    for (const ArmTable& arm : kArms) {
        for (size_t sensor = 0; sensor < arm.sensors; ++sensor) {
            if (name == std::string(arm.name) + kSensorMarks[sensor]) return model_of(arm, sensor);
        }
    }
    throw std::invalid_argument("unknown model '" + name + "'");
}

std::vector<std::string> model_names() {
    std::vector<std::string> names;
    for (const ArmTable& arm : kArms) {
        for (size_t sensor = 0; sensor < arm.sensors; ++sensor)
            names.push_back(std::string(arm.name) + kSensorMarks[sensor]);
    }
    return names;
}

}  // namespace sim
