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

constexpr int32_t kStallPollMs = 50;
constexpr double kStillDegrees = 0.1;
constexpr int kMostFailedReads = 5;
constexpr int kMostStillPolls = 4;

// Copies a reply that is already in the mailbox and leaves it there; otherwise queries the arm.
int read_angles(const Connection& connection, Angles& angles) {
    Mailbox mailbox(Arm_Current_State_Cmd);
    if (has_arrived(mailbox, connection) && !is_handle(connection.socket())) {
        ArmStateReply reply;
        mailbox.copy(connection.slot(), &reply);
        copy_joints(connection.socket(), reply.joint, angles.data());
        return ZK_OK;
    }
    Pose pose{};
    uint16_t arm_err = 0, sys_err = 0;
    return Get_Current_Arm_State(connection.socket(), angles.data(), &pose, &arm_err, &sys_err);
}

bool within_stillness(const Angles& a, const Angles& b) {
    return std::equal(a.begin(), a.end(), b.begin(), [](float x, float y) {
        return std::fabs(static_cast<double>(x) - static_cast<double>(y)) <= kStillDegrees;
    });
}

class StallDetector {
 public:
    explicit StallDetector(const Connection& connection) : connection_(connection), since_(Get_Program_Runtime()) {}

    int wait() {
        for (;;) {
            const bool reported = has_arrived(Move_Cmd, connection_);
            if (const int status = connection_.status()) return status;
            if (reported) {
                const int status = report(connection_.slot());
                return connection_.is_open() ? status : int(ZK_NOT_CONNECTED);
            }
            if (elapsed_since(since_) >= read(m_nOutTime_max)) {
                Angles angles{};
                const int status = read_angles(connection_, angles);
                if (status && !is_held_by_file(connection_, status)) {
                    if (fails_++ > kMostFailedReads) return status;
                    continue;
                }
                if (!status && stands_still(angles)) return ZK_NO_TRAJECTORY;
            }
            pause(connection_, kStallPollMs, Move_Cmd);
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
        return !moved && ++still_ > kMostStillPolls;
    }

    Connection connection_;
    int32_t since_;
    Angles last_{};
    int fails_ = 0;
    int still_ = 0;
};

}  // namespace

int move_until_still(const Request& request) {
    const Wait connection(request.socket());
    if (const int status = connection.claim(Move_Cmd, Sharing::kAlone)) return status;
    Mailbox(Move_Cmd).clear(connection.slot());
    if (const int status = post(request)) return status;
    return StallDetector(connection).wait();
}

}  // namespace zk
