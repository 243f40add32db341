// A connection of the library to a scripted controller, and helpers to watch the threads of the library.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "support/scripted_controller.h"
#include "zk/connection.h"

namespace zk::test {

// Connects to the controller and takes a slot, without the requests of the start-up. Call ZK_API_Init first.
ArmSocket connect_arm(ScriptedController& controller, int arm_mode = 65);

// A test with a controller and a connection to it.
class ConnectedArm : public testing::Test {
 protected:
    void SetUp() override {
        ZK_API_Init(65, nullptr);
        arm_ = connect_arm(controller_);
    }

    ScriptedController controller_;
    ArmSocket arm_ = 0;
};

// Closes a connection and opens another under the same number and in the same slot.
void reconnect_arm(ScriptedController& controller, ArmSocket arm);

// Access to the library's globals while its threads use them.
template <class T>
T shared(const T& value) {
    return std::atomic_ref<T>(const_cast<T&>(value)).load();
}
template <class T>
void set_shared(T& value, T now) {
    std::atomic_ref<T>(value).store(now);
}

// Waits for a condition that another thread brings about; fails the test when it does not come true.
bool eventually(const std::function<bool()>& condition);

// What the callback of ZK_API_Init got, in order. Each message of the controller that holds "joint_state" makes one
// entry, so that the log shows which messages the receive thread found in the stream, and in which order.
class ReportLog {
 public:
    ReportLog() { current_ = this; }
    ~ReportLog() { current_ = nullptr; }
    ReportLog(const ReportLog&) = delete;
    ReportLog& operator=(const ReportLog&) = delete;

    static void callback(ArmMotionReport report);

    // All reports, once there are so many of them.
    std::vector<ArmMotionReport> wait_for(size_t count);
    // The `result` of each.
    std::vector<int> results(size_t count);

 private:
    static inline std::atomic<ReportLog*> current_{nullptr};
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<ArmMotionReport> reports_;
};

// A message that makes a report with this number as its result, of exactly `size` bytes with its CRLF when that is not
// 0.
std::string report_message(int number, size_t size = 0);

}  // namespace zk::test
