// Streaming at the caller's rate: a slow swing of all joints at 200 set-points per second, each written to the socket
// at once. Prints the jitter of the loop and the tracking error from the real-time stream.
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

constexpr auto kPeriod = 5ms;
constexpr float kAmplitude = 3;          // degrees
constexpr float kSecondsOfASwing = 5;    // about
constexpr float kRestTolerance = 0.01f;  // degrees from the last set-point, in the end

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

// Collects what the callbacks receive while the loop runs.
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

    // Prints the tracking error and the number of followed and refused set-points. The error also depends on the host's
    // load, so a large one is no failure. A refused set-point is one.
    bool report(size_t sent) {
        const std::lock_guard lock(mutex_);
        print("tracking error", "deg", errors_);
        std::printf("set-points       %zu sent, %d followed, %d refused\n", sent, followed_, refused_);
        if (errors_.empty()) std::fprintf(stderr, "The real-time stream sent nothing.\n");
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

// The joints after a share of a swing: each moves by twice the amplitude toward its zero and back, from rest to rest.
Joints swing(const Joints& start, float turns) {
    Joints joints = start;
    const float way = kAmplitude * (1 - std::cos(6.2831853f * turns));
    for (float& joint : joints) joint += joint > 0 ? -way : way;
    return joints;
}

// Streams whole swings and returns the last set-point. Deadlines are absolute, so that one late set-point does not
// delay the next. The periods show the jitter.
Joints stream(ArmSocket arm, const Joints& start, int seconds, std::vector<double>& periods) {
    const long count = seconds * (1s / kPeriod);
    const float swings = std::fmax(1, std::round(static_cast<float>(seconds) / kSecondsOfASwing));
    periods.reserve(static_cast<size_t>(count));
    Joints joints = start;
    Clock::time_point due = Clock::now(), before = due;
    for (long i = 1; i <= count; ++i) {
        std::this_thread::sleep_until(due += kPeriod);
        joints = swing(start, swings * static_cast<float>(i) / static_cast<float>(count));
        watch.sent(joints);
        Movej_CANFD(arm, joints.data(), 1, 0);
        const Clock::time_point now = Clock::now();
        periods.push_back(std::chrono::duration<double, std::milli>(now - before).count());
        before = now;
    }
    return joints;
}

// Replies arrive after the reports of all set-points.
bool comes_to_rest_at(ArmSocket arm, const Joints& target, int joints) {
    Joints position{};
    for (int looks = 0; looks < 50; ++looks) {
        if (!succeeded("Reading the joints", Get_Joint_Degree(arm, position.data()))) return false;
        if (distance(position, target, joints) <= kRestTolerance) return true;
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

    std::printf("streaming for %d s, a set-point each %d ms\n", seconds, static_cast<int>(kPeriod / 1ms));
    std::vector<double> periods;
    const Joints last = stream(arm, start, seconds, periods);
    print("period", "ms", periods);
    const bool rested = comes_to_rest_at(arm, last, joints);
    return watch.report(periods.size()) && rested ? 0 : 1;
}
