#include "devices/fault_effects.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "devices/devices.h"

namespace sim {
namespace {

// Faults count joints from 1; 0: none.
std::optional<size_t> joint_of(int number) {
    return number > 0 ? std::optional(static_cast<size_t>(number - 1)) : std::nullopt;
}

}  // namespace

void FaultEffects::set(const ArmFaults& faults) {
    faults_ = faults;
    arm_.press_emergency_stop(faults.emergency_stop != 0);
    arm_.set_supply(faults.power_loss == 0);
    devices_.gripper.jammed = faults.jam_gripper != 0;
    devices_.gripper.slips = faults.grip_loss != 0;
    devices_.hand.jammed = faults.jam_hand != 0;
    devices_.lift.jammed = faults.jam_lift != 0;
    devices_.expansion.jammed = faults.jam_expansion != 0;
}

void FaultEffects::step(double seconds) {
    rests_ = true;
    change_temperatures(seconds);
    arm_.set_stuck_joint(joint_of(faults_.following_error));
    collide();
    sink(seconds);
    if (devices_.gripper.slips && devices_.gripper.holds_object()) devices_.gripper.take_object();
}

void FaultEffects::change_temperatures(double seconds) {
    constexpr double kHottest = 60, kRate = 10;  // degrees Celsius above the usual temperature, and per second
    for (size_t i = 0; i < arm_.joint_count(); ++i) {
        const double goal = joint_of(faults_.over_temperature) == i ? kHottest : 0;
        const double left = goal - arm_.states()[i].heat;
        if (left == 0) continue;
        rests_ = false;
        arm_.heat(i, std::clamp(left, -kRate * seconds, kRate * seconds));
    }
}

// The collision stage goes from 1, which only a strong blow reaches, to 8; 0 is off.
void FaultEffects::collide() {
    constexpr int kNewtonsPerStage = 25;
    const int stage = arm_.collision_stage;
    const bool noticed = stage > 0 && faults_.collision > (8 - stage) * kNewtonsPerStage;
    const bool moves = std::any_of(arm_.states().begin(), arm_.states().end(),
                                   [](const JointState& state) { return state.speed != 0; });
    if (noticed && moves && arm_.arm_error() == 0) arm_.set_errors(kCollision, arm_.system_error());
}

// Friction is viscous: the speed grows with the lever of the weight.
void FaultEffects::sink(double seconds) {
    constexpr double kRate = 60;                    // degrees per second and metre of the lever
    constexpr double kTurn = 0.01, kAtRest = 1e-5;  // degrees
    const std::optional<size_t> joint = joint_of(faults_.brake_slip);
    if (!joint || !arm_.motion().idle() || (arm_.powered() && arm_.states()[*joint].enabled)) return;
    JointVector joints = arm_.joints(), above(joints), below(joints);
    above[*joint] += kTurn;
    below[*joint] -= kTurn;
    const double lever = (height(above) - height(below)) / (2 * kTurn * kRadians);
    const JointLimits& range = arm_.range()[*joint];
    joints[*joint] = std::clamp(joints[*joint] - kRate * lever * seconds, range.min_pos / 1e3, range.max_pos / 1e3);
    if (std::abs(joints[*joint] - arm_.joints()[*joint]) < kAtRest) return;
    rests_ = false;
    arm_.drag_to(joints);
}

// Of the centre of gravity, in metres: all parts weigh the same.
double FaultEffects::height(const JointVector& joints) const {
    const std::vector<KDL::Frame> frames = arm_.frames_at(joints);
    const KDL::Frame room_T_base = tool_.room_T_base();
    double sum = 0;
    for (const KDL::Frame& frame : frames) sum += (room_T_base * frame.p).z();
    return sum / static_cast<double>(frames.size());
}

}  // namespace sim
