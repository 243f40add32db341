#pragma once

#include <functional>
#include <string>
#include <vector>

#include "motion_queue.h"
#include "robot_model.h"

namespace sim {

// The limits of a joint as the wire has them: positions in thousandths of a degree, speeds and accelerations in
// thousandths of a revolution per minute (per second).
struct JointLimits {
    int min_pos;
    int max_pos;
    int max_speed;
    int max_acc;

    double speed() const;  // degrees per second
    double acc() const;    // degrees per second squared
};

struct JointState {
    bool enabled = true;
    int error = 0;
    double speed = 0;     // degrees per second
    double odometer = 0;  // degrees travelled
};

// The arm itself: its joints, their limits, what moves them, and what keeps them from moving.
class Arm {
 public:
    Arm(const RobotModel& model, const JointVector& joints);
    Arm(const Arm&) = delete;
    Arm& operator=(const Arm&) = delete;

    const RobotModel& model() const { return model_; }
    size_t joint_count() const { return model_.joint_count(); }

    const JointVector& joints() const { return joints_; }
    const std::vector<JointState>& states() const { return states_; }
    MotionQueue& motion() { return motion_; }
    const MotionQueue& motion() const { return motion_; }

    // Queues a move. Throws NoPath if there is no way for it, and has not changed then.
    void order(Move move) { motion_.add(std::move(move), ordered_); }

    // Where all moves that are queued will have led.
    JointVector end() const { return motion_.end(ordered_); }

    // What the mechanics allow, and no limit may exceed.
    const std::vector<JointLimits>& range() const { return range_; }
    std::vector<JointLimits> limits;        // in force
    std::vector<JointLimits> drive_limits;  // of the drives, told and kept

    // A path straight in joint space at `percent` of the speed limits.
    Path joint_path(const JointVector& start, const JointVector& target, double percent) const;

    std::vector<Pace> paces() const;  // of all joints, at their limits

    // Runs through a path beforehand. Throws NoPath where a joint would leave its limits or exceed its speed.
    void check(const Path& path) const;

    // Why the arm would not move to `target`, or an empty text.
    std::string objection_to(const JointVector& target) const;
    std::string objection_to_moving() const;

    bool powered() const { return powered_; }
    void set_power(bool on);
    void set_joint_enabled(size_t joint, bool enabled);
    void set_joint_error(size_t joint, int error);
    void set_errors(int arm_error, int system_error);
    void clear_odometers();

    // While a hand drags the arm it takes no orders, and stands where the hand has it.
    void set_dragged(bool dragged) { dragged_ = dragged; }
    void drag_to(const JointVector& joints) { ordered_ = joints; }

    // Where the joints stand when they are ordered somewhere: elsewhere, while the arm gives way to a force.
    std::function<JointVector(const JointVector& ordered)> yielding;
    // Where they stand is where they are ordered to be, from now on.
    void take_stand() { ordered_ = joints_; }

    // Takes where the joint stands as its zero. False while the arm moves.
    bool set_joint_zero(size_t joint);

    int arm_error() const { return arm_error_; }
    int system_error() const { return system_error_; }

    // What the drives measure, in thousandths of a degree Celsius, a volt and an ampere. The current grows with the
    // speed, the rest is constant.
    std::vector<int> temperatures() const;
    std::vector<int> voltages() const;
    std::vector<int> currents() const;

    void step(double seconds);

 private:
    RobotModel model_;
    JointVector joints_;
    JointVector ordered_;
    std::vector<JointState> states_;
    std::vector<JointLimits> range_;
    MotionQueue motion_;
    bool powered_ = true;
    bool dragged_ = false;
    int arm_error_ = 0;
    int system_error_ = 0;
};

// Degrees to the wire's thousandths, rounded to nearest.
std::vector<int> thousandths(const JointVector& joints);

}  // namespace sim
