// Frames and payload: the tool and work frames that the controller keeps, and the local poses of those in use.
#include "zk/replies/frames.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "commands/frame_replies.h"
#include "commands/name_list.h"
#include "commands/twin.h"
#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/algorithm.h"

using namespace zk;

namespace {

// What differs between tool and work frames.
struct FrameKind {
    const char* name_key;
    int (*ask)(ArmSocket, FrameRec*);
    void (*to_model)(const FrameRec*);
    void (*from_model)(FrameRec*);
    Pose& local_pose;

    // Queries the frame in use, then copies its pose from the model to the local variable.
    int in_use(ArmSocket s, FrameRec* frame) const {
        if (const int status = checked(ask, s, frame)) return status;
        take_from_model();
        return ZK_OK;
    }
    // Selects or deletes a frame. Then the frame that is in use goes into the model.
    int change(int (*form)(ArmSocket, const char*), ArmSocket s, const char* name) const {
        if (const int status = checked(form, s, name)) return status;
        FrameRec frame{};
        if (const int status = in_use(s, &frame)) return status;
        to_model(&frame);
        take_from_model();
        return ZK_OK;
    }
    Request named(ArmSocket s, const char* command, const char* name) const {
        return Request(s, command).text(name_key, name);
    }

 private:
    void take_from_model() const {
        FrameRec frame{};
        from_model(&frame);
        local_pose = frame.pose;
    }
};
const FrameKind kTool{"tool_name", Get_Current_Tool_Frame_Block, Algo_Set_ToolFrame, Algo_Get_Curr_ToolFrame,
                      g_tool_pose};
const FrameKind kWork{"frame_name", Get_Current_Work_Frame_Block, Algo_Set_WorkFrame, Algo_Get_Curr_WorkFrame,
                      g_work_pose};

// Copies a received frame but leaves the quaternion of the caller's record.
void deliver_frame(const FrameReply& reply, FrameRec* frame) {
    const Quat quaternion = frame->pose.quaternion;
    *frame = reply.frame;
    frame->pose.quaternion = quaternion;
}

int frame_query(const Request& request, FrameReply (&mailbox)[ZK_SLOTS], FrameRec* frame, const QueryForm& form) {
    return query(
        request, mailbox, [&](const FrameReply& reply) { deliver_frame(reply, frame); }, form);
}

int names_query(ArmSocket s, const char* command, FrameNamesReply (&mailbox)[ZK_SLOTS], FrameName* names,
                int32_t* count) {
    const auto deliver = [&](const FrameNamesReply& reply) {
        *count = reply.names;
        std::copy_n(reply.name, reply.names, names);
    };
    return query({s, command}, mailbox, deliver, {.wipes_first = true});
}

void tool_name(Reply& reply, FrameRec* frame, const FrameReading& reading) {
    const Item name = reply.find("tool_name");
    if (reply.require(bool(name), ZK_BAD_REPLY)) copy_name(name.text(), frame->frame_name, reading.tool_name_bytes);
}

// Reads payload and centre of gravity, the last keys of every reply about a tool.
void payload(Reply& reply, FrameRec* frame, const FrameReading& reading) {
    if (const Item mass = reply.number(reply.root(), "payload"))
        frame->payload = static_cast<float>(mass.number() / reading.mass_divisor);
    const Item centre = reply.array(reply.root(), "position", 3, ZK_WRONG_TYPE);
    if (!centre) return;
    float metres[3];
    scaled(centre, 3, 1000000.0f, metres);
    frame->x = metres[0];
    frame->y = metres[1];
    frame->z = metres[2];
}

// Reads the pose of a frame that was queried by its name. Its elements count as 64-bit integers.
void given_pose(Reply& reply, Pose& pose, const FrameReading& reading) {
    const Item array = reply.array(reply.root(), "pose", 6, reading.wrong_pose_size);
    if (!array) return;
    const auto value = [&](int i, float divisor) {
        return static_cast<float>(std::trunc(array[i].number())) / divisor;
    };
    pose.position = {value(0, 1000000.0f), value(1, 1000000.0f), value(2, 1000000.0f)};
    pose.euler = {value(3, 1000.0f), value(4, 1000.0f), value(5, 1000.0f)};
}

// The reply has "get_state" only when there is no such frame.
void require_found(Reply& reply) { reply.require(!reply.find("get_state").is_false(), ZK_REFUSED); }

// The scales of mass and centre of gravity differ from form to form.
using Scale = int32_t (*)(float);
Request& centre(Request& request, Scale scale, float x, float y, float z) {
    return request.numbers("position", {double(scale(x)), double(scale(y)), double(scale(z))});
}

}  // namespace

