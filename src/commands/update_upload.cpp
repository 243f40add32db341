// Sends a software update to the controller: announces it, writes it as it is, waits for the verdict.
#include <array>
#include <string>

#include "commands/transfer.h"
#include "connection/die.h"
#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/replies/file_transfer.h"

using namespace zk;

AckReply Run_Update_Software_Project_Cmd[ZK_SLOTS];

ZK_API int Parser_Run_UpdateSoftware_E(const char* text) {
    return acknowledgement(text, "update_state", ZK_WRONG_TYPE, ZK_BAD_PATH);
}

namespace {

constexpr size_t kChunk = 2000;
constexpr int kLongestPath = 1023;

// The one request that is a single line, and whose name is not escaped. A connection of ZK_Connect refuses a name that
// needs to be, or does not fit.
Frame announcement(ArmSocket s, const std::string& name, int32_t file_size) {
    Frame frame;
    frame.length = std::snprintf(frame.text, Request::kUsualFrame,
                                 "{\"command\":\"update_software\",\"file_size\":%d,\"update_name\":\"%s\"}\r\n",
                                 file_size, name.c_str());
    const bool fits = frame.length < Request::kUsualFrame;
    if (is_handle(s) && (!fits || name.find_first_of("\"\\\r\n") != name.npos)) return Frame::refused(ZK_BAD_ARGUMENT);
    if (!fits) {
        die("the request \"update_software\" takes %d bytes, its frame holds %d", frame.length,
            Request::kUsualFrame - 1);
    }
    return frame;
}

int announce(ArmSocket s, const std::string& name, int32_t file_size) {
    const Frame frame = announcement(s, name, file_size);
    std::printf("Run_Update_Software_Block: %s", frame.text);
    return set(s, frame, Run_Update_Software_Project_Cmd);
}

int write_in_chunks(ByteStream& stream, FILE* file, Progress& progress) {
    progress.begin(size_of(file));
    std::array<char, kChunk> piece;
    int64_t sent = 0;
    while (const size_t got = std::fread(piece.data(), 1, piece.size(), file)) {
        if (const int status = stream.write(piece.data(), got)) return status;
        progress.sent(sent += static_cast<int64_t>(got));
    }
    return ZK_OK;
}

int send_bytes(const Wait& connection, const std::string& path, Progress& progress) {
    if (const int status = connection.claim(Send_Project_Cmd, Sharing::kAlone)) return status;
    Mailbox(Send_Project_Cmd).clear(connection.slot());
    const File file(std::fopen(path.c_str(), "rb+"));
    if (!file) return ZK_FILE_UNREADABLE;
    ByteStream stream = file_stream(connection);
    return await_verdict(connection, stream, write_in_chunks(stream, file.get(), progress), nullptr);
}

int send_update(ArmSocket s, const char* given_path, int32_t length, Progress progress) {
    if (any_null(given_path)) return ZK_BAD_ARGUMENT;
    if (length > ZK_PATH_SIZE) return ZK_PATH_TOO_LONG;
    const std::string path = bounded(given_path, length);
    const size_t separator = last_separator(path);
    if (separator == path.npos) return ZK_BAD_PATH;

    File file(std::fopen(path.c_str(), "rb+"));
    const int32_t size = file ? size_of(file.get()) : -1;
    file.reset();
    if (size >= 0) write(m_update_scale, 0);
    if (size < 1) return ZK_FILE_UNREADABLE;
    const Wait connection(s);
    const Transfer transfer(connection);
    if (const int status = transfer.announced(announce(s, path.substr(separator + 1), size))) return status;
    return send_bytes(connection, path, progress);
}

}  // namespace

ZK_API int UpdataSoftWare_Block_E(ArmSocket s, const char* path, int32_t path_len) {
    return send_update(s, path, path_len, {nullptr, nullptr});
}
ZK_API int ZK_UpdataSoftWare_With_Progress(ArmSocket s, const char* path, int32_t path_len,
                                           ZK_TransferProgress progress, void* user) {
    return send_update(s, path, path_len, {progress, user});
}
ZK_API int Run_Update_Software_Block_E(ArmSocket s, const char* name, int32_t name_len, int32_t file_size) {
    if (any_null(name)) return ZK_BAD_ARGUMENT;
    return announce(s, bounded(name, name_len), file_size);
}
ZK_API int Send_Update_Software_Block_E(ArmSocket s, const char* path, int32_t path_len) {
    if (any_null(path)) return ZK_BAD_ARGUMENT;
    Progress unreported(nullptr, nullptr);
    return send_bytes(Wait(s), bounded(path, path_len, kLongestPath), unreported);
}
