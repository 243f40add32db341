// Streamed motion.
#include "zk/streaming.h"

#include <algorithm>

#include "connection/reply.h"
#include "connection/slots.h"

using namespace zk;

static void plain_numbers(Item array, int count, float* values) {
    for (int i = 0; i < std::min(count, array.size()); ++i) values[i] = static_cast<float>(array[i].number());
}

ZK_API int Parser_Movej_CANFD(ArmSocket s, const char* text, Pose* pose, float* joint, uint16_t* arm_err) {
    Reply reply(text);
    const Item error = reply.find("arm_err");
    if (!reply.require(bool(error), ZK_BAD_REPLY)) return reply.status();
    *arm_err = static_cast<uint16_t>(error.integer());
    if (const Item values = reply.find("pose"); values.is_array() && values.size() == 6) {
        float numbers[6];
        plain_numbers(values, 6, numbers);
        pose->position = {numbers[0], numbers[1], numbers[2]};
        pose->euler = {numbers[3], numbers[4], numbers[5]};
    }
    plain_numbers(reply.find("joint"), joint_count(s), joint);
    return error.integer();
}

ZK_API int Parser_Force_Position_Move(ArmSocket s, const char* text, float* joint, float* all_direction_force,
                                      int32_t* force, uint16_t* arm_err) {
    Reply reply(text);
    if (!reply.require(bool(reply.find("state")), ZK_BAD_REPLY)) return reply.status();
    plain_numbers(reply.find("all_direction_force"), 7, all_direction_force);
    if (const Item error = reply.find("arm_err")) *arm_err = static_cast<uint16_t>(error.integer());
    if (const Item value = reply.find("force")) *force = value.integer() / 10;
    if (reply.require(reply.find("joint").is_array(), ZK_WRONG_TYPE))
        plain_numbers(reply.find("joint"), joint_count(s), joint);
    return reply.status();
}