static Request auto_tool(ArmSocket s, uint8_t number) {
    return Request(s, "set_auto_tool_frame").number("point_num", number);
}
AckReply Auto_Set_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API int Auto_Set_Tool_Frame(ArmSocket s, uint8_t number, bool block) {
    return guarded(block ? Auto_Set_Tool_Frame_Block : Auto_Set_Tool_Frame_NonBlock, s, number);
}
ZK_API int Auto_Set_Tool_Frame_Block(ArmSocket s, uint8_t number) {
    return set(auto_tool(s, number), Auto_Set_Tool_Frame_Cmd);
}
ZK_API int Auto_Set_Tool_Frame_NonBlock(ArmSocket s, uint8_t number) { return post(auto_tool(s, number)); }
ZK_API int Parser_Auto_Set_Tool_Frame(const char* text) { return acknowledgement(text, "auto_tool_frame"); }
ZK_TWIN(Parser_Auto_Set_Tool_Frame);

// The mass goes out a thousandfold in both forms, the centre of gravity a thousand times smaller in the non-blocking
// one.
static Request generate_tool(ArmSocket s, const char* name, float mass, float x, float y, float z, Scale scale) {
    Request request(s, "generate_auto_tool_frame");
    request.text("tool_name", name).number("payload", mass * 1000.0f);
    return centre(request, scale, x, y, z);
}
ZK_API int Generate_Auto_Tool_Frame(ArmSocket s, const char* name, float payload, float x, float y, float z,
                                    bool block) {
    return checked(block ? Generate_Auto_Tool_Frame_Block : Generate_Auto_Tool_Frame_NonBlock, s, name, payload, x, y,
                   z);
}
ZK_API int Generate_Auto_Tool_Frame_Block(ArmSocket s, const char* name, float payload, float x, float y, float z) {
    return set(generate_tool(s, name, payload, x, y, z, millionths), Auto_Set_Tool_Frame_Cmd);
}
ZK_API int Generate_Auto_Tool_Frame_NonBlock(ArmSocket s, const char* name, float payload, float x, float y, float z) {
    return post(generate_tool(s, name, payload, x, y, z, thousandths));
}

static Request tool(ArmSocket s, const char* command, const char* name, const Pose& pose, float mass, float x, float y,
                    float z, Scale scale) {
    Request request(s, command);
    request.text("tool_name", name).pose("tool_pose", pose).number("payload", mass);
    return centre(request, scale, x, y, z);
}
// The non-blocking form sends the mass as it is, and the centre of gravity a thousand times smaller.
AckReply Manual_Set_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API int Manual_Set_Tool_Frame(ArmSocket s, const char* name, Pose pose, float payload, float x, float y, float z,
                                 bool block) {
    return checked(block ? Manual_Set_Tool_Frame_Block : Manual_Set_Tool_Frame_NonBlock, s, name, pose, payload, x, y,
                   z);
}
ZK_API int Manual_Set_Tool_Frame_Block(ArmSocket s, const char* name, Pose pose, float payload, float x, float y,
                                       float z) {
    return set(tool(s, "set_manual_tool_frame", name, pose, payload * 1000.0f, x, y, z, millionths),
               Manual_Set_Tool_Frame_Cmd);
}
ZK_API int Manual_Set_Tool_Frame_NonBlock(ArmSocket s, const char* name, Pose pose, float payload, float x, float y,
                                          float z) {
    return post(tool(s, "set_manual_tool_frame", name, pose, payload, x, y, z, thousandths));
}
ZK_API int Parser_Manual_Set_Tool_Frame(const char* text) { return acknowledgement(text, "manual_tool_frame"); }
ZK_TWIN(Parser_Manual_Set_Tool_Frame);

AckReply Update_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API int Update_Tool_Frame(ArmSocket s, const char* name, Pose pose, float payload, float x, float y, float z) {
    return checked(Update_Tool_Frame_Block, s, name, pose, payload, x, y, z);
}
ZK_API int Update_Tool_Frame_Block(ArmSocket s, const char* name, Pose pose, float payload, float x, float y, float z) {
    return set(tool(s, "update_tool_frame", name, pose, payload * 1000.0f, x, y, z, millionths), Update_Tool_Frame_Cmd);
}
ZK_API int Parser_Update_State(const char* text) { return acknowledgement(text, "update_state"); }

