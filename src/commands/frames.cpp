// Frames and payload.
#include "zk/frames.h"

#include <cstring>

#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/algorithm.h"

using namespace zk;

namespace {

constexpr size_t name_bytes = 10;

// A frame in use is asked for, and the local picture of it refreshed from the model.
int frame_in_use(int (*block)(ArmSocket, FrameRec*), void (*from_model)(FrameRec*), Pose& picture, ArmSocket s,
                 FrameRec* frame) {
    if (const int status = checked(block, s, frame)) return status;
    FrameRec held{};
    from_model(&held);
    picture = held.pose;
    return ZK_OK;
}

int frame_query(ArmSocket s, const char* command, FrameReply (&mailbox)[ZK_SLOTS], FrameRec* frame) {
    const auto deliver = [&](const FrameReply& reply) {
        const Quat quaternion = frame->pose.quaternion;
        *frame = reply.frame;
        frame->pose.quaternion = quaternion;
    };
    return query({s, command}, mailbox, deliver, {.wipes_first = true});
}

}  // namespace

FrameReply Current_Tool_Cmd[ZK_SLOTS];
ZK_API int Get_Current_Tool_Frame(ArmSocket s, FrameRec* frame) {
    return frame_in_use(Get_Current_Tool_Frame_Block, Algo_Get_Curr_ToolFrame, g_tool_pose, s, frame);
}
ZK_API int Get_Current_Tool_Frame_Block(ArmSocket s, FrameRec* frame) {
    return frame_query(s, "get_current_tool_frame", Current_Tool_Cmd, frame);
}
ZK_API int Parser_Get_Current_Tool_Frame(const char* text, FrameRec* frame) {
    Reply reply(text);
    const Item name = reply.find("tool_name");
    if (reply.require(bool(name), ZK_BAD_REPLY)) copy_name(name.text(), frame->frame_name, name_bytes);
    wire_pose(reply.array(reply.root(), "pose", 6), frame->pose.position, frame->pose.euler);
    if (const Item payload = reply.number(reply.root(), "payload")) {
        frame->payload = static_cast<float>(payload.number() / 1000.0);
    }
    float centre[3] = {frame->x, frame->y, frame->z};
    scaled(reply.array(reply.root(), "position", 3, ZK_WRONG_TYPE), 3, 1000000.0f, centre);
    frame->x = centre[0];
    frame->y = centre[1];
    frame->z = centre[2];
    return reply.status();
}

FrameReply Current_Work_Cmd[ZK_SLOTS];
ZK_API int Get_Current_Work_Frame(ArmSocket s, FrameRec* frame) {
    return frame_in_use(Get_Current_Work_Frame_Block, Algo_Get_Curr_WorkFrame, g_work_pose, s, frame);
}
ZK_API int Get_Current_Work_Frame_Block(ArmSocket s, FrameRec* frame) {
    return frame_query(s, "get_current_work_frame", Current_Work_Cmd, frame);
}
ZK_API int Parser_Get_Current_Work_Frame(const char* text, FrameRec* frame) {
    Reply reply(text);
    const Item name = reply.find("frame_name");
    if (reply.require(bool(name), ZK_BAD_REPLY)) copy_name(name.text(), frame->frame_name, name_bytes);
    wire_pose(reply.array(reply.root(), "pose", 6), frame->pose.position, frame->pose.euler);
    return reply.status();
}

AckReply Auto_Set_Tool_Frame_Cmd[ZK_SLOTS];
AckReply Manual_Set_Tool_Frame_Cmd[ZK_SLOTS];
AckReply Change_Tool_Frame_Cmd[ZK_SLOTS];
AckReply Delete_Tool_Frame_Cmd[ZK_SLOTS];
AckReply Set_Payload_Cmd[ZK_SLOTS];
AckReply Set_None_Payload_Cmd[ZK_SLOTS];
AckReply Auto_Set_Work_Frame_Cmd[ZK_SLOTS];
AckReply Manual_Set_Work_Frame_Cmd[ZK_SLOTS];
AckReply Change_Work_Frame_Cmd[ZK_SLOTS];
AckReply Delete_Work_Frame_Cmd[ZK_SLOTS];
AckReply Update_Work_Frame_Cmd[ZK_SLOTS];
AckReply Update_Tool_Frame_Cmd[ZK_SLOTS];

ZK_API int Parser_Auto_Set_Tool_Frame(const char* text) { return acknowledgement(text, "auto_tool_frame"); }
ZK_API int Parser_Manual_Set_Tool_Frame(const char* text) { return acknowledgement(text, "manual_tool_frame"); }
ZK_API int Parser_Change_Tool_Frame(const char* text) { return acknowledgement(text, "change_tool_frame"); }
ZK_API int Parser_Delete_Tool_Frame(const char* text) { return acknowledgement(text, "delete_tool_frame"); }
ZK_API int Parser_Auto_Set_Work_Frame(const char* text) { return acknowledgement(text, "auto_work_frame"); }
ZK_API int Parser_Manual_Set_Work_Frame(const char* text) { return acknowledgement(text, "manual_work_frame"); }
ZK_API int Parser_Change_Work_Frame(const char* text) { return acknowledgement(text, "change_work_frame"); }
ZK_API int Parser_Delete_Work_Frame(const char* text) { return acknowledgement(text, "delete_work_frame"); }
ZK_API int Parser_Update_State(const char* text) { return acknowledgement(text, "update_state"); }
