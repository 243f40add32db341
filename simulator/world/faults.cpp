#include "world/faults.h"

#include <string>

#include "wire/refusal.h"

namespace sim {
namespace {

// What a number counts, and the highest one.
struct Takes {
    const char* what;
    int highest;
};
constexpr Takes kMilliseconds{"ms", 60'000}, kPercent{"percent", 100}, kBytes{"bytes", 60'000},
    kClients{"clients", 1000}, kAnyJoint{"joint", 7}, kNewtons{"newtons", 1000}, kSwitch{"0 or 1", 1};

template <int ArmFaults::*fault>
int& of_arm(FaultNumbers& numbers) {
    return numbers.arm.*fault;
}

template <int WireFaults::*fault>
int& of_wire(FaultNumbers& numbers) {
    return numbers.wire.*fault;
}

template <int Disorder::*fault>
int& of_replies(FaultNumbers& numbers) {
    return numbers.wire.replies.*fault;
}

template <int Disorder::*fault>
int& of_push(FaultNumbers& numbers) {
    return numbers.wire.push.*fault;
}

FaultRow fault_row(const char* name, const Takes& takes, int& (*number)(FaultNumbers&), const char* effect) {
    return {name, takes.what, takes.highest, number, effect};
}

void demand_joint(const char* name, int joint, size_t joint_count) {
    if (joint > static_cast<int>(joint_count))
        throw Refusal(std::string(name) + ": the arm has " + std::to_string(joint_count) + " joints");
}

void demand_loss_alone(const Disorder& way, int garbage, const char* prefix) {
    if (way.drop == 100 && (way.twice > 0 || way.overtaken > 0 || garbage > 0))
        throw Refusal(std::string(prefix) + "drop: what is always lost cannot be disturbed in another way");
}

}  // namespace

const std::vector<FaultRow>& fault_rows() {
    static const std::vector<FaultRow> kRows{
        fault_row("delay_ms", kMilliseconds, of_replies<&Disorder::delay_ms>, "delay of each reply"),
        fault_row("jitter_ms", kMilliseconds, of_replies<&Disorder::jitter_ms>, "up to this much more"),
        fault_row("drop", kPercent, of_replies<&Disorder::drop>, "replies are lost"),
        fault_row("double", kPercent, of_replies<&Disorder::twice>, "replies are sent twice"),
        fault_row("reorder", kPercent, of_replies<&Disorder::overtaken>,
                  "replies are sent 50 ms late, after later ones"),
        fault_row("garbage", kPercent, of_wire<&WireFaults::garbage>, "a line of other bytes precedes a reply"),
        fault_row("slice_bytes", kBytes, of_wire<&WireFaults::slice_bytes>, "replies leave in pieces of this size"),
        fault_row("slice_delay_ms", kMilliseconds, of_wire<&WireFaults::slice_delay_ms>,
                  "pause between the pieces (1)"),
        fault_row("cut_at", kBytes, of_wire<&WireFaults::cut_at>,
                  "each reply leaves in two pieces, the first of this size"),
        fault_row("join_ms", kMilliseconds, of_wire<&WireFaults::join_ms>, "replies leave together, once in this time"),
        fault_row("silence_ms", kMilliseconds, of_wire<&WireFaults::silence_ms>, "nothing is sent for this time"),
        fault_row("refuse_ms", kMilliseconds, of_wire<&WireFaults::refuse_ms>, "new clients are refused for this time"),
        fault_row("max_clients", kClients, of_wire<&WireFaults::max_clients>,
                  "further clients are disconnected at once (1000)"),
        fault_row("push_delay_ms", kMilliseconds, of_push<&Disorder::delay_ms>, "delay of each datagram"),
        fault_row("push_jitter_ms", kMilliseconds, of_push<&Disorder::jitter_ms>,
                  "up to this much more, so that they overtake one another"),
        fault_row("push_drop", kPercent, of_push<&Disorder::drop>, "datagrams are lost"),
        fault_row("push_double", kPercent, of_push<&Disorder::twice>, "datagrams are sent twice"),
        fault_row("push_reorder", kPercent, of_push<&Disorder::overtaken>, "datagrams are sent 50 ms late"),
        fault_row("over_temperature", kAnyJoint, of_arm<&ArmFaults::over_temperature>,
                  "it heats up; from 80 degrees on it has error 1"),
        fault_row("following_error", kAnyJoint, of_arm<&ArmFaults::following_error>,
                  "it is stuck; a degree behind its path it has error 2"),
        fault_row("brake_slip", kAnyJoint, of_arm<&ArmFaults::brake_slip>, "it sinks while the drive does not hold it"),
        fault_row("collision", kNewtons, of_arm<&ArmFaults::collision>,
                  "the moving arm is struck; error 4100 by the collision stage"),
        fault_row("emergency_stop", kSwitch, of_arm<&ArmFaults::emergency_stop>,
                  "the button is pressed: system error 1"),
        fault_row("power_loss", kSwitch, of_arm<&ArmFaults::power_loss>, "the arm loses its supply"),
        fault_row("jam_gripper", kSwitch, of_arm<&ArmFaults::jam_gripper>, "the gripper is stuck"),
        fault_row("jam_hand", kSwitch, of_arm<&ArmFaults::jam_hand>, "the hand is stuck"),
        fault_row("jam_lift", kSwitch, of_arm<&ArmFaults::jam_lift>, "the lift is stuck"),
        fault_row("jam_expansion", kSwitch, of_arm<&ArmFaults::jam_expansion>, "the expansion axis is stuck"),
        fault_row("grip_loss", kSwitch, of_arm<&ArmFaults::grip_loss>, "the gripper loses what it holds"),
        fault_row("full_disk", kSwitch, of_arm<&ArmFaults::full_disk>, "no file is stored"),
    };
    return kRows;
}

void demand_possible(const FaultNumbers& numbers, size_t joint_count) {
    const ArmFaults& arm = numbers.arm;
    const WireFaults& wire = numbers.wire;
    demand_joint("over_temperature", arm.over_temperature, joint_count);
    demand_joint("following_error", arm.following_error, joint_count);
    demand_joint("brake_slip", arm.brake_slip, joint_count);
    if (arm.brake_slip > 0 && arm.brake_slip == arm.following_error)
        throw Refusal("brake_slip: a joint that is stuck by following_error does not sink");
    if (arm.power_loss != 0 && arm.collision > 0) throw Refusal("collision: an arm without power does not move");
    if (arm.power_loss != 0 && arm.following_error > 0)
        throw Refusal("following_error: an arm without power follows no path");
    if (arm.jam_gripper != 0 && arm.grip_loss != 0)
        throw Refusal("grip_loss: a gripper that is stuck by jam_gripper does not close further");
    if (wire.cut_at > 0 && wire.slice_bytes > 0) throw Refusal("cut_at: replies are in pieces already, by slice_bytes");
    demand_loss_alone(wire.replies, wire.garbage, "");
    demand_loss_alone(wire.push, 0, "push_");
}

}  // namespace sim