AckReply Change_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API int Change_Tool_Frame(ArmSocket s, const char* name, bool block) {
    return kTool.change(block ? Change_Tool_Frame_Block : Change_Tool_Frame_NonBlock, s, name);
}
ZK_API int Change_Tool_Frame_Block(ArmSocket s, const char* name) {
    return set(kTool.named(s, "set_change_tool_frame", name), Change_Tool_Frame_Cmd);
}
ZK_API int Change_Tool_Frame_NonBlock(ArmSocket s, const char* name) {
    return post(kTool.named(s, "set_change_tool_frame", name));
}
ZK_API int Parser_Change_Tool_Frame(const char* text) { return acknowledgement(text, "change_tool_frame"); }
ZK_TWIN(Parser_Change_Tool_Frame);

AckReply Delete_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API int Delete_Tool_Frame(ArmSocket s, const char* name, bool block) {
    return kTool.change(block ? Delete_Tool_Frame_Block : Delete_Tool_Frame_NonBlock, s, name);
}
ZK_API int Delete_Tool_Frame_Block(ArmSocket s, const char* name) {
    return set(kTool.named(s, "set_delete_tool_frame", name), Delete_Tool_Frame_Cmd);
}
ZK_API int Delete_Tool_Frame_NonBlock(ArmSocket s, const char* name) {
    return post(kTool.named(s, "set_delete_tool_frame", name));
}
ZK_API int Parser_Delete_Tool_Frame(const char* text) { return acknowledgement(text, "delete_tool_frame"); }
ZK_TWIN(Parser_Delete_Tool_Frame);

// The load on the flange. The centre of gravity goes out in thousandths in both forms.
static Request load(ArmSocket s, int32_t mass, float x, float y, float z) {
    Request request(s, "set_payload");
    request.number("payload", mass);
    return centre(request, thousandths, x, y, z);
}
AckReply Set_Payload_Cmd[ZK_SLOTS];
ZK_API int Set_Payload_Block(ArmSocket s, int32_t payload, float x, float y, float z) {
    return set(load(s, payload, x, y, z), Set_Payload_Cmd);
}
ZK_API int Set_Payload_NonBlock(ArmSocket s, int32_t payload, float x, float y, float z) {
    return post(load(s, payload, x, y, z));
}

AckReply Set_None_Payload_Cmd[ZK_SLOTS];
ZK_API int Set_None_Payload_Block(ArmSocket s) { return set({s, "set_none_payload"}, Set_None_Payload_Cmd); }
ZK_API int Set_None_Payload_NonBlock(ArmSocket s) { return post({s, "set_none_payload"}); }

FrameReply Current_Tool_Cmd[ZK_SLOTS];
ZK_API int Get_Current_Tool_Frame(ArmSocket s, FrameRec* frame) { return kTool.in_use(s, frame); }
ZK_API int Get_Current_Tool_Frame_Block(ArmSocket s, FrameRec* frame) {
    return frame_query({s, "get_current_tool_frame"}, Current_Tool_Cmd, frame, {.wipes_first = true});
}
ZK_API int Parser_Get_Current_Tool_Frame(const char* text, FrameRec* frame) {
    return read_current_tool(text, frame, {});
}
int zk::read_current_tool(const char* text, FrameRec* frame, const FrameReading& reading) {
    Reply reply(text);
    tool_name(reply, frame, reading);
    wire_pose(reply.array(reply.root(), "pose", 6, reading.wrong_pose_size), frame->pose.position, frame->pose.euler);
    payload(reply, frame, reading);
    return reply.status();
}

FrameReply Given_Tool_Cmd[ZK_SLOTS];
ZK_API int Get_Given_Tool_Frame(ArmSocket s, const char* name, FrameRec* frame) {
    return checked(Get_Given_Tool_Frame_Block, s, name, frame);
}
ZK_API int Get_Given_Tool_Frame_Block(ArmSocket s, const char* name, FrameRec* frame) {
    return frame_query(kTool.named(s, "get_tool_frame", name), Given_Tool_Cmd, frame,
                       {.clears_before = true, .wipes_first = true});
}
ZK_API int Parser_Get_Given_Tool_Frame(const char* text, FrameRec* frame) { return read_given_tool(text, frame, {}); }
int zk::read_given_tool(const char* text, FrameRec* frame, const FrameReading& reading) {
    Reply reply(text);
    require_found(reply);
    tool_name(reply, frame, reading);
    given_pose(reply, frame->pose, reading);
    payload(reply, frame, reading);
    return reply.status();
}

