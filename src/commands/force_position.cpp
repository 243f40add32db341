// Force-position moves: set-points with forces straight to the socket, and the reports that come back.
#include <cmath>

#include "zk/replies/motion.h"

#include "commands/float_product.h"
#include "commands/set_point.h"
#include "connection/exchange.h"
#include "connection/pending.h"
#include "connection/wrappers.h"
#include "zk/replies/pending.h"

using namespace zk;

AckReply Start_Force_Position_Move_Cmd[ZK_SLOTS];
ZK_API int Start_Force_Position_Move(ArmSocket s, bool block) {
    return guarded(block ? Start_Force_Position_Move_Block : Start_Force_Position_Move_NonBlock, s);
}
ZK_API int Start_Force_Position_Move_Block(ArmSocket s) {
    return set({s, "Start_Force_Position_Move"}, Start_Force_Position_Move_Cmd);
}
ZK_API int Start_Force_Position_Move_NonBlock(ArmSocket s) { return post({s, "Start_Force_Position_Move"}); }

AckReply Stop_Force_Position_Move_Cmd[ZK_SLOTS];
ZK_API int Stop_Force_Position_Move(ArmSocket s, bool block) {
    return guarded(block ? Stop_Force_Position_Move_Block : Stop_Force_Position_Move_NonBlock, s);
}
ZK_API int Stop_Force_Position_Move_Block(ArmSocket s) {
    return set({s, "Stop_Force_Position_Move"}, Stop_Force_Position_Move_Cmd);
}
ZK_API int Stop_Force_Position_Move_NonBlock(ArmSocket s) { return post({s, "Stop_Force_Position_Move"}); }

namespace {

// Tests for a file transfer and null pointers, and raises SuspendQueue.
template <class Form, class... Arguments>
int streamed(Form form, Arguments... arguments) {
    return checked([form](auto... values) { return suspended(form, values...); }, arguments...);
}

// The reply goes to the callback, not to the pending list, so the wait ends in 7.
int waited_for(const Request& request) {
    return pending(request, ZK_KEY_FORCE_REPORT, [](const char*) { return int(ZK_OK); });
}

struct Control {
    uint8_t sensor;
    uint8_t mode;
    int32_t dir;
    float force;
};

Request& control(Request& request, const Control& c) {
    return request.number("sensor", c.sensor)
        .number("mode", c.mode)
        .number("dir", c.dir)
        .number("force", float_product(c.force, 10.0f));
}

// The seventh joint loses its fraction: it becomes an integer before it is scaled, which wraps on a socket.
int32_t seventh(ArmSocket s, float degrees) {
    if (is_handle(s)) return thousandths(std::trunc(degrees));
    return static_cast<int32_t>(static_cast<uint32_t>(truncated(degrees)) * 1000u);
}

Request force_move(ArmSocket s, const float* joint) {
    int32_t wire[7];
    for (int i = 0; i < 6; ++i) wire[i] = thousandths(joint[i]);
    const int joints = request_joint_count(s);
    if (joints == 7) wire[6] = seventh(s, joint[6]);
    return Request(s, "Force_Position_Move").numbers("joint", wire, joints);
}

}  // namespace

ZK_API int Force_Position_Move_Pose(ArmSocket s, uint8_t sensor, uint8_t mode, int32_t dir, uint8_t follow, Pose pose,
                                    float force) {
    return streamed(Force_Position_Move_Pose_NonBlock, s, sensor, mode, dir, follow, pose, force);
}
ZK_API int Force_Position_Move_Pose_NonBlock(ArmSocket s, uint8_t sensor, uint8_t mode, int32_t dir, uint8_t follow,
                                             Pose pose, float force) {
    Request request(s, "Force_Position_Move");
    return stream(control(pose_or_quat(request, pose), {sensor, mode, dir, force}).boolean("follow", follow != 0));
}
ZK_API int Force_Position_Move_Pose_Block(ArmSocket s, uint8_t sensor, uint8_t mode, int32_t dir, Pose pose,
                                          float force) {
    Request request(s, "Force_Position_Move");
    return waited_for(control(request.pose("pose", pose), {sensor, mode, dir, force}));
}

ZK_API int Force_Position_Move_Joint(ArmSocket s, const float* joint, uint8_t sensor, uint8_t mode, int32_t dir,
                                     uint8_t follow, float force) {
    return streamed(Force_Position_Move_Joint_NonBlock, s, joint, sensor, mode, dir, follow, force);
}
ZK_API int Force_Position_Move_Joint_NonBlock(ArmSocket s, const float* joint, uint8_t sensor, uint8_t mode,
                                              int32_t dir, uint8_t follow, float force) {
    Request request = force_move(s, joint);
    return stream(control(request, {sensor, mode, dir, force}).boolean("follow", follow != 0));
}
ZK_API int Force_Position_Move_Joint_Block(ArmSocket s, const float* joint, uint8_t sensor, uint8_t mode, int32_t dir,
                                           float force) {
    Request request = force_move(s, joint);
    return waited_for(control(request, {sensor, mode, dir, force}));
}

ZK_API int Force_Position_Move(ArmSocket s, ForcePositionMove move) {
    return streamed(Force_Position_Move_NonBlock, s, move);
}
ZK_API int Force_Position_Move_NonBlock(ArmSocket s, ForcePositionMove move) {
    Request request(s, "Force_Position_Move");
    request.number("sensor", move.sensor).number("mode", move.mode).boolean("follow", move.follow != 0);
    if (move.flag == 1) {
        pose_or_quat(request, move.pose);
    } else {
        request.joints("joint", move.joint);
    }
    return stream(held_directions(request, move.desired_force, move.control_mode, move.limit_vel));
}

ZK_API int Parser_Force_Position_Move(ArmSocket s, const char* text, float* joint, float* all_direction_force,
                                      int32_t* force, uint16_t* arm_err) {
    Reply reply(text);
    if (!reply.require(bool(reply.find("state")), ZK_BAD_REPLY)) return reply.status();
    const Item joints = reply.find("joint"), forces = reply.find("all_direction_force");
    if (joints.is_array()) plain_numbers(joints, joint_count(s), joint);
    if (forces.is_array()) plain_numbers(forces, joint_count(s), all_direction_force);
    if (const Item error = reply.find("arm_err")) *arm_err = static_cast<uint16_t>(error.integer());
    if (const Item value = reply.find("force")) *force = value.integer() / 10;
    reply.require(joints.is_array(), ZK_WRONG_TYPE);
    return reply.status();
}
