// The gripper of two fingers.
#include "commands/arrival.h"
#include "commands/twin.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/replies/file_transfer.h"
#include "zk/replies/gripper_and_hand.h"
#include "zk/replies/joint_configuration.h"

using namespace zk;

namespace {

Request release(ArmSocket s, int32_t speed) { return Request(s, "set_gripper_release").number("speed", speed); }

Request grip(ArmSocket s, const char* command, int32_t speed, int32_t force) {
    return Request(s, command).number("speed", speed).number("force", force);
}

Request position(ArmSocket s, int32_t opening) {
    return Request(s, "set_gripper_position").number("position", opening);
}

int arrived(const Request& request, int32_t timeout) {
    return move_device(request, Set_Gripper_Release_Cmd,
                       {.device = Device::kGripper, .limit = int64_t{timeout} * 1000});
}

// Waits for the acknowledgement unless the timeout is 0, but not for as long as the timeout.
int accepted(const Request& request, int32_t timeout) {
    if (timeout == 0) return post(request);
    return set(request, Set_Gripper_Release_Cmd, {.keeps_count = true, .limit = read(m_nOutTime_max)});
}

}  // namespace

static Request route(ArmSocket s, int32_t min, int32_t max) {
    return Request(s, "set_gripper_route").number("min", min).number("max", max);
}
AckReply Set_Gripper_Route_Cmd[ZK_SLOTS];
ZK_API int Set_Gripper_Route(ArmSocket s, int32_t min, int32_t max, bool block) {
    return guarded(block ? Set_Gripper_Route_Block : Set_Gripper_Route_NonBlock, s, min, max);
}
ZK_API int Set_Gripper_Route_Block(ArmSocket s, int32_t min, int32_t max) {
    return set(route(s, min, max), Set_Gripper_Route_Cmd, {.limit = read(m_nOutTime_max)});
}
ZK_API int Set_Gripper_Route_NonBlock(ArmSocket s, int32_t min, int32_t max) { return post(route(s, min, max)); }
ZK_API int Parser_Set_Gripper_Route(const char* text) { return acknowledgement(text, "state"); }
ZK_TWIN(Parser_Set_Gripper_Route);

AckReply Set_Gripper_Release_Cmd[ZK_SLOTS];
ZK_API int Set_Gripper_Release(ArmSocket s, int32_t speed, bool block, int32_t timeout) {
    return guarded(block ? Set_Gripper_Release_Block : Set_Gripper_Release_NonBlock, s, speed, timeout);
}
ZK_API int Set_Gripper_Release_Block(ArmSocket s, int32_t speed, int32_t timeout) {
    return arrived(release(s, speed).boolean("block", true), timeout);
}
ZK_API int Set_Gripper_Release_NonBlock(ArmSocket s, int32_t speed, int32_t timeout) {
    return accepted(release(s, speed).number("block", 0), timeout);
}

ZK_API int Set_Gripper_Pick(ArmSocket s, int32_t speed, int32_t force, bool block, int32_t timeout) {
    return guarded(block ? Set_Gripper_Pick_Block : Set_Gripper_Pick_NonBlock, s, speed, force, timeout);
}
ZK_API int Set_Gripper_Pick_Block(ArmSocket s, int32_t speed, int32_t force, int32_t timeout) {
    return arrived(grip(s, "set_gripper_pick", speed, force).boolean("block", true), timeout);
}
ZK_API int Set_Gripper_Pick_NonBlock(ArmSocket s, int32_t speed, int32_t force, int32_t timeout) {
    return accepted(grip(s, "set_gripper_pick", speed, force).number("block", 0), timeout);
}

ZK_API int Set_Gripper_Pick_On(ArmSocket s, int32_t speed, int32_t force, bool block, int32_t timeout) {
    return guarded(block ? Set_Gripper_Pick_On_Block : Set_Gripper_Pick_On_NonBlock, s, speed, force, timeout);
}
ZK_API int Set_Gripper_Pick_On_Block(ArmSocket s, int32_t speed, int32_t force, int32_t timeout) {
    return arrived(grip(s, "set_gripper_pick_on", speed, force).boolean("block", true), timeout);
}
ZK_API int Set_Gripper_Pick_On_NonBlock(ArmSocket s, int32_t speed, int32_t force, int32_t timeout) {
    return accepted(grip(s, "set_gripper_pick_on", speed, force).number("block", 0), timeout);
}

ZK_API int Set_Gripper_Position(ArmSocket s, int32_t opening, bool block, int32_t timeout) {
    return guarded(block ? Set_Gripper_Position_Block : Set_Gripper_Position_NonBlock, s, opening, timeout);
}
ZK_API int Set_Gripper_Position_Block(ArmSocket s, int32_t opening, int32_t timeout) {
    return arrived(position(s, opening).boolean("block", true), timeout);
}
ZK_API int Set_Gripper_Position_NonBlock(ArmSocket s, int32_t opening, int32_t timeout) {
    return accepted(position(s, opening), timeout);
}

// Returns the status of another mailbox, not of this reply.
GripperStateReply Get_Gripper_State_Cmd[ZK_SLOTS];
ZK_API int Get_Gripper_State(ArmSocket s, GripperState* state) { return checked(Get_Gripper_State_Block, s, state); }
ZK_API int Get_Gripper_State_Block(ArmSocket s, GripperState* state) {
    bool replied = false;
    const int status = query({s, "get_gripper_state"}, Get_Gripper_State_Cmd, [&](const GripperStateReply& reply) {
        *state = reply.state;
        replied = true;
    });
    const int slot = slot_of(s);
    return replied && slot >= 0 ? Mailbox(Get_Joint_Drive_Max_Pos_Cmd).result(slot) : status;
}
ZK_API int Parser_Get_Gripper_State(const char* text, GripperState* state) {
    Reply reply(text);
    const auto flag = [&](const char* key, uint8_t* value) {
        if (const Item number = reply.number(reply.root(), key)) *value = number.integer() != 0 ? 1 : 0;
    };
    flag("status", &state->status);
    flag("enable", &state->enable_state);
    reply.take("error", state->error);
    reply.take("mode", state->mode);
    reply.take("current_force", state->current_force);
    reply.take("temperature", state->temperature);
    reply.take("actpos", state->actpos);
    return reply.status();
}
