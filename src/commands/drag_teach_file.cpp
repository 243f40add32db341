// The trajectory of a drag teaching, from the controller to a local file.
#include <string>

#include "commands/drag_point.h"
#include "commands/drag_recording.h"
#include "commands/transfer.h"
#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/replies/file_transfer.h"

using namespace zk;

IntReply Save_Trajectory_Cmd[ZK_SLOTS];

namespace {

// Opens the file, sends the request and waits for the announcement.
int ask_for_points(const Wait& connection, const std::string& path, int32_t limit) {
    if (const int status = connection.claim(Save_Trajectory_Cmd, Sharing::kAlone)) return status;
    if (!open_recording(path.c_str())) return ZK_FILE_NOT_CREATED;
    const size_t separator = last_separator(path);
    if (separator == path.npos) return ZK_BAD_PATH;
    Mailbox(Save_Trajectory_Cmd).clear(connection.slot());
    int status =
        post(Request(connection.socket(), "save_trajectory").text("trajectory_name", path.c_str() + separator + 1));
    if (!status) status = await(Save_Trajectory_Cmd, connection, limit);
    if (status && status != ZK_TIMEOUT) close_recording();
    return status;
}

}  // namespace

void zk::save_drag_point(int slot, const char* message) { record(message, read(Save_Trajectory_Cmd[slot].value)); }

ZK_API int Save_Trajectory(ArmSocket s, const char* path, int32_t* total) {
    if (sending_file()) return ZK_SENDING_FILE;
    if (any_null(path, total)) return ZK_BAD_ARGUMENT;
    const Wait call(s);
    if (const int status = sleep_before(call, 2)) return status;
    return Save_Drag_Teach_File_Block_NC_E(s, path, total);
}

ZK_API int Save_Drag_Teach_File_Block_NC_E(ArmSocket s, const char* path, int32_t* total) {
    constexpr int32_t extra_ms = 30000;
    if (any_null(path, total)) return ZK_BAD_ARGUMENT;
    const Wait connection(s);
    if (const int status = ask_for_points(connection, path, limit_beyond(extra_ms))) return status;
    Mailbox mailbox(Save_Trajectory_Cmd);
    const int slot = connection.slot();
    *total = read(Save_Trajectory_Cmd[slot].value);
    const int result = mailbox.result(slot);
    if (result == ZK_OK && is_recording()) return ZK_OK;  // the points are still coming
    if (result != ZK_OK) close_recording();
    mailbox.clear(slot);
    return result;
}

// Blocks too, but not as long, and leaves the file open when the controller refuses.
ZK_API int Save_Drag_Teach_File_NonBlock(ArmSocket s, const char* path, int32_t* total) {
    if (any_null(path, total)) return ZK_BAD_ARGUMENT;
    const Wait connection(s);
    if (const int status = ask_for_points(connection, path, read(m_nOutTime))) {
        if (status == ZK_TIMEOUT) close_recording();
        return status;
    }
    Mailbox mailbox(Save_Trajectory_Cmd);
    *total = read(Save_Trajectory_Cmd[connection.slot()].value);
    return take_result(mailbox, connection);
}

ZK_API int Parser_Save_Drag_Teach_File_Block_NC_E(const char* text, int32_t* total) {
    Reply reply(text);
    const Item number = reply.number(reply.root(), "total_num");
    if (number) *total = number.integer();
    if (!reply.good()) return reply.status();
    const Item state = reply.find("save_state");
    reply.require(bool(state), ZK_BAD_REPLY);
    reply.require(!state.is_false(), number.integer() == 0 ? ZK_NOTHING_SAVED : ZK_REFUSED);
    return reply.status();
}
