// Drag teaching: recording by hand, and the replay.
#include "zk/replies/drag_teach.h"

#include "commands/stillness.h"
#include "commands/twin.h"
#include "connection/elapsed.h"
#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/trajectory.h"

using namespace zk;

AckReply Start_Drag_Teach_Cmd[ZK_SLOTS];
static Request start_drag_teach(ArmSocket s) { return Request(s, "start_drag_teach").number("trajectory_record", 1); }
ZK_API int Start_Drag_Teach(ArmSocket s, bool block) {
    return guarded(block ? Start_Drag_Teach_Block : Start_Drag_Teach_NonBlock, s);
}
ZK_API int Start_Drag_Teach_Block(ArmSocket s) { return set(start_drag_teach(s), Start_Drag_Teach_Cmd); }
ZK_API int Start_Drag_Teach_NonBlock(ArmSocket s) { return post(start_drag_teach(s)); }
ZK_API int Parser_Drag_Teach(const char* text) { return acknowledgement(text, "drag_teach"); }
ZK_TWIN(Parser_Drag_Teach);

AckReply Stop_Drag_Teach_Cmd[ZK_SLOTS];
ZK_API int Stop_Drag_Teach(ArmSocket s, bool block) {
    return guarded(block ? Stop_Drag_Teach_Block : Stop_Drag_Teach_NonBlock, s);
}
ZK_API int Stop_Drag_Teach_Block(ArmSocket s) { return set({s, "stop_drag_teach"}, Stop_Drag_Teach_Cmd); }
ZK_API int Stop_Drag_Teach_NonBlock(ArmSocket s) { return post({s, "stop_drag_teach"}); }

AckReply Start_Multi_Drag_Teach_Cmd[ZK_SLOTS];
static Request start_multi_drag_teach(ArmSocket s, int32_t mode, int32_t singular_wall) {
    return Request(s, "start_multi_drag_teach").number("mode", mode).number("singular_wall", singular_wall);
}
ZK_API int Start_Multi_Drag_Teach(ArmSocket s, int32_t mode, int32_t singular_wall, bool block) {
    return guarded(block ? Start_Multi_Drag_Teach_Block : Start_Multi_Drag_Teach_NonBlock, s, mode, singular_wall);
}
ZK_API int Start_Multi_Drag_Teach_Block(ArmSocket s, int32_t mode, int32_t singular_wall) {
    return set(start_multi_drag_teach(s, mode, singular_wall), Start_Multi_Drag_Teach_Cmd);
}
ZK_API int Start_Multi_Drag_Teach_NonBlock(ArmSocket s, int32_t mode, int32_t singular_wall) {
    return post(start_multi_drag_teach(s, mode, singular_wall));
}

ZK_API int Start_Multi_Drag_Teach_New(ArmSocket s, MultiDragTeachParam param) {
    return guarded(Start_Multi_Drag_Teach_New_Block, s, param);
}
ZK_API int Start_Multi_Drag_Teach_New_Block(ArmSocket s, MultiDragTeachParam param) {
    return set(Request(s, "start_multi_drag_teach")
                   .number("frame", param.frame)
                   .number("singular_wall", param.singular_wall)
                   .numbers("free_axes", param.free_axes, 6),
               Start_Multi_Drag_Teach_Cmd);
}

AckReply Set_Drag_Teach_Sensitivity_Cmd[ZK_SLOTS];
ZK_API int Set_Drag_Teach_Sensitivity(ArmSocket s, int32_t grade) {
    return guarded(Set_Drag_Teach_Sensitivity_Block, s, grade);
}
ZK_API int Set_Drag_Teach_Sensitivity_Block(ArmSocket s, int32_t grade) {
    return set(Request(s, "set_drag_teach_sensitivity").number("grade", grade), Set_Drag_Teach_Sensitivity_Cmd,
               {.limit = read(m_nOutTime_max)});
}

IntReply Get_Drag_Teach_Sensitivity_Cmd[ZK_SLOTS];
ZK_API int Get_Drag_Teach_Sensitivity(ArmSocket s, int32_t* grade) {
    return guarded(Get_Drag_Teach_Sensitivity_Block, s, grade);
}
ZK_API int Get_Drag_Teach_Sensitivity_Block(ArmSocket s, int32_t* grade) {
    return query_value(s, "get_drag_teach_sensitivity", Get_Drag_Teach_Sensitivity_Cmd, grade);
}
ZK_API int Parser_Get_Drag_Teach_Sensitivity(const char* text, int32_t* grade) {
    return integer_value(text, "grade", grade);
}

