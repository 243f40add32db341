#pragma once

#include <array>
#include <deque>
#include <memory>
#include <optional>

#include "motion/pursuit.h"
#include "wire/arrival_report.h"
#include "world/load.h"

namespace sim {

// A value that moves to a target, in units of its own. To a new target it goes on from the speed that it has.
class Slide {
 public:
    explicit Slide(double acc, double position = 0) : acc(acc), position_(position), target_(position) {}

    void go(double target, double speed);
    void brake();
    void halt() { speed_ = 0; }
    void step(double seconds);

    double position() const { return position_; }
    bool moving() const { return position_ != target_ || speed_ != 0; }
    double left() const { return target_ - position_; }

    double acc;  // per second squared

 private:
    double position_, target_;
    double speed_ = 0;
    double most_ = 0;  // of the speed
};

// The client that gets the report at the end of a device's motion.
class Audience {
 public:
    explicit Audience(Device device) : device_(device) {}

    // Starts a motion for a client, with or without a report at its end. If it replaces a motion of another client,
    // that client gets a false report; a replaced motion of the same client gets none.
    void expect(const std::shared_ptr<Client>& client, bool report);
    void tell_arrival();

 private:
    Device device_;
    std::weak_ptr<Client> client_;
};

// What the fingers close on.
struct Object {
    static constexpr double kHeaviest = 20;

    int width = 0;    // in units of the opening; 0: there is none
    double mass = 0;  // kilograms
};

// Two fingers that open to 1000, with or without an object between them.
class Gripper {
 public:
    static constexpr int kOpen = 1000;
    enum class Mode { kPosition = 0, kPick = 1, kPickOn = 2 };

    explicit Gripper(const Object& object) : object_(object) {}

    void go(int opening, int speed, int force, Mode mode);
    void step(double seconds);

    int opening() const;
    bool moving() const { return fingers_.moving() && !jammed; }
    bool stuck() const { return fingers_.moving() && jammed; }
    bool holds_object() const;
    void put_between(const Object& object) { object_ = object; }
    // The fingers close further.
    void take_object();
    // What its flange bears.
    Load carried() const;
    int force() const { return holds_object() ? force_ : 0; }
    Mode mode() const { return mode_; }

    int narrowest = 0, widest = kOpen;
    bool jammed = false;
    bool slips = false;  // loses what it holds
    Audience audience{Device::kGripper};

 private:
    Slide fingers_{5000, kOpen};
    Object object_;
    int wanted_ = kOpen;  // the opening without an object
    int speed_ = 0;
    int force_ = 0;
    Mode mode_ = Mode::kPosition;
    bool arrived_ = true;
};

// Six fingers, each stretched at 0 and bent at 1000.
class Hand {
 public:
    static constexpr int kFingers = 6;
    static constexpr int kBent = 1000;
    using Posture = std::array<int, kFingers>;  // -1: this finger does not move

    // Runs these postures in sequence, in place of the current motion.
    void go(const std::deque<Posture>& postures);
    void step(double seconds);

    Posture angles() const;
    Posture moving() const;  // 1 for a finger in motion
    bool rests() const { return in_posture_ || jammed; }
    bool stuck() const { return !in_posture_ && jammed; }

    int speed = kBent;  // per second
    int force = kBent;
    bool jammed = false;
    Audience audience{Device::kHand};

 private:
    void begin_next();

    std::array<Slide, kFingers> fingers_{Slide(5000), Slide(5000), Slide(5000), Slide(5000), Slide(5000), Slide(5000)};
    std::deque<Posture> waiting_;
    bool in_posture_ = true;
};

// A linear axis with a range. It moves to a position or runs at a share of its maximum speed.
class LinearAxis {
 public:
    LinearAxis(Device device, double low, double high, double speed, double acc)
        : low(low), high(high), speed(speed), audience(device), slide_(acc) {}

    // Speeds in percent. A negative speed runs toward the lower end; 0 brakes.
    void go(double target, double percent);
    void run(double percent);
    void set_acc(double acc) { slide_.acc = acc; }
    void step(double seconds);

    int position() const;
    bool moving() const { return slide_.moving() && !jammed; }
    bool stuck() const { return slide_.moving() && jammed; }
    int current() const { return moving() ? 1500 : 0; }  // milliamperes

    const double low, high;
    double speed;  // maximum
    bool jammed = false;
    Audience audience;

 private:
    Slide slide_;
    bool arrived_ = true;
};

// The motor's settings, which determine the maximum speed and acceleration of the expansion axis.
struct ExpansionConfig {
    int rpm_max = 3000;
    int rpm_acc = 15000;  // per second
    int units_per_revolution = 1000;
    int version = 1;
};

// A base that drives freely on the floor or straight to one of its stations, which lie a metre apart on the x axis.
class MobileBase {
 public:
    enum class State { kRests = 0, kDrives = 1, kNavigates = 2, kCharges = 3 };

    void drive(int linear, int angular);  // millimetres and thousandths of a radian per second
    void go_to_station(int station, int speed);
    void charge(bool on);
    void stand_at(int station);
    void step(double seconds);

    State state() const { return state_; }
    int station() const { return station_; }  // the last one it reached
    int battery() const { return static_cast<int>(battery_); }

 private:
    struct Place {
        double x = 0, y = 0;  // millimetres
        double heading = 0;   // radians
    };

    void advance(const Place& from, double distance);

    State state_ = State::kRests;
    Place place_;
    double linear_ = 0, turning_ = 0;  // radians per second
    Place departure_;
    Slide way_{1000};  // from the start to the target, in thousandths
    int station_ = 0, target_ = 0;
    double battery_ = 80;  // percent
};

// All devices that can be attached to the arm.
struct Devices {
    explicit Devices(const Object& object) : gripper(object) {}
    void configure_expansion(const ExpansionConfig& config);
    void step(double seconds);
    bool rest() const;

    Gripper gripper;
    Hand hand;
    LinearAxis lift{Device::kLift, 0, 1000, 400, 800};  // millimetres
    LinearAxis expansion{Device::kExpansionAxis, -200'000, 200'000, 50'000, 250'000};
    ExpansionConfig expansion_config;
    MobileBase base;
};

}  // namespace sim
