#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "motion/kinematics.h"
#include "motion/limits.h"
#include "motion/motion_queue.h"
#include "motion/robot_model.h"
#include "motion/survey.h"

namespace sim {

struct JointState {
    bool enabled = true;
    int error = 0;
    double speed = 0;     // degrees per second
    double odometer = 0;  // degrees travelled
    double heat = 0;      // degrees Celsius above its usual temperature
};

// Error words: of joints, of the arm and of the system. Those of hazards come from `error_word`.
constexpr int kOverTemperature = 1, kFollowingError = 2;
constexpr int kCollision = 4100;
constexpr int kEmergencyStop = 1;

// The arm: its joints, their limits, its motion and the conditions that prevent motion.
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

    // Queues a move. Throws NoPath and changes nothing when no path exists.
    void order(Move move) { motion_.add(std::move(move), ordered_); }

    // The joints at the end of all queued moves.
    JointVector end() const { return motion_.end(ordered_); }

    // The pose of the flange in the arm's own base, now and with these joints.
    KDL::Frame flange() const { return flange_at(joints_); }
    KDL::Frame flange_at(const JointVector& joints) const { return kinematics_.flange_at(joints); }
    std::vector<KDL::Frame> frames_at(const JointVector& joints) const { return kinematics_.frames_at(joints); }
    // The joints near `seed` and within their limits that put the flange at this pose; nothing if there are none.
    std::optional<JointVector> joints_at(const KDL::Frame& flange, const JointVector& seed) const {
        return kinematics_.joints_at(flange, seed, limits);
    }

    // The mechanical limits. No other limit may exceed them.
    const std::vector<JointLimits>& range() const { return range_; }
    std::vector<JointLimits> limits;        // in force; a motion that would break new ones stops in the next step
    std::vector<JointLimits> drive_limits;  // of the drives, stored but not enforced

    // A path straight in joint space at `percent` of the speed limits.
    Path joint_path(const JointVector& start, const JointVector& target, double percent) const;

    std::vector<Pace> paces() const;  // of all joints, at their limits

    // Throws NoPath where a joint would leave its limits or exceed its speed, or the arm would enter a hazard.
    void check(const Course& course) const;

    // The last place on the straight way from `start` at which the arm has entered no hazard.
    JointVector clear_until(const JointVector& start, const JointVector& target) const;

    // What the arm must keep clear of. A motion into a hazard stops with the hazard's error word.
    std::function<Survey()> hazards;
    // Call it when other hazards hold than in the last step.
    void hazards_changed();

    // Why the arm would not move to `target`, or an empty text.
    std::string reason_not_to_move_to(const JointVector& target) const;
    std::string reason_not_to_move() const;
    // Why its joints are held by their brakes: power, errors, joints that are disabled; or an empty text.
    std::string reason_to_brake() const;

    bool powered() const { return powered_; }
    // False without a supply.
    bool set_power(bool on);
    void set_supply(bool on);
    void set_joint_enabled(size_t joint, bool enabled);
    void set_joint_error(size_t joint, int error);
    // False while the joint is too hot.
    bool clear_joint_error(size_t joint);
    // A pressed emergency stop keeps its own word.
    void set_errors(int arm_error, int system_error);
    void press_emergency_stop(bool pressed);
    bool emergency_stop_pressed() const { return stop_pressed_; }
    void heat(size_t joint, double degrees) { states_[joint].heat += degrees; }
    // It stays where it is, and comes free when the arm rests.
    void set_stuck_joint(std::optional<size_t> joint);
    void clear_odometers();

    // While a hand drags the arm, the arm rejects moves and follows the hand.
    void set_dragged(bool dragged) { dragged_ = dragged; }
    void drag_to(const JointVector& joints) { ordered_ = joints; }

    int collision_stage = 0;  // the sensitivity of the collision detection, 1 to 8; 0: off

    // The commanded joints. The actual joints differ from them while the arm yields to a force.
    std::function<JointVector(const JointVector& ordered)> yielding;
    // Makes the actual joints the commanded ones.
    void hold_current_position() { ordered_ = joints_; }

    // Makes the current position of the joint its zero. False while the arm moves.
    bool set_joint_zero(size_t joint);

    int arm_error() const { return arm_error_; }
    int system_error() const { return system_error_; }

    // The drives' measurements in thousandths of a degree Celsius, a volt and an ampere. The current grows with the
    // speed.
    std::vector<int> temperatures() const;
    std::vector<int> voltages() const;
    std::vector<int> currents() const;

    void step(double seconds);

 private:
    static constexpr double kHottest = 80;  // degrees Celsius

    std::string limit_broken_by(const JointVector& joints) const;
    Survey survey() const { return hazards ? hazards() : Survey(); }
    void check_motion_again();
    void watch_hazards();
    void watch_drives();
    double temperature(size_t joint) const;  // degrees Celsius
    bool too_hot(size_t joint) const { return temperature(joint) >= kHottest; }
    JointVector stopping_place() const;

    RobotModel model_;
    Kinematics kinematics_;
    JointVector joints_;
    JointVector ordered_;
    std::vector<JointState> states_;
    std::vector<JointLimits> range_;
    std::vector<JointLimits> adopted_;  // the limits in the last step
    Depths allowed_{};  // in the hazards: where the arm stood when they began to hold, or has left since
    MotionQueue motion_;
    bool powered_ = true;
    bool supplied_ = true;
    bool stop_pressed_ = false;
    bool dragged_ = false;
    std::optional<size_t> stuck_joint_;
    int arm_error_ = 0;
    int system_error_ = 0;
};

// Degrees to the wire's thousandths, rounded to nearest.
std::vector<int> thousandths(const JointVector& joints);

}  // namespace sim