// The replay. The state of the arm decides whether the reply is read and whether the time limit counts.
namespace {

constexpr int32_t kReplayLimitMs = 29999;  // beyond m_nOutTime, while nothing moves

enum class Doing : int32_t { kNothing = 0, kReplay = 4 };

int replay_status(const Connection& connection) {
    const int32_t start = Get_Program_Runtime();
    const Mailbox mailbox(Run_Drag_Trajectory_Cmd);
    int32_t type = 0;  // keeps its value when the query fails
    float data[8];
    for (;;) {
        Get_Current_Trajectory(connection.socket(), &type, data);
        const bool arrived = has_arrived(mailbox, connection);
        if (const int status = connection.status()) return status;
        const auto doing = static_cast<Doing>(type);
        if ((doing == Doing::kReplay || doing == Doing::kNothing) && arrived) return take_result(mailbox, connection);
        const int64_t limit = int64_t{read(m_nOutTime)} + kReplayLimitMs;
        if (doing == Doing::kNothing && elapsed_since(start) > limit) return ZK_TIMEOUT;
        sleep_cp(kPollMs);
    }
}

}  // namespace

AckReply Run_Drag_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Run_Drag_Trajectory(ArmSocket s, bool block) {
    return guarded(block ? Run_Drag_Trajectory_Block : Run_Drag_Trajectory_NonBlock, s);
}
ZK_API int Run_Drag_Trajectory_Block(ArmSocket s) {
    const Wait connection(s);
    if (const int status = connection.claim(Run_Drag_Trajectory_Cmd, Sharing::kAlone)) return status;
    Mailbox(Run_Drag_Trajectory_Cmd).clear(connection.slot());
    if (const int status = post({s, "run_drag_trajectory"})) return status;
    return replay_status(connection);
}
ZK_API int Run_Drag_Trajectory_NonBlock(ArmSocket s) { return post({s, "run_drag_trajectory"}); }
ZK_API int Parser_Run_Drag_Trajectory(const char* text) { return acknowledgement(text, "run_state"); }
ZK_TWIN(Parser_Run_Drag_Trajectory);

AckReply Pause_Drag_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Pause_Drag_Trajectory(ArmSocket s, bool block) {
    return guarded(block ? Pause_Drag_Trajectory_Block : Pause_Drag_Trajectory_NonBlock, s);
}
ZK_API int Pause_Drag_Trajectory_Block(ArmSocket s) {
    return set({s, "pause_drag_trajectory"}, Pause_Drag_Trajectory_Cmd);
}
ZK_API int Pause_Drag_Trajectory_NonBlock(ArmSocket s) { return post({s, "pause_drag_trajectory"}); }
ZK_API int Parser_Pause_Drag_Trajectory(const char* text) { return acknowledgement(text, "pause_state"); }
ZK_TWIN(Parser_Pause_Drag_Trajectory);

AckReply Continue_Drag_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Continue_Drag_Trajectory(ArmSocket s, bool block) {
    return guarded(block ? Continue_Drag_Trajectory_Block : Continue_Drag_Trajectory_NonBlock, s);
}
ZK_API int Continue_Drag_Trajectory_Block(ArmSocket s) {
    return set({s, "continue_drag_trajectory"}, Continue_Drag_Trajectory_Cmd);
}
ZK_API int Continue_Drag_Trajectory_NonBlock(ArmSocket s) { return post({s, "continue_drag_trajectory"}); }
ZK_API int Parser_Continue_Drag_Trajectory(const char* text) { return acknowledgement(text, "continue_state"); }
ZK_TWIN(Parser_Continue_Drag_Trajectory);

AckReply Stop_Drag_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Stop_Drag_Trajectory(ArmSocket s, bool block) {
    return guarded(block ? Stop_Drag_Trajectory_Block : Stop_Drag_Trajectory_NonBlock, s);
}
ZK_API int Stop_Drag_Trajectory_Block(ArmSocket s) {
    return set({s, "stop_drag_trajectory"}, Stop_Drag_Trajectory_Cmd);
}
ZK_API int Stop_Drag_Trajectory_NonBlock(ArmSocket s) { return post({s, "stop_drag_trajectory"}); }
ZK_API int Parser_Stop_Drag_Trajectory(const char* text) { return acknowledgement(text, "stop_state"); }
ZK_TWIN(Parser_Stop_Drag_Trajectory);

// The report in Move_Cmd ends this motion. Nothing waits for its acknowledgement.
DragOriginReply Drag_Trajectory_Origin_Cmd[ZK_SLOTS];
ZK_API int Drag_Trajectory_Origin(ArmSocket s, bool block) {
    return guarded(block ? Drag_Trajectory_Origin_Block : Drag_Trajectory_Origin_NonBlock, s);
}
ZK_API int Drag_Trajectory_Origin_Block(ArmSocket s) { return move_until_still({s, "drag_trajectory_origin"}); }
ZK_API int Drag_Trajectory_Origin_NonBlock(ArmSocket s) { return post({s, "drag_trajectory_origin"}); }
ZK_API int Parser_Drag_Trajectory_Origin(const char* text, int32_t* device) {
    Reply reply(text);
    if (const int status = reply.acknowledgement("trajectory_state")) return status;
    if (const Item number = reply.find("device"); number.is_number()) *device = number.integer();
    return reply.status();
}
ZK_TWIN(Parser_Drag_Trajectory_Origin);
