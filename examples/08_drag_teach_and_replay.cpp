// Teach by hand: let an operator drag the arm for a while, move it back to the start, and let it repeat the motion with
// a pause in the middle.
#include <chrono>
#include <cmath>
#include <future>
#include <thread>

#include "check.h"

using namespace std::chrono_literals;

namespace {

bool read_joints(ArmSocket arm, float* joint) { return succeeded("Reading the joints", Get_Joint_Degree(arm, joint)); }

float distance(const float* a, const float* b) {
    float most = 0;
    for (int i = 0; i < libalgo_get_rbt_dof(); ++i) most = std::fmax(most, std::fabs(a[i] - b[i]));
    return most;
}

// Ends the recording on every way out of the scope.
bool teach(ArmSocket arm, std::chrono::seconds duration) {
    if (!succeeded("Starting to teach", Start_Drag_Teach(arm, true))) return false;
    std::printf("Drag the arm; you have %d seconds.\n", static_cast<int>(duration.count()));
    std::this_thread::sleep_for(duration);
    return succeeded("Stopping to teach", Stop_Drag_Teach(arm, true));
}

// The replay takes as long as the teaching. A second thread pauses it for a moment.
bool replay_with_a_pause(ArmSocket arm) {
    auto replay = std::async(std::launch::async, [&] { return Run_Drag_Trajectory(arm, true); });
    std::this_thread::sleep_for(500ms);
    bool paused = false;
    if (replay.wait_for(0s) != std::future_status::ready) {
        paused = succeeded("Pausing", Pause_Drag_Trajectory(arm, true));
        std::printf("Paused for half a second.\n");
        std::this_thread::sleep_for(500ms);
        paused = paused && succeeded("Continuing", Continue_Drag_Trajectory(arm, true));
    }
    return succeeded("The replay", replay.get()) && paused;
}

}  // namespace

int main(int argc, char** argv) {
    const auto [address, port, arm_mode] = arguments(argc, argv);
    const Arm arm(address, port, arm_mode);
    if (!arm.is_open()) return 1;

    float begin[7] = {}, taught[7] = {}, replayed[7] = {};
    if (!read_joints(arm, begin) || !teach(arm, 3s) || !read_joints(arm, taught)) return 1;
    std::printf("Taught a way that ends %.3f degrees from where it began.\n", distance(begin, taught));

    if (!succeeded("Going back", Drag_Trajectory_Origin(arm, true))) return 1;
    if (!replay_with_a_pause(arm) || !read_joints(arm, replayed)) return 1;
    std::printf("The replay ended %.3f degrees from where the teaching did.\n", distance(taught, replayed));
    return distance(taught, replayed) < 0.1f ? 0 : 1;
}
