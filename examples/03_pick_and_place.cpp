// Pick and place in C++: move above a part, reach down, grip it, and put it on the shelf if there was one. Start the
// simulator with --object 300 to provide a part.
#include <cstdio>
#include <exception>
#include <zk/arm.hpp>

#include "check.h"

using namespace zk::literals;

int main(int argc, char** argv) try {
    const auto [address, port, arm_mode] = arguments(argc, argv);
    const zk::Arm arm(address, port, {.arm_mode = arm_mode, .stop_at_exit = true});

    const zk::Rotation down = zk::Rotation::about_x(180_deg);
    const zk::Pose part({350_mm, 100_mm, 150_mm}, down), shelf({300_mm, -200_mm, 200_mm}, down);
    const auto above = [](const zk::Pose& place) { return place.moved(0_mm, 0_mm, -100_mm); };

    // Goes to a place, lets the gripper do its work there, and leaves.
    const auto visit = [&](const zk::Pose& place, const auto& work) {
        arm.move_pose(above(place), {.speed = 80_percent}).wait().value();
        arm.move_line(place, {.speed = 30_percent}).wait().value();
        work();
        arm.move_line(above(place), {.speed = 60_percent}).wait().value();
    };
    const zk::Gripper gripper = arm.gripper();
    gripper.release().value();
    visit(part, [&] { gripper.pick({.speed = 1000, .force = 200}).value(); });
    const int opening = gripper.position().value();
    std::printf("the fingers are at %d: %s\n", opening, opening > 0 ? "a part" : "nothing there");
    if (opening > 0) visit(shelf, [&] { gripper.release().value(); });
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
