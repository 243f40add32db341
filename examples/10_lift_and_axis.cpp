// Devices of the arm: move the lift to a height and the expansion axis to a position and wait for each; then lower the
// lift without waiting and watch it move.
#include <chrono>
#include <thread>

#include "check.h"

namespace {

constexpr int kHalfSpeed = 50;  // percent

bool read_lift(const Arm& arm, int32_t& height, int32_t& mode) {
    int32_t current = 0;
    uint16_t err_flag = 0;
    if (!succeeded("Reading the lift", Get_Lift_State(arm, &height, &current, &err_flag, &mode))) return false;
    std::printf("    lift at %4d, %s\n", height, mode ? "moving" : "at rest");
    return err_flag == 0;
}

bool read_axis(const Arm& arm, int32_t& pos) {
    int32_t current = 0, mode = 0;
    uint16_t err_flag = 0;
    if (!succeeded("Reading the axis", Expand_Get_State(arm, &pos, &err_flag, &current, &mode))) return false;
    std::printf("    axis at %d\n", pos);
    return err_flag == 0;
}

// Waits until the lift is at rest, at any height.
bool watch_lift(const Arm& arm, int32_t target) {
    int32_t height = 0;
    for (int32_t mode = 1; mode != 0;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        if (!read_lift(arm, height, mode)) return false;
    }
    if (height != target) std::fprintf(stderr, "The lift stopped on its way.\n");
    return height == target;
}

}  // namespace

int main(int argc, char** argv) {
    const auto [address, port, arm_mode] = arguments(argc, argv);
    const Arm arm(address, port, arm_mode);
    if (!arm.is_open()) return 1;

    int32_t height = 0, mode = 0, pos = 0;
    std::printf("raising the lift\n");
    if (!succeeded("Raising", Set_Lift_Height(arm, 300, kHalfSpeed, true)) || !read_lift(arm, height, mode)) return 1;

    std::printf("moving the axis\n");
    if (!succeeded("Moving the axis", Expand_Set_Pos(arm, 40000, kHalfSpeed, true)) || !read_axis(arm, pos)) return 1;
    if (height != 300 || pos != 40000) {
        std::fprintf(stderr, "They are not where they were sent.\n");
        return 1;
    }

    // Its report arrives anyway and stays in the mailbox: the next blocking move of the axis would end by it.
    std::printf("lowering the lift\n");
    if (!succeeded("Lowering", Set_Lift_Height(arm, 0, kHalfSpeed, false)) || !watch_lift(arm, 0)) return 1;
    return 0;
}
