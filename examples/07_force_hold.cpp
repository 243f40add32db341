// Press on a table: zero the force sensor in the air, let the controller press down with five newtons, and release.
//
// The arm needs a six-axis force sensor and a surface less than three centimetres below its tool. With the simulator:
// zk_simulator --model ZK65-6F --wall 0,0,HEIGHT,0,0,1,5000, in metres above the base of the arm.
#include <chrono>
#include <cmath>
#include <thread>

#include "check.h"

using namespace std::chrono_literals;

namespace {

constexpr int kNewtons = 5;

// The force on the tool along z of the work frame.
bool read_force(ArmSocket arm, float& force) {
    float measured[6], zeroed[6], in_work[6], in_tool[6];
    if (!succeeded("Reading the force", Get_Force_Data(arm, measured, zeroed, in_work, in_tool))) return false;
    force = in_work[2];
    return true;
}

// The tool moves down through the air before it meets the table. Ten readings in a row within half a newton count as
// pressing.
bool wait_for_pressure(ArmSocket arm) {
    const auto deadline = std::chrono::steady_clock::now() + 20s;
    for (int steady = 0; steady < 10;) {
        float force = 0;
        if (!read_force(arm, force)) return false;
        steady = std::fabs(force - kNewtons) < 0.5f ? steady + 1 : 0;
        if (std::chrono::steady_clock::now() > deadline) {
            std::fprintf(stderr, "The table presses back with %.2f N: is there one?\n", force);
            return false;
        }
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    const auto [address, port, arm_mode] = arguments(argc, argv);
    const Arm arm(address, port, arm_mode);
    if (!arm.is_open()) return 1;

    float force = 0;
    if (!succeeded("Zeroing the sensor", Clear_Force_Data(arm, true)) || !read_force(arm, force)) return 1;
    std::printf("In the air the sensor feels %.2f N.\n", force);

    const int status = Set_Force_Postion(arm, ZK_SENSOR_SIX_AXIS, ZK_FORCE_IN_WORK_FRAME, ZK_FORCE_Z, -kNewtons, true);
    if (!succeeded("Starting to press", status)) return 1;
    const bool pressing = wait_for_pressure(arm) && read_force(arm, force);
    if (pressing) std::printf("The table presses back with %.2f N.\n", force);
    return succeeded("Letting go", Stop_Force_Postion(arm, true)) && pressing ? 0 : 1;
}
