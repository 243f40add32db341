// Streaming at the caller's own rate: a slow swing of all joints at 200 set-points a second, every one written to the
// socket at once. Tells how even the loop was, and how closely the arm followed as the real-time stream shows it.
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <mutex>
#include <thread>
#include <vector>

#include "check.h"

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Joints = std::array<float, 7>;

namespace {

constexpr auto period = 5ms;
constexpr float amplitude = 3;           // degrees
constexpr float seconds_of_a_swing = 5;  // about
constexpr float rests = 0.01f;           // degrees from the last set-point, in the end

float distance(const Joints& a, const Joints& b, int joints) {
    float most = 0;
    for (int i = 0; i < joints; ++i) most = std::fmax(most, std::fabs(a[i] - b[i]));
    return most;
}

double percentile(std::vector<double> values, double fraction) {
    if (values.empty()) return 0;
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(fraction * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

void print(const char* what, const char* unit, const std::vector<double>& values) {
    std::printf("%-16s p50 %7.3f  p99 %7.3f  max %7.3f %s\n", what, percentile(values, 0.5), percentile(values, 0.99),
                percentile(values, 1), unit);
}

// What the library's threads tell while the loop runs.
class Watch {
 public:
    void begin(const Joints& start, int joints) {
        newest_ = start;
        joints_ = joints;
    }
    void sent(const Joints& set_point) {
        const std::lock_guard lock(mutex_);
        newest_ = set_point;
    }
    void reported(const ArmMotionReport& report) {
        const std::lock_guard lock(mutex_);
        (report.result == 0 ? followed_ : refused_) += 1;
    }
    void seen(const RobotStatus& status) {
        const std::lock_guard lock(mutex_);
        if (status.errCode != ZK_OK) return;
        Joints position;
        std::copy_n(status.joint_position, position.size(), position.begin());
        errors_.push_back(distance(position, newest_, joints_));
    }

    // The distances from the newest set-point, and what became of the set-points. How far behind the arm was tells of
    // the host's load as much as of the arm, so that it is no failure; a refused set-point is one.
    bool tell(size_t sent) {
        const std::lock_guard lock(mutex_);
        print("tracking error", "deg", errors_);
        std::printf("set-points       %zu sent, %d followed, %d refused\n", sent, followed_, refused_);
        if (errors_.empty()) std::fprintf(stderr, "The real-time stream showed nothing.\n");
        if (refused_ > 0) std::fprintf(stderr, "The controller refused set-points.\n");
        if (followed_ == 0) std::fprintf(stderr, "The controller followed no set-point.\n");
        return refused_ == 0 && followed_ > 0 && !errors_.empty();
    }

 private:
    std::mutex mutex_;
    int joints_ = 0;
    Joints newest_{};
    std::vector<double> errors_;
    int followed_ = 0, refused_ = 0;
};
Watch watch;

// Where the swing is after a share of it: each joint goes twice the amplitude toward its zero and back, from rest to
// rest.
Joints swing(const Joints& start, float turns) {
    Joints joints = start;
    const float way = amplitude * (1 - std::cos(6.2831853f * turns));
    for (float& joint : joints) joint += joint > 0 ? -way : way;
    return joints;
}

// Streams whole swings and gives the last set-point. Deadlines are absolute, so that one late set-point delays no
// other; how late they were shows in the periods.
Joints stream(ArmSocket arm, const Joints& start, int seconds, std::vector<double>& periods) {
    const long count = seconds * (1s / period);
    const float swings = std::fmax(1, std::round(static_cast<float>(seconds) / seconds_of_a_swing));
    periods.reserve(static_cast<size_t>(count));
    Joints joints = start;
    Clock::time_point due = Clock::now(), before = due;
    for (long i = 1; i <= count; ++i) {
        std::this_thread::sleep_until(due += period);
        joints = swing(start, swings * static_cast<float>(i) / static_cast<float>(count));
        watch.sent(joints);
        Movej_CANFD(arm, joints.data(), 1, 0);
        const Clock::time_point now = Clock::now();
        periods.push_back(std::chrono::duration<double, std::milli>(now - before).count());
        before = now;
    }
    return joints;
}

// The answers come behind the reports of all set-points.
bool comes_to_rest_at(ArmSocket arm, const Joints& target, int joints) {
    Joints position{};
    for (int looks = 0; looks < 50; ++looks) {
        if (!succeeded("Reading the joints", Get_Joint_Degree(arm, position.data()))) return false;
        if (distance(position, target, joints) <= rests) return true;
        std::this_thread::sleep_for(100ms);
    }
    std::fprintf(stderr, "The arm rests %.3f degrees from the last set-point.\n", distance(position, target, joints));
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    int seconds = 10;
    const auto [address, port, arm_mode] = arguments(argc, argv, &seconds);
    const Arm arm(address, port, arm_mode, [](ArmMotionReport report) { watch.reported(report); });
    if (!arm.is_open()) return 1;
    Joints start{};
    if (!succeeded("Reading the joints", Get_Joint_Degree(arm, start.data()))) return 1;
    const int joints = libalgo_get_rbt_dof();
    watch.begin(start, joints);
    Realtime_Arm_Joint_State([](RobotStatus status) { watch.seen(status); });

    std::printf("streaming for %d s, a set-point each %d ms\n", seconds, static_cast<int>(period / 1ms));
    std::vector<double> periods;
    const Joints last = stream(arm, start, seconds, periods);
    print("period", "ms", periods);
    const bool rested = comes_to_rest_at(arm, last, joints);
    return watch.tell(periods.size()) && rested ? 0 : 1;
}
