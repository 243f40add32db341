#include "devices/devices.h"

#include <algorithm>
#include <cmath>

namespace sim {
namespace {

constexpr double kStationDistance = 1000;  // millimetres
constexpr double kChargeRate = 1;          // percent of the battery per second

}  // namespace

// ------------------------------------------------------------------------------------------------------------ Slide --

void Slide::go(double target, double speed) {
    target_ = target;
    most_ = speed;
}

void Slide::brake() {
    const double way = braking_distance(speed_, acc);
    const bool arrives_first = way * left() > 0 && std::abs(way) >= std::abs(left());
    if (!arrives_first) target_ = position_ + way;
}

void Slide::step(double seconds) {
    if (!moving()) return;
    speed_ = pursuit_speed(speed_, left(), {most_, acc}, seconds);
    approach(position_, target_, speed_, seconds);
}

// --------------------------------------------------------------------------------------------------------- Audience --

void Audience::expect(const std::shared_ptr<Client>& client, bool report) {
    const std::shared_ptr<Client> former = client_.lock();
    if (former && former != client) report_arrival(former, device_, false);
    client_ = report ? client : nullptr;
}

void Audience::tell_arrival() {
    report_arrival(client_.lock(), device_, true);
    client_.reset();
}

// ---------------------------------------------------------------------------------------------------------- Gripper --

// The object is always between the closing fingers.
void Gripper::go(int opening, int speed, int force, Mode mode) {
    const int reachable = fingers_.position() >= object_.width ? std::max(opening, object_.width) : opening;
    fingers_.go(std::clamp(reachable, narrowest, widest), speed);
    wanted_ = opening;
    speed_ = speed;
    force_ = force;
    mode_ = mode;
    arrived_ = false;
}

void Gripper::step(double seconds) {
    jammed ? fingers_.halt() : fingers_.step(seconds);
    if (arrived_ || fingers_.moving()) return;
    arrived_ = true;
    audience.tell_arrival();
}

int Gripper::opening() const { return static_cast<int>(std::lround(fingers_.position())); }

bool Gripper::holds_object() const { return object_.width > 0 && !moving() && opening() == object_.width; }

void Gripper::take_object() {
    const bool held = holds_object();
    object_ = {};
    if (held) fingers_.go(std::clamp(wanted_, narrowest, widest), speed_);
}

Load Gripper::carried() const {
    constexpr double kReach = 0.15;  // metres from the flange to the middle of the fingers
    return {holds_object() ? object_.mass : 0, KDL::Vector(0, 0, kReach)};
}

// ------------------------------------------------------------------------------------------------------------- Hand --

void Hand::go(const std::deque<Posture>& postures) {
    waiting_ = postures;
    begin_next();
}

void Hand::begin_next() {
    const Posture posture = waiting_.front();
    waiting_.pop_front();
    for (size_t i = 0; i < fingers_.size(); ++i) {
        if (posture[i] >= 0) fingers_[i].go(posture[i], speed);
    }
    in_posture_ = false;
}

void Hand::step(double seconds) {
    for (Slide& finger : fingers_) jammed ? finger.halt() : finger.step(seconds);
    const bool moving = std::any_of(fingers_.begin(), fingers_.end(), [](const Slide& f) { return f.moving(); });
    if (in_posture_ || moving) return;
    if (!waiting_.empty()) return begin_next();
    in_posture_ = true;
    audience.tell_arrival();
}

Hand::Posture Hand::angles() const {
    Posture angles;
    for (size_t i = 0; i < fingers_.size(); ++i) angles[i] = static_cast<int>(std::lround(fingers_[i].position()));
    return angles;
}

Hand::Posture Hand::moving() const {
    Posture moving;
    for (size_t i = 0; i < fingers_.size(); ++i) moving[i] = fingers_[i].moving() && !jammed;
    return moving;
}

// ------------------------------------------------------------------------------------------------------ Linear axis --

void LinearAxis::go(double target, double percent) {
    slide_.go(target, speed * percent / 100);
    arrived_ = false;
}

void LinearAxis::run(double percent) {
    if (percent == 0) {
        slide_.brake();
    } else {
        slide_.go(percent < 0 ? low : high, speed * std::abs(percent) / 100);
    }
    arrived_ = false;
}

void LinearAxis::step(double seconds) {
    jammed ? slide_.halt() : slide_.step(seconds);
    if (arrived_ || slide_.moving()) return;
    arrived_ = true;
    audience.tell_arrival();
}

int LinearAxis::position() const { return static_cast<int>(std::lround(slide_.position())); }

// ------------------------------------------------------------------------------------------------------ Mobile base --

void MobileBase::drive(int linear, int angular) {
    linear_ = linear;
    turning_ = angular / 1000.0;
    state_ = linear != 0 || angular != 0 ? State::kDrives : State::kRests;
}

// An order to the station to which it drives already changes its speed alone.
void MobileBase::go_to_station(int station, int speed) {
    if (state_ == State::kNavigates && station == target_) return way_.go(way_.position() + way_.left(), speed);
    target_ = station;
    const double x = station * kStationDistance - place_.x, y = -place_.y;
    place_.heading = std::atan2(y, x);
    departure_ = place_;
    way_ = Slide(way_.acc);
    way_.go(std::hypot(x, y), speed);
    state_ = State::kNavigates;
}

void MobileBase::charge(bool on) {
    if (on || state_ == State::kCharges) state_ = on ? State::kCharges : State::kRests;
}

void MobileBase::stand_at(int station) {
    station_ = station;
    place_.x = station * kStationDistance;
    place_.y = 0;
    state_ = State::kRests;
}

void MobileBase::advance(const Place& from, double distance) {
    place_.x = from.x + distance * std::cos(place_.heading);
    place_.y = from.y + distance * std::sin(place_.heading);
}

void MobileBase::step(double seconds) {
    if (state_ == State::kCharges) battery_ = std::min(100.0, battery_ + kChargeRate * seconds);
    if (state_ == State::kDrives) {
        place_.heading += turning_ * seconds;
        advance(place_, linear_ * seconds);
    }
    if (state_ != State::kNavigates) return;
    way_.step(seconds);
    advance(departure_, way_.position());
    if (!way_.moving()) stand_at(target_);
}

// ---------------------------------------------------------------------------------------------------------- Devices --

void Devices::configure_expansion(const ExpansionConfig& config) {
    constexpr double kSecondsPerMinute = 60;
    expansion_config = config;
    expansion.speed = config.rpm_max / kSecondsPerMinute * config.units_per_revolution;
    expansion.set_acc(config.rpm_acc / kSecondsPerMinute * config.units_per_revolution);
}

void Devices::step(double seconds) {
    gripper.step(seconds);
    hand.step(seconds);
    lift.step(seconds);
    expansion.step(seconds);
    base.step(seconds);
}

bool Devices::rest() const {
    const bool base_drives =
        base.state() == MobileBase::State::kDrives || base.state() == MobileBase::State::kNavigates;
    return !gripper.moving() && hand.rests() && !lift.moving() && !expansion.moving() && !base_drives;
}

}  // namespace sim
