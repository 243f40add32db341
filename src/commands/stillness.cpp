#include "commands/stillness.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "commands/arrival.h"
#include "connection/elapsed.h"
#include "zk/replies/arm_state.h"

namespace zk {
namespace {

using Angles = std::array<float, 7>;

constexpr int32_t kLookMs = 50;
constexpr double kStillDegrees = 0.1;
constexpr int kMostFailedReads = 5;
constexpr int kMostStillLooks = 4;

// An answer that waits in the mailbox serves without being taken; else the arm is asked.
int read_angles(ArmSocket socket, int slot, Angles& angles) {
    Mailbox mailbox(Arm_Current_State_Cmd);
    if (mailbox.count(slot) > 0) {
        ArmStateReply reply;
        mailbox.copy(slot, &reply);
        copy_joints(socket, reply.joint, angles.data());
        return ZK_OK;
    }
    Pose pose{};
    uint16_t arm_err = 0, sys_err = 0;
    return Get_Current_Arm_State(socket, angles.data(), &pose, &arm_err, &sys_err);
}

bool within_stillness(const Angles& a, const Angles& b) {
    return std::equal(a.begin(), a.end(), b.begin(), [](float x, float y) {
        return std::fabs(static_cast<double>(x) - static_cast<double>(y)) <= kStillDegrees;
    });
}

class StallDetector {
 public:
    explicit StallDetector(ArmSocket socket) : socket_(socket), since_(Get_Program_Runtime()) {}

    int wait() {
        const Mailbox reports(Move_Cmd);
        for (;;) {
            const int slot = slot_of(socket_);
            if (slot < 0) return ZK_NOT_CONNECTED;
            if (reports.count(slot) > 0) return report(slot);
            if (elapsed_since(since_) >= read(m_nOutTime_max)) {
                Angles angles{};
                if (const int status = read_angles(socket_, slot, angles)) {
                    if (fails_++ > kMostFailedReads) return status;
                    continue;
                }
                if (stands_still(angles)) return ZK_NO_TRAJECTORY;
            }
            sleep_cp(kLookMs);
        }
    }

 private:
    static int report(int slot) {
        const MoveReport report = take_report(slot);
        return is_of(report, Device::kArm) ? report.result : int(ZK_OTHER_DEVICE);
    }

    bool stands_still(const Angles& angles) {
        const bool moved = !within_stillness(angles, last_);
        last_ = angles;
        if (moved) {
            since_ = Get_Program_Runtime();
            still_ = 0;
        }
        return !moved && ++still_ > kMostStillLooks;
    }

    ArmSocket socket_;
    int32_t since_;
    Angles last_{};
    int fails_ = 0;
    int still_ = 0;
};

}  // namespace

int move_until_still(const Request& request) {
    const int slot = slot_of(request.socket());
    if (slot < 0) return ZK_NOT_CONNECTED;
    Mailbox(Move_Cmd).clear(slot);
    post(request);
    return StallDetector(request.socket()).wait();
}

}  // namespace zk