FrameNamesReply Get_All_Tool_Frame_Cmd[ZK_SLOTS];
ZK_API int Get_All_Tool_Frame(ArmSocket s, FrameName* names, int32_t* count) {
    if (!sending_file() && any_null(names)) return ZK_BAD_ARGUMENT;
    return guarded(Get_All_Tool_Frame_Block, s, names, count);
}
ZK_API int Get_All_Tool_Frame_Block(ArmSocket s, FrameName* names, int32_t* count) {
    return names_query(s, "get_total_tool_frame", Get_All_Tool_Frame_Cmd, names, count);
}
ZK_API int Parser_Get_All_Tool_Frame(const char* text, FrameName* names, int32_t* count) {
    return name_list(text, "tool_names", names, ZK_FRAME_NAMES, count);
}
ZK_TWIN(Parser_Get_All_Tool_Frame);

static Request auto_work(ArmSocket s, const char* name, uint8_t number) {
    return Request(s, "set_auto_work_frame").text("frame_name", name).number("point_num", number);
}
AckReply Auto_Set_Work_Frame_Cmd[ZK_SLOTS];
ZK_API int Auto_Set_Work_Frame(ArmSocket s, const char* name, uint8_t number, bool block) {
    return checked(block ? Auto_Set_Work_Frame_Block : Auto_Set_Work_Frame_NonBlock, s, name, number);
}
ZK_API int Auto_Set_Work_Frame_Block(ArmSocket s, const char* name, uint8_t number) {
    return set(auto_work(s, name, number), Auto_Set_Work_Frame_Cmd);
}
ZK_API int Auto_Set_Work_Frame_NonBlock(ArmSocket s, const char* name, uint8_t number) {
    return post(auto_work(s, name, number));
}
ZK_API int Parser_Auto_Set_Work_Frame(const char* text) { return acknowledgement(text, "auto_work_frame"); }
ZK_TWIN(Parser_Auto_Set_Work_Frame);

static Request work(ArmSocket s, const char* command, const char* name, const Pose& pose) {
    return Request(s, command).text("frame_name", name).pose("frame_pose", pose);
}
AckReply Manual_Set_Work_Frame_Cmd[ZK_SLOTS];
ZK_API int Manual_Set_Work_Frame(ArmSocket s, const char* name, Pose pose, bool block) {
    return checked(block ? Manual_Set_Work_Frame_Block : Manual_Set_Work_Frame_NonBlock, s, name, pose);
}
ZK_API int Manual_Set_Work_Frame_Block(ArmSocket s, const char* name, Pose pose) {
    return set(work(s, "set_manual_work_frame", name, pose), Manual_Set_Work_Frame_Cmd);
}
ZK_API int Manual_Set_Work_Frame_NonBlock(ArmSocket s, const char* name, Pose pose) {
    return post(work(s, "set_manual_work_frame", name, pose));
}
ZK_API int Parser_Manual_Set_Work_Frame(const char* text) { return acknowledgement(text, "manual_work_frame"); }
ZK_TWIN(Parser_Manual_Set_Work_Frame);

AckReply Update_Work_Frame_Cmd[ZK_SLOTS];
ZK_API int Update_Work_Frame(ArmSocket s, const char* name, Pose pose) {
    return checked(Update_Work_Frame_Block, s, name, pose);
}
ZK_API int Update_Work_Frame_Block(ArmSocket s, const char* name, Pose pose) {
    return set(work(s, "update_work_frame", name, pose), Update_Work_Frame_Cmd);
}

