// Pick and place: open the gripper, move to a part, grip it, check that it is held, carry it to the shelf and release
// it. Start the simulator with --object 300 to provide a part.
#include "check.h"

namespace {

constexpr int kFingerSpeed = 1000, kGripForce = 200;  // in the gripper's own units
constexpr int kPatience = 10;                         // seconds

bool move_to(const Arm& arm, const char* where, const float (&joint)[7]) {
    std::printf("moving %s\n", where);
    return succeeded("The move", Movej_Cmd(arm, joint, 80, 0, 0, true));
}

bool open_gripper(const Arm& arm) {
    return succeeded("Opening the gripper", Set_Gripper_Release(arm, kFingerSpeed, true, kPatience));
}

// Grips. The fingers stop on a part or close without one; both count as an arrival.
bool grip(const Arm& arm, bool& holds_part) {
    GripperState gripper{};
    if (!succeeded("Gripping", Set_Gripper_Pick(arm, kFingerSpeed, kGripForce, true, kPatience)) ||
        !succeeded("Reading the gripper", Get_Gripper_State(arm, &gripper))) {
        return false;
    }
    holds_part = gripper.actpos > 0;
    std::printf("the fingers are at %d and press with %d: %s\n", gripper.actpos, gripper.current_force,
                holds_part ? "a part" : "nothing there");
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    const auto [address, port, arm_mode] = arguments(argc, argv);
    const Arm arm(address, port, arm_mode);
    if (!arm.is_open()) return 1;

    const float above_part[7] = {20, 10, 70, 0, 80, 0, 0}, at_part[7] = {20, 25, 75, 0, 70, 0, 0};
    const float above_shelf[7] = {-30, 10, 60, 0, 80, 0, 0}, at_shelf[7] = {-30, 15, 65, 0, 80, 0, 0};

    bool holds_part = false;
    if (!open_gripper(arm) || !move_to(arm, "above the part", above_part) ||
        !move_to(arm, "down to the part", at_part) || !grip(arm, holds_part) || !move_to(arm, "up again", above_part)) {
        return 1;
    }
    if (!holds_part) return open_gripper(arm) ? 0 : 1;
    const bool placed = move_to(arm, "above the shelf", above_shelf) && move_to(arm, "down to the shelf", at_shelf) &&
                        open_gripper(arm) && move_to(arm, "away", above_shelf);
    return placed ? 0 : 1;
}
