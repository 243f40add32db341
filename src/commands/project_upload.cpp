// Sends a project to the controller: announces it, writes it ten bytes at a time, waits for the verdict.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>
#include <string>

#include "commands/transfer.h"
#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/transmit.h"
#include "connection/wrappers.h"
#include "zk/connection.h"
#include "zk/replies/file_transfer.h"

using namespace zk;

AckReply Run_Project_Cmd[ZK_SLOTS];
IntReply Send_Project_Cmd[ZK_SLOTS];

ZK_API int Parser_RunProject(const char* text) {
    return acknowledgement(text, "project_state", ZK_WRONG_TYPE, ZK_BAD_PATH);
}

ZK_API int Parser_SendFile(const char* text, int32_t* err_line) {
    Reply reply(text);
    const int status = reply.acknowledgement("project_state", ZK_WRONG_TYPE, ZK_BAD_PATH);
    const Item line = reply.find("err_line");
    if (status == ZK_BAD_PATH && line.is_number()) *err_line = line.integer();
    return status;
}

namespace {

constexpr int32_t kChunk = 10;  // the controller takes a project in pieces of this size

struct Program {
    int32_t save_id;
    int32_t only_save;
    int32_t plan_speed;
    uint8_t auto_start;
    uint8_t step_flag;
};

int announce(ArmSocket s, const Program& program, const std::string& name, int32_t file_size) {
    Request request(s, "run_project");
    request.text("project_name", name.c_str()).number("file_size", file_size).number("plan_speed", program.plan_speed);
    if (is_handle(s) || read(g_is_robot_type_i)) {
        request.number("auto_start", program.auto_start)
            .number("step_flag", program.step_flag)
            .number("save_id", program.save_id)
            .number("only_save", program.only_save);
    }
    return set(request, Run_Project_Cmd, {.direct = true});
}

int write_in_chunks(ByteStream& stream, const char* data, int32_t size, Progress& progress) {
    progress.begin(size);
    for (int32_t at = 0; at < size; at += std::min(kChunk, size - at)) {
        const int32_t piece = std::min(kChunk, size - at);
        // A chunk ends at a zero byte.
        if (const int status = stream.write(data + at, strnlen(data + at, static_cast<size_t>(piece)))) return status;
        progress.sent(at + piece);
    }
    return ZK_OK;
}

int send_bytes(const Wait& connection, const char* data, int32_t size, int32_t* err_line, Progress& progress) {
    if (const int status = connection.claim(Send_Project_Cmd, Sharing::kAlone)) return status;
    Mailbox(Send_Project_Cmd).clear(connection.slot());
    write(Send_Project_Cmd[connection.slot()].value, 0);
    ByteStream stream = file_stream(connection);
    return await_verdict(connection, stream, write_in_chunks(stream, data, size, progress), err_line);
}

std::string project_name(std::string_view path) {
    const size_t separator = last_separator(path);
    if (separator != path.npos) path.remove_prefix(separator + 1);
    return std::string(path.substr(0, path.rfind('.')));
}

// The lines of a file, or -1 when it cannot be read.
int lines_in(const char* path) {
    const File file(std::fopen(path ? path : "", "r"));
    if (!file) return -1;
    int lines = 0;
    char line[1024];
    while (std::fgets(line, sizeof line, file.get())) ++lines;
    return lines;
}

// Copies a project with the header lines to a file of that name in its directory. The doubled separator is part of the
// interface.
bool add_header(ArmSocket s, std::string& path, const std::string& name) {
    std::printf("Save As: [%s]\n", name.c_str());
    const size_t slash = path.rfind('/');
    if (slash == path.npos) {
        std::puts("File name check error!");
        return false;
    }
    const std::string copy = path.substr(0, slash + 1) + "/" + name;
    add_lines_to_file(s, path.c_str(), copy.c_str());
    path = copy;
    return true;
}

struct Content {
    std::unique_ptr<char[]> data;  // null when the file could not be read
    int32_t size = 0;
};

Content read_file(const std::string& path) {
    const File file(std::fopen(path.c_str(), "rb"));
    const int32_t size = file ? size_of(file.get()) : -1;
    if (size < 0) return {};
    Content content{std::unique_ptr<char[]>(new (std::nothrow) char[static_cast<size_t>(size) + 1]), size};
    const size_t wanted = static_cast<size_t>(size);
    if (content.data && std::fread(content.data.get(), 1, wanted, file.get()) != wanted) content.data.reset();
    return content;
}

int send_project(ArmSocket s, std::string path, const Program& program, bool with_header, int32_t* err_line,
                 Progress progress) {
    std::string name = project_name(path);
    if (with_header) {
        name = name + zk_get_cur_time() + ".txt";
        if (!add_header(s, path, name)) return ZK_BAD_FILE_NAME;
    }
    const Content content = read_file(path);
    if (!content.data) return ZK_FILE_UNREADABLE;
    const Wait connection(s);
    const Transfer transfer(connection);
    if (const int status = transfer.announced(announce(s, program, name, content.size))) return status;
    return send_bytes(connection, content.data.get(), content.size, err_line, progress);
}

int send_held(ArmSocket s, int32_t* err_line, const ProjectSendParams& p, Progress progress) {
    const LineHold hold;
    if (!hold.held()) return ZK_SENDING_FILE;
    if (p.project_path_len > ZK_PATH_SIZE) return ZK_PATH_TOO_LONG;
    const Program program{p.save_id, p.only_save, p.plan_speed, static_cast<uint8_t>(p.auto_start),
                          static_cast<uint8_t>(p.step_flag)};
    return send_project(s, bounded(p.project_path, p.project_path_len), program, p.project_type != 0, err_line,
                        progress);
}

}  // namespace

