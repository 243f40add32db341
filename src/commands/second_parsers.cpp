// The parsers of the second family that differ from those of the first.
#include "zk/replies/second_parsers.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "commands/frame_replies.h"
#include "connection/reply.h"

using namespace zk;

static float thousandth(Item number) { return static_cast<float>(number.number() / 1000.0); }

constexpr FrameReading kReading = {.tool_name_bytes = 9, .wrong_pose_size = ZK_OTHER_DEVICE, .mass_divisor = 1.0};
ZK_API int Parser_Get_Current_Tool_Frame_E(const char* text, FrameRec* frame) {
    return read_current_tool(text, frame, kReading);
}
ZK_API int Parser_Get_Given_Tool_Frame_E(const char* text, FrameRec* frame) {
    return read_given_tool(text, frame, kReading);
}
ZK_API int Parser_Get_Given_Work_Frame_E(const char* text, char* name, Pose* pose) {
    return read_given_work(text, name, pose, kReading);
}

ZK_API int Parser_Get_Force_Data_E(const char* text, float* force) {
    Reply reply(text);
    const Item forces = reply.array(reply.root(), "force_data");
    for (int i = 0; i < std::min(forces.size(), 6); ++i) force[i] = thousandth(forces[i]);
    return reply.status();
}
ZK_API int Parser_Get_Fz_E(const char* text, float* fz) {  // "set_state" is false in a good reply
    Reply reply(text);
    reply.require(reply.find("set_state").is_false(), ZK_BAD_REPLY);
    if (const Item number = reply.number(reply.root(), "Fz")) *fz = thousandth(number);
    return reply.status();
}

ZK_API int Parser_SendFile_E(const char* text) {
    if (text && std::strstr(text, "true")) return ZK_OK;
    std::printf("Parser_SendFile: %s\r\n", text ? text : "");
    return ZK_BAD_PATH;
}

static int told_integer(const char* text, const char* key, int32_t* value) {
    const Reply reply(text);
    if (const Item number = reply.find(key)) *value = number.integer();
    return reply.status();
}
ZK_API int Parser_Get_Update_scale_E(const char* text, int32_t* scale) { return told_integer(text, "scale", scale); }
ZK_API int Parser_Get_Popup_E(const char* text, int32_t* content) { return told_integer(text, "content", content); }
