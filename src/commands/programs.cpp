// Programs that the controller stores: their list, and the one in progress.
#include "zk/replies/programs.h"

#include <algorithm>
#include <cstring>

#include "commands/pages.h"
#include "connection/elapsed.h"
#include "connection/exchange.h"
#include "connection/wrappers.h"
#include "zk/arm_limits.h"
#include "zk/frames.h"

using namespace zk;

ProgramListReply Get_Program_Trajectory_List_Cmd[ZK_SLOTS];
ZK_API int Get_Program_Trajectory_List(ArmSocket s, ProgramList* list) {
    return checked(Get_Program_Trajectory_List_Block, s, list);
}
ZK_API int Get_Program_Trajectory_List_Block(ArmSocket s, ProgramList* list) {
    if (any_null(list)) return ZK_BAD_ARGUMENT;
    const auto deliver = [&](const ProgramListReply& reply) {
        list->page_num = reply.programs.page_num;
        list->page_size = reply.programs.page_size;
        list->total_size = reply.programs.total_size;
        std::memcpy(list->vague_search, reply.programs.vague_search, sizeof list->vague_search);
        std::copy_n(reply.programs.list, reply.received, list->list);
    };
    return query(page_request(s, "get_program_trajectory_list", *list), Get_Program_Trajectory_List_Cmd, deliver,
                 {.wipes_first = true});
}
ZK_API int Parser_Get_Program_Trajectory_List(const char* text, ProgramList* list) {
    int32_t received;
    return read_program_list(text, &received, list);
}
int zk::read_program_list(const char* text, int32_t* received, ProgramList* list) {
    Reply reply(text);
    *received = 0;
    reply.take("page_num", list->page_num);
    reply.take("page_size", list->page_size);
    reply.take("total_size", list->total_size);
    cut_text(reply, reply.root(), "vague_search", list->vague_search);
    for (const Item item : reply.array(reply.root(), "list")) {
        if (!reply.good() || *received == ZK_PROGRAMS) break;
        ProgramEntry& entry = list->list[*received];
        reply.take(item, "id", entry.id);
        reply.take(item, "size", entry.size);
        reply.take(item, "speed", entry.speed);
        cut_text(reply, item, "trajectory_name", entry.trajectory_name);
        if (reply.good()) ++*received;
    }
    return reply.status();
}

ProgramRunStateReply Get_Program_Run_State_Cmd[ZK_SLOTS];
ZK_API int Get_Program_Run_State(ArmSocket s, ProgramRunState* state) {
    return checked(Get_Program_Run_State_Block, s, state);
}
ZK_API int Get_Program_Run_State_Block(ArmSocket s, ProgramRunState* state) {
    constexpr int32_t longer_ms = 1000;
    if (any_null(state)) return ZK_BAD_ARGUMENT;
    return query({s, "get_program_run_state"}, Get_Program_Run_State_Cmd,
                 [&](const ProgramRunStateReply& reply) { *state = reply.state; },
                 {.wipes_first = true, .limit = limit_beyond(longer_ms)});
}

// The rounds of the loops around the line in progress.
static void read_loops(Reply& reply, ProgramRunState* state) {
    const Item rounds = reply.array(reply.root(), "loop_num");
    const Item current = reply.array(reply.root(), "loop_cont", rounds.size());
    if (!reply.good()) return;
    state->loop_count = std::min(rounds.size(), ZK_PROGRAM_LOOPS);
    for (int i = 0; i < state->loop_count; ++i) {
        state->loop_num[i] = rounds[i].integer();
        state->loop_cont[i] = current[i].integer();
    }
}

ZK_API int Parser_Get_Program_Run_State(const char* text, ProgramRunState* state) {
    Reply reply(text);
    reply.take("run_state", state->run_state);
    if (!reply.good()) return reply.status();
    if (state->run_state == ZK_PROGRAM_NONE) {
        state->id = state->plan_num = state->loop_count = state->plan_speed = state->step_mode = -1;
    } else {
        reply.take("id", state->id);
        reply.take("plan_num", state->plan_num);
        read_loops(reply, state);
        reply.take("plan_speed", state->plan_speed);
        reply.take("step_mode", state->step_mode);
    }
    if (reply.find("edit_id")) reply.take("edit_id", state->edit_id);
    return reply.good() ? state->run_state : reply.status();
}

static Request start(ArmSocket s, int32_t id, int32_t speed) {
    return Request(s, "set_program_id_start").number("id", id).number("speed", speed);
}

AckReply Set_Program_ID_Start_Cmd[ZK_SLOTS];
IntReply Run_Finish_Cmd[ZK_SLOTS];
ZK_API int Set_Program_ID_Start(ArmSocket s, int32_t id, int32_t speed, bool block) {
    return guarded(block ? Set_Program_ID_Start_Block : Set_Program_ID_Start_NonBlock, s, id, speed);
}
ZK_API int Set_Program_ID_Start_NonBlock(ArmSocket s, int32_t id, int32_t speed) {
    return set(start(s, id, speed), Set_Program_ID_Start_Cmd);
}