AckReply Change_Work_Frame_Cmd[ZK_SLOTS];
ZK_API int Change_Work_Frame(ArmSocket s, const char* name, bool block) {
    return kWork.change(block ? Change_Work_Frame_Block : Change_Work_Frame_NonBlock, s, name);
}
ZK_API int Change_Work_Frame_Block(ArmSocket s, const char* name) {
    return set(kWork.named(s, "set_change_work_frame", name), Change_Work_Frame_Cmd);
}
ZK_API int Change_Work_Frame_NonBlock(ArmSocket s, const char* name) {
    return post(kWork.named(s, "set_change_work_frame", name));
}
ZK_API int Parser_Change_Work_Frame(const char* text) { return acknowledgement(text, "change_work_frame"); }
ZK_TWIN(Parser_Change_Work_Frame);

AckReply Delete_Work_Frame_Cmd[ZK_SLOTS];
ZK_API int Delete_Work_Frame(ArmSocket s, const char* name, bool block) {
    return kWork.change(block ? Delete_Work_Frame_Block : Delete_Work_Frame_NonBlock, s, name);
}
ZK_API int Delete_Work_Frame_Block(ArmSocket s, const char* name) {
    return set(kWork.named(s, "set_delete_work_frame", name), Delete_Work_Frame_Cmd);
}
ZK_API int Delete_Work_Frame_NonBlock(ArmSocket s, const char* name) {
    return post(kWork.named(s, "set_delete_work_frame", name));
}
ZK_API int Parser_Delete_Work_Frame(const char* text) { return acknowledgement(text, "delete_work_frame"); }
ZK_TWIN(Parser_Delete_Work_Frame);

FrameReply Current_Work_Cmd[ZK_SLOTS];
ZK_API int Get_Current_Work_Frame(ArmSocket s, FrameRec* frame) { return kWork.in_use(s, frame); }
ZK_API int Get_Current_Work_Frame_Block(ArmSocket s, FrameRec* frame) {
    return frame_query({s, "get_current_work_frame"}, Current_Work_Cmd, frame, {.wipes_first = true});
}
ZK_API int Parser_Get_Current_Work_Frame(const char* text, FrameRec* frame) {
    Reply reply(text);
    const Item name = reply.find("frame_name");
    if (reply.require(bool(name), ZK_BAD_REPLY)) copy_name(name.text(), frame->frame_name, kNameBytes);
    wire_pose(reply.array(reply.root(), "pose", 6), frame->pose.position, frame->pose.euler);
    return reply.status();
}
ZK_TWIN(Parser_Get_Current_Work_Frame);

GivenWorkFrameReply Given_Work_Frame_Cmd[ZK_SLOTS];
ZK_API int Get_Given_Work_Frame(ArmSocket s, char* name, Pose* pose) {
    return checked(Get_Given_Work_Frame_Block, s, name, pose);
}
ZK_API int Get_Given_Work_Frame_Block(ArmSocket s, char* name, Pose* pose) {
    const auto deliver = [&](const GivenWorkFrameReply& reply) {
        std::memset(name, 0, kNameBytes);
        copy_name(reply.frame_name, name, kNameBytes);
        pose->position = reply.pose.position;
        pose->euler = reply.pose.euler;
    };
    return query(kWork.named(s, "get_work_frame", name), Given_Work_Frame_Cmd, deliver,
                 {.clears_before = true, .wipes_first = true});
}
ZK_API int Parser_Get_Given_Work_Frame(const char* text, char* name, Pose* pose) {
    return read_given_work(text, name, pose, {});
}
int zk::read_given_work(const char* text, char* name, Pose* pose, const FrameReading& reading) {
    Reply reply(text);
    require_found(reply);
    if (const Item stored = reply.find("frame_name"); reply.good() && stored.is_text())
        copy_name(stored.text(), name, kNameBytes);
    given_pose(reply, *pose, reading);
    return reply.status();
}

FrameNamesReply Get_All_Work_Frame_Cmd[ZK_SLOTS];
ZK_API int Get_All_Work_Frame(ArmSocket s, FrameName* names, int32_t* count) {
    if (!sending_file() && any_null(names)) return ZK_BAD_ARGUMENT;
    return guarded(Get_All_Work_Frame_Blcok, s, names, count);
}
ZK_API int Get_All_Work_Frame_Blcok(ArmSocket s, FrameName* names, int32_t* count) {
    return names_query(s, "get_total_work_frame", Get_All_Work_Frame_Cmd, names, count);
}
ZK_API int Parser_Get_All_Work_Frame(const char* text, FrameName* names, int32_t* count) {
    return name_list(text, "frame_names", names, ZK_FRAME_NAMES, count);
}
ZK_TWIN(Parser_Get_All_Work_Frame);
