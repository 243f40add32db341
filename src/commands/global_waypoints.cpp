// Global waypoints: places that the controller stores by name.
#include <algorithm>
#include <cstring>

#include "commands/pages.h"
#include "connection/exchange.h"
#include "connection/wrappers.h"
#include "zk/frames.h"

using namespace zk;

static Request waypoint_request(ArmSocket s, const char* command, const GlobalWaypoint& w, int frame_size) {
    return Request(s, command, frame_size)
        .text("point_name", ended(w.point_name).c_str())
        .joints("joint", w.joint)
        .pose("pose", w.pose)
        .text("work_frame", ended(w.work_frame).c_str())
        .text("tool_frame", ended(w.tool_frame).c_str())
        .text("time", ended(w.time).c_str());
}

AckReply Add_Global_Waypoint_Cmd[ZK_SLOTS];
ZK_API int Add_Global_Waypoint(ArmSocket s, GlobalWaypoint waypoint) {
    return guarded(Add_Global_Waypoint_Block, s, waypoint);
}
ZK_API int Add_Global_Waypoint_Block(ArmSocket s, GlobalWaypoint waypoint) {
    constexpr int long_frame = 1000;
    return set(waypoint_request(s, "add_global_waypoint", waypoint, long_frame), Add_Global_Waypoint_Cmd);
}
ZK_API int Parser_Add_State(const char* text) { return acknowledgement(text, "add_state"); }

AckReply Update_Global_Waypoint_Cmd[ZK_SLOTS];
ZK_API int Update_Global_Waypoint(ArmSocket s, GlobalWaypoint waypoint) {
    return guarded(Update_Global_Waypoint_Block, s, waypoint);
}
ZK_API int Update_Global_Waypoint_Block(ArmSocket s, GlobalWaypoint waypoint) {
    return set(waypoint_request(s, "update_global_waypoint", waypoint, Request::kUsualFrame),
               Update_Global_Waypoint_Cmd);
}

AckReply Delete_Global_Waypoint_Cmd[ZK_SLOTS];
ZK_API int Delete_Global_Waypoint(ArmSocket s, const char* name) {
    return checked(Delete_Global_Waypoint_Block, s, name);
}
ZK_API int Delete_Global_Waypoint_Block(ArmSocket s, const char* name) {
    return set(Request(s, "delete_global_waypoint").text("point_name", name), Delete_Global_Waypoint_Cmd);
}

// The size of the pose is compared with the number of joints too.
static void read_waypoint(ArmSocket s, Reply& reply, Item object, GlobalWaypoint* w) {
    const int joints = joint_count(s);
    cut_text(reply, object, "point_name", w->point_name);
    scaled(reply.array(object, "joint", joints), joints, 1000.0f, w->joint);
    wire_pose(reply.array(object, "pose", joints), w->pose.position, w->pose.euler);
    cut_text(reply, object, "work_frame", w->work_frame);
    cut_text(reply, object, "tool_frame", w->tool_frame);
    cut_text(reply, object, "time", w->time);
}

GlobalWaypointReply Given_Global_Waypoint_Cmd[ZK_SLOTS];
ZK_API int Given_Global_Waypoint(ArmSocket s, const char* name, GlobalWaypoint* waypoint) {
    return checked(Given_Global_Waypoint_Block, s, name, waypoint);
}
ZK_API int Given_Global_Waypoint_Block(ArmSocket s, const char* name, GlobalWaypoint* waypoint) {
    if (any_null(name, waypoint)) return ZK_BAD_ARGUMENT;
    return query(Request(s, "given_global_waypoint").text("point_name", name), Given_Global_Waypoint_Cmd,
                 [&](const GlobalWaypointReply& reply) { *waypoint = reply.waypoint; });
}
ZK_API int Parser_Given_Global_Waypoint(ArmSocket s, const char* text, GlobalWaypoint* waypoint) {
    Reply reply(text);
    if (reply.find("given_state")) return reply.acknowledgement("given_state");
    read_waypoint(s, reply, reply.root(), waypoint);
    return reply.status();
}

GlobalWaypointListReply Get_Global_Waypoint_List_Cmd[ZK_SLOTS];
ZK_API int Get_Global_Point_List(ArmSocket s, GlobalWaypointList* list) {
    return checked(Get_Global_Point_List_Block, s, list);
}
ZK_API int Get_Global_Point_List_Block(ArmSocket s, GlobalWaypointList* list) {
    constexpr int32_t longer_ms = 100000;
    if (any_null(list)) return ZK_BAD_ARGUMENT;
    const auto deliver = [&](const GlobalWaypointListReply& reply) {
        const GlobalWaypointList& received = reply.waypoints;
        list->total_size = received.total_size;
        if (received.page_num > 0) list->page_num = received.page_num;
        if (received.page_size > 0) list->page_size = received.page_size;
        if (received.vague_search[0]) std::memcpy(list->vague_search, received.vague_search, sizeof list->vague_search);
        std::copy_n(received.list, reply.received, list->list);
    };
    return query(page_request(s, "get_global_waypoints_list", *list), Get_Global_Waypoint_List_Cmd, deliver,
                 {.limit = limit_beyond(longer_ms)});
}
ZK_API int Parser_Get_Global_Waypoints_List(ArmSocket s, const char* text, GlobalWaypointList* list) {
    int32_t received;
    return read_waypoint_list(s, text, &received, list);
}
int zk::read_waypoint_list(ArmSocket s, const char* text, int32_t* received, GlobalWaypointList* list) {
    Reply reply(text);
    *received = 0;
    list->page_num = list->page_size = 0;
    list->vague_search[0] = '\0';
    if (reply.find("page_num")) reply.take("page_num", list->page_num);
    if (reply.find("page_size")) reply.take("page_size", list->page_size);
    if (reply.find("vague_search")) cut_text(reply, reply.root(), "vague_search", list->vague_search);
    reply.take("total_size", list->total_size);
    for (const Item entry : reply.array(reply.root(), "list")) {
        if (!reply.good() || *received == ZK_WAYPOINTS) break;
        read_waypoint(s, reply, entry, &list->list[*received]);
        if (reply.good()) ++*received;
    }
    return reply.good() ? reply.acknowledgement("get_state") : reply.status();
}