namespace {

// Watches a program from its start to its end.
class Run {
 public:
    explicit Run(const Connection& connection) : connection_(connection) {}

    int wait() {
        for (;;) {
            const int refusal = refused();
            if (const int status = connection_.status()) return status;
            if (refusal) return refusal;
            ProgramRunState state{};
            const int status = Get_Program_Run_State(connection_.socket(), &state);
            if (is_held_by_file(connection_, status)) {
                pause(connection_, kRunPollMs);
            } else if (status != ZK_OK && status != state.run_state) {
                if (++fails_ > kMostFailedPolls) return status;
            } else if (state.run_state == ZK_PROGRAM_RUNNING) {
                if (has_arrived(finish_, connection_)) return take_result(finish_, connection_);
                seen_ = true;
                pause(connection_, kRunPollMs, finish_);
            } else if (state.run_state != ZK_PROGRAM_NONE) {
                sleep_cp(kPollMs);
            } else if (seen_ || ++idle_ == kMostIdlePolls) {
                return await_result(finish_, connection_, limit_beyond(kFinishMs));
            } else {
                pause(connection_, kRunPollMs);
            }
        }
    }

 private:
    static constexpr int32_t kRunPollMs = 100, kFinishMs = 1000;
    static constexpr int kMostFailedPolls = 5, kMostIdlePolls = 15;

    int refused() const {
        const Mailbox start(Set_Program_ID_Start_Cmd);
        return has_arrived(start, connection_) ? start.result(connection_.slot()) : int(ZK_OK);
    }

    Connection connection_;
    Mailbox finish_{Run_Finish_Cmd};
    bool seen_ = false;
    int fails_ = 0;
    int idle_ = 0;
};

}  // namespace

ZK_API int Set_Program_ID_Start_Block(ArmSocket s, int32_t id, int32_t speed) {
    const Wait connection(s);
    if (const int status = connection.claim(Run_Finish_Cmd, Sharing::kAlone)) return status;
    if (const int status = connection.claim(Set_Program_ID_Start_Cmd)) return status;
    Mailbox(Set_Program_ID_Start_Cmd).clear(connection.slot());
    Mailbox(Run_Finish_Cmd).clear(connection.slot());
    if (const int status = post(start(s, id, speed))) return status;
    return Run(connection).wait();
}
ZK_API int Parser_Set_Program_ID_Start(const char* text) { return acknowledgement(text, "start_state"); }
ZK_API int Parser_Program_Run_Finish(const char* text, int32_t* finish_id) {
    return integer_value(text, "finish_id", finish_id);
}

AckReply Delete_Program_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Delete_Program_Trajectory(ArmSocket s, int32_t id) {
    return guarded(Delete_Program_Trajectory_Block, s, id);
}
ZK_API int Delete_Program_Trajectory_Block(ArmSocket s, int32_t id) {
    return set(Request(s, "delete_program_trajectory").number("id", id), Delete_Program_Trajectory_Cmd);
}
ZK_API int Parser_Delete_State(const char* text) { return acknowledgement(text, "delete_state"); }

AckReply Update_Program_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Update_Program_Trajectory(ArmSocket s, int32_t id, int32_t speed, const char* name) {
    return checked(Update_Program_Trajectory_Block, s, id, speed, name);
}
ZK_API int Update_Program_Trajectory_Block(ArmSocket s, int32_t id, int32_t speed, const char* name) {
    return set(
        Request(s, "update_program_trajectory").text("project_name", name).number("plan_speed", speed).number("id", id),
        Update_Program_Trajectory_Cmd);
}

AckReply Set_Default_Run_Program_Cmd[ZK_SLOTS];
ZK_API int Set_Default_Run_Program(ArmSocket s, int32_t id) { return guarded(Set_Default_run_program_Block, s, id); }
ZK_API int Set_Default_run_program_Block(ArmSocket s, int32_t id) {
    return set(Request(s, "set_default_run_program").number("id", id), Set_Default_Run_Program_Cmd);
}

IntReply Get_Default_Run_Program_Cmd[ZK_SLOTS];
ZK_API int Get_Default_Run_Program(ArmSocket s, int32_t* id) { return checked(Get_Default_run_program_Block, s, id); }
ZK_API int Get_Default_run_program_Block(ArmSocket s, int32_t* id) {
    if (any_null(id)) return ZK_BAD_ARGUMENT;
    return query_value(s, "get_default_run_program", Get_Default_Run_Program_Cmd, id);
}
ZK_API int Parser_Get_id(const char* text, int32_t* id) { return integer_value(text, "id", id); }
