// Streamed motion: set-points straight to the socket, at the caller's own rate, and the reports that come back.
#include "zk/replies/motion.h"

#include <cstdio>

#include "commands/set_point.h"
#include "commands/twin.h"
#include "connection/exchange.h"
#include "connection/pending.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/replies/pending.h"

using namespace zk;

ZK_API int Parser_Movej_CANFD(ArmSocket s, const char* text, Pose* pose, float* joint, uint16_t* arm_err) {
    Reply reply(text);
    const Item error = reply.find("arm_err");
    if (!reply.require(bool(error), ZK_BAD_REPLY)) return reply.status();
    *arm_err = static_cast<uint16_t>(error.integer());
    if (const Item values = reply.find("pose"); values.is_array() && values.size() >= 6) {
        float numbers[6];
        plain_numbers(values, 6, numbers);
        pose->position = {numbers[0], numbers[1], numbers[2]};
        pose->euler = {numbers[3], numbers[4], numbers[5]};
    }
    plain_numbers(reply.find("joint"), joint_count(s), joint);
    return error.integer();
}
ZK_TWIN(Parser_Movej_CANFD);

namespace {

// Returns 0 even when nothing was written.
int sent(const Request& request) {
    const int status = stream(request);
    return status == ZK_SEND_FAILED ? int(ZK_OK) : status;
}

}  // namespace

ZK_API int Movej_CANFD(ArmSocket s, const float* joint, uint8_t follow, float expand) {
    return checked(Movej_CANFD_NonBlock, s, joint, follow, expand);
}
ZK_API int Movej_CANFD_NonBlock(ArmSocket s, const float* joint, uint8_t follow, float expand) {
    const int status = sent(Request(s, "movej_canfd")
                                .joints("joint", joint)
                                .boolean("follow", follow != 0)
                                .number("expand", thousandths(expand)));
    std::fflush(stdout);
    return status;
}
// The reply goes to the callback, not to the pending list, so it ends in 7.
ZK_API int Movej_CANFD_Block(ArmSocket s, const float* joint) {
    return pending(Request(s, "movej_canfd").joints("joint", joint), ZK_KEY_JOINT_REPORT,
                   [](const char*) { return int(ZK_OK); });
}

ZK_API int Movep_CANFD(ArmSocket s, uint8_t follow, Pose pose) {
    return guarded(Movep_CANFD_NonBlock, s, follow, pose);
}
ZK_API int Movep_CANFD_NonBlock(ArmSocket s, uint8_t follow, Pose pose) {
    Request request(s, "movep_canfd");
    return sent(pose_or_quat(request, pose).boolean("follow", follow != 0));
}
// The blocking form always sends the quaternion, in thousandths, and ends in 7 too.
ZK_API int Movep_CANFD_Block(ArmSocket s, uint8_t follow, Pose pose) {
    Request request(s, "movep_canfd");
    return pending(quaternion_pose(request, pose, thousandths).boolean("follow", follow != 0), ZK_KEY_POSE_REPORT,
                   [](const char*) { return int(ZK_OK); });
}

ZK_API int Movej_Follow(ArmSocket s, const float* joint) { return checked(Movej_Follow_NonBlock, s, joint); }
ZK_API int Movej_Follow_NonBlock(ArmSocket s, const float* joint) {
    const int status = sent(Request(s, "movej_follow").joints("joint", joint));
    std::fflush(stdout);
    return status;
}

ZK_API int Movep_Follow(ArmSocket s, Pose pose) { return guarded(Movep_Follow_NonBlock, s, pose); }
ZK_API int Movep_Follow_NonBlock(ArmSocket s, Pose pose) {
    Request request(s, "movep_follow");
    return sent(pose_or_quat(request, pose));
}
