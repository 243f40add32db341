#pragma once

#include <cstddef>
#include <vector>

#include "wire/disturbance.h"

namespace sim {

// Faults of the arm and of what is attached to it; 0: none. Joints count from 1.
struct ArmFaults {
    int over_temperature = 0, following_error = 0, brake_slip = 0;  // the joint
    int collision = 0;                                              // newtons
    int emergency_stop = 0, power_loss = 0;                         // 0 or 1, as all below
    int jam_gripper = 0, jam_hand = 0, jam_lift = 0, jam_expansion = 0;
    int grip_loss = 0;
    int full_disk = 0;
};

// All faults that are numbers.
struct FaultNumbers {
    WireFaults wire;
    ArmFaults arm;
};

// A fault by its name in options and requests.
struct FaultRow {
    const char* name;
    const char* takes;
    int highest;
    int& (*number)(FaultNumbers&);
    const char* effect;
};
const std::vector<FaultRow>& fault_rows();

// Throws Refusal for a joint that the arm does not have, and for faults that exclude each other.
void demand_possible(const FaultNumbers& numbers, size_t joint_count);

}  // namespace sim
