#include "support/arm.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <thread>

#include "support/socket.h"

namespace zk::test {

static int connected_socket(ScriptedController& controller) {
    const int descriptor = checked(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
    const sockaddr_in address = loopback(controller.port());
    checked(connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), "connect");
    controller.wait_for_connection_of(descriptor);
    return descriptor;
}

void reconnect_arm(ScriptedController& controller, ArmSocket arm) {
    const int slot = Get_Socket_Idx(arm);
    const int descriptor = connected_socket(controller);
    Arm_Socket_Close(arm);
    checked(dup3(descriptor, arm, O_CLOEXEC), "dup3");
    close(descriptor);
    EXPECT_EQ(Init_Socket_Joint(65, arm), 0);
    EXPECT_EQ(Get_Socket_Idx(arm), slot);
}

ArmSocket connect_arm(ScriptedController& controller, int arm_mode) {
    const int descriptor = connected_socket(controller);
    if (Init_Socket_Joint(arm_mode, descriptor) != 0) throw std::runtime_error("no slot is free");
    return descriptor;
}

bool eventually(const std::function<bool()>& condition) {
    const auto start = std::chrono::steady_clock::now();
    while (!condition()) {
        if (std::chrono::steady_clock::now() - start > kDeadline) {
            ADD_FAILURE() << "the condition did not become true";
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void ReportLog::callback(ArmMotionReport report) {
    ReportLog* const log = current_;
    if (!log) return;
    const std::lock_guard lock(log->mutex_);
    log->reports_.push_back(report);
    log->changed_.notify_all();
}

std::vector<ArmMotionReport> ReportLog::wait_for(size_t count) {
    std::unique_lock lock(mutex_);
    if (!changed_.wait_for(lock, kDeadline, [&] { return reports_.size() >= count; })) {
        ADD_FAILURE() << "only " << reports_.size() << " of " << count << " reports came";
    }
    return reports_;
}

std::vector<int> ReportLog::results(size_t count) {
    std::vector<int> numbers;
    for (const ArmMotionReport& report : wait_for(count)) numbers.push_back(report.result);
    return numbers;
}

std::string report_message(int number, size_t size) {
    const std::string start = R"({"state":"joint_state","arm_err":)" + std::to_string(number);
    if (size == 0) return line(start + "}");
    const size_t framing = start.size() + std::string(R"(,"pad":""})").size() + 2;
    return line(start + R"(,"pad":")" + std::string(size - framing, 'x') + R"("})");
}

}  // namespace zk::test