ZK_API int Send_TrajectoryFile(ArmSocket s, int32_t* err_line, ProjectSendParams params) {
    return send_held(s, err_line, params, {nullptr, nullptr});
}
ZK_API int ZK_Send_TrajectoryFile_With_Progress(ArmSocket s, int32_t* err_line, ProjectSendParams params,
                                                ZK_TransferProgress progress, void* user) {
    return send_held(s, err_line, params, {progress, user});
}
ZK_API int Send_TrajectoryFile_Block(ArmSocket s, int32_t save_id, int32_t only_save, const char* path,
                                     int32_t path_len, int32_t plan_speed, uint8_t auto_start, uint8_t step_flag,
                                     int32_t* err_line, int32_t project_type) {
    if (any_null(path)) return ZK_BAD_ARGUMENT;
    if (path_len > ZK_PATH_SIZE) return ZK_PATH_TOO_LONG;
    return send_project(s, bounded(path, path_len), {save_id, only_save, plan_speed, auto_start, step_flag},
                        project_type != 0, err_line, {nullptr, nullptr});
}
ZK_API int Run_Project_Block(ArmSocket s, int32_t save_id, int32_t only_save, const char* name, int32_t name_len,
                             int32_t file_size, int32_t plan_speed, uint8_t auto_start, uint8_t step_flag) {
    if (any_null(name)) return ZK_BAD_ARGUMENT;
    return announce(s, {save_id, only_save, plan_speed, auto_start, step_flag}, bounded(name, name_len), file_size);
}
ZK_API int Send_Project_Block(ArmSocket s, const char* data, int32_t size, int32_t* err_line) {
    if (any_null(data)) return ZK_BAD_ARGUMENT;
    Progress unreported(nullptr, nullptr);
    return send_bytes(Wait(s), data, size, err_line, unreported);
}

ZK_API const char* zk_get_cur_time() {
    static char text[50];
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d_%02d_%02d", local.tm_year + 1900, local.tm_mon + 1,
                  local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    return text;
}

ZK_API void add_lines_to_file(ArmSocket s, const char* source, const char* target) {
    const int lines = is_handle(s) ? lines_in(source) : countLinesInFile(source);
    const File in(lines < 0 ? nullptr : std::fopen(source, "r"));
    if (!in) {
        std::printf("Failed to open file: %s\n", source ? source : "");
        return;
    }
    const File out(std::fopen(target ? target : "", "w"));
    if (!out) return std::perror("Error opening file");
    std::fprintf(out.get(), "{\"file\":%d}\r\n", joint_count(s));
    std::fprintf(out.get(), "{\"name\":\"Folder\",\"num\":1,\"type\":%d,\"enabled\":true,\"parent_number\":0}\r\n",
                 lines);
    char line[1024];
    while (std::fgets(line, sizeof line, in.get())) std::fputs(line, out.get());
}

ZK_API int countLinesInFile(const char* path) {
    const int lines = lines_in(path);
    if (lines >= 0) return lines;
    std::perror("打开文件失败");
    std::exit(1);
}
