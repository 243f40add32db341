// File transfer.
#include "zk/file_transfer.h"

#include "commands/drag_point.h"
#include "connection/exchange.h"
#include "connection/reply.h"

using namespace zk;

AckReply Run_Project_Cmd[ZK_SLOTS];
AckReply Run_Update_Software_Project_Cmd[ZK_SLOTS];
AckReply Set_Online_Start_Cmd[ZK_SLOTS];

ZK_API int Parser_RunProject(const char* text) {
    return acknowledgement(text, "project_state", ZK_WRONG_TYPE, ZK_BAD_PATH);
}
ZK_API int Parser_Run_UpdateSoftware_E(const char* text) {
    return acknowledgement(text, "update_state", ZK_WRONG_TYPE, ZK_BAD_PATH);
}
ZK_API int Parser_Set_Online_Start(const char* text) { return acknowledgement(text, "state"); }

FILE* F_SaveDragTeach = nullptr;
IntReply Save_Trajectory_Cmd[ZK_SLOTS];

namespace zk {

void save_drag_point(int slot, const char* message) {
    static int32_t saved = 0;
    FILE* file = read(F_SaveDragTeach, std::memory_order_acquire);
    if (!file) return;
    std::fprintf(file, "%s\n", message);
    std::fflush(file);
    if (++saved != read(Save_Trajectory_Cmd[slot].value)) return;
    write<FILE*>(F_SaveDragTeach, nullptr, std::memory_order_release);
    std::fclose(file);
    saved = 0;
}

}  // namespace zk
