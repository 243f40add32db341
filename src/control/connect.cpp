// Connecting and closing.
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <new>

#include "connection/black_box.h"
#include "connection/journal.h"
#include "connection/line.h"
#include "connection/request.h"
#include "control/arms.h"
#include "control/at_exit.h"
#include "control/conversation.h"
#include "control/failure.h"
#include "control/stream.h"
#include "startup.h"
#include "zk/algorithm.h"
#include "zk/queue.h"
#include "zk/replies/joint_configuration.h"

namespace zk {
namespace {

constexpr int32_t kUsualTimeoutMs = 5000;
constexpr int32_t kShortestHeartbeatMs = 20;

thread_local char failure_text[256] = "";

struct Arms {
    std::mutex lock;
    std::array<Arm, ZK_SLOTS> of_slot;
};
Arms& arms() {
    static auto& only = *new Arms;  // never destroyed: callbacks may ask until the process ends
    return only;
}

bool is_arm_mode(int32_t mode) {
    for (const int32_t known : {0, 65, 75, 72, 62, 631, 632, 634, 651}) {
        if (mode == known) return true;
    }
    return false;
}

int check(const char* host, int32_t port, const ZK_ConnectOptions& options, const ArmSocket* arm) {
    if (!host || !*host) return fail(ZK_BAD_ARGUMENT, "the host is missing");
    if (!arm) return fail(ZK_BAD_ARGUMENT, "the place for the handle is null");
    if (port < 1 || port > 65535) return fail(ZK_BAD_ARGUMENT, "port %d is not within 1 to 65535", port);
    if (options.timeout_ms < 0) return fail(ZK_BAD_ARGUMENT, "the time limit is %d ms", options.timeout_ms);
    if (!is_arm_mode(options.arm_mode)) return fail(ZK_BAD_ARGUMENT, "%d is no arm mode", options.arm_mode);
    if (options.heartbeat_ms != 0 && options.heartbeat_ms < kShortestHeartbeatMs) {
        return fail(ZK_BAD_ARGUMENT, "a heartbeat of %d ms is below %d ms", options.heartbeat_ms, kShortestHeartbeatMs);
    }
    if (options.flags & ~uint32_t{ZK_STOP_AT_EXIT | ZK_KEEP_MODEL}) {
        return fail(ZK_BAD_ARGUMENT, "the flags 0x%x have unknown bits", options.flags);
    }
    return ZK_OK;
}

// Starts the threads and the transmit queue where nobody did, and leaves callback and settings as they are otherwise.
void start_library(int32_t arm_mode) {
    static auto& lock = *new std::mutex;
    const std::lock_guard guard(lock);
    ZK_Mutex_Lock();
    const bool has_queue = Socket_Tx_Buffer.base != nullptr;
    ZK_Mutex_UnLock();
    if (read(m_nThreadIsRun) == 0) {
        ZK_API_Init(arm_mode, read(callback1, std::memory_order_acquire));
    } else if (!has_queue) {
        ZK_API_Init(read(CUR_ARM_MODE), read(callback1, std::memory_order_acquire));
    }
}

HeartbeatQuery heartbeat_of(const ZK_ConnectOptions& options) {
    if (options.heartbeat_ms == 0) return {};
    const Frame frame = Request(0, "get_joint_max_speed").frame();
    return {.period = std::chrono::milliseconds(options.heartbeat_ms),
            .request = std::string(frame.text, static_cast<size_t>(frame.length)),
            .reply = 1,  // the code of joint_max_speed
            .mailbox = Mailbox(Joint_Max_Speed_Cmd)};
}

std::shared_ptr<const ZK_Model> geometry_of(const Introduction& arm) {
    ZK_Model* model = arm.model < 0 ? nullptr : ZK_Model_New(arm.model, arm.sensor);
    if (!model) return nullptr;
    ZK_Model_Set_Tool(model, &arm.tool.pose);
    ZK_Model_Set_Work_Frame(model, &arm.work.pose);
    ZK_Model_Set_Mounting(model, arm.mounting[0], arm.mounting[1], arm.mounting[2]);
    ZK_Model_Set_Joint_Limits(model, arm.min_position, arm.max_position);
    return {model, ModelDeleter()};
}

void put_into_model(Introduction& arm) {
    if (arm.model < 0) return;
    write(Curr_Robot_Type, arm.model);
    write(Curr_Senser_Type, arm.sensor);
    select_model();
    put_tool(arm.tool);
    put_work_frame(arm.work);
    Tool_Matrix = Algo_Pos2Matrix(arm.tool.pose);
    Frame_Matrix = Algo_Pos2Matrix(arm.work.pose);
    Algo_Set_Angle(arm.mounting[0], arm.mounting[1], arm.mounting[2]);
    Algo_Set_Joint_Max_Speed(arm.max_speed);
    Algo_Set_Joint_Max_Acc(arm.max_acceleration);
    Algo_Set_Joint_Min_Limit(arm.min_position);
    Algo_Set_Joint_Max_Limit(arm.max_position);
}

int connect(const char* host, int32_t port, const ZK_ConnectOptions& options, ArmSocket* arm) {
    black_box::open();
    Attempt attempt(options.timeout_ms ? options.timeout_ms : kUsualTimeoutMs);
    Introduction found;
    if (const int status = converse(host, port, options.arm_mode, attempt, found)) {
        return fail(status, "%s", attempt.text());
    }
    Arm entry{.host = host,
              .address = found.peer.address,
              .port = port,
              .model = found.model,
              .sensor = found.sensor,
              .geometry = geometry_of(found)};
    std::unique_lock model(start_lock(), std::defer_lock);
    const bool keeps_model = options.flags & ZK_KEEP_MODEL;
    for (; !keeps_model && !model.try_lock(); sleep_cp(1)) {
        if (attempt.left() > 0) continue;
        return fail(ZK_NO_ANSWER, "an Arm_Socket_Start of another thread holds the process-wide model");
    }
    start_library(found.arm_mode);
    const ArmSocket handle =
        Line::open(found.peer.descriptor.get(), found.arm_mode, heartbeat_of(options), std::move(found.rest));
    if (handle < 0) return fail(ZK_TABLE_FULL, "all %d connections are taken", ZK_SLOTS);
    found.peer.descriptor.release();
    const Connection connection(handle);
    if (const int status = start_afresh(connection)) {
        Line::of(handle)->close(handle);
        return fail(status, status == ZK_LOST ? "the controller closed the connection after the start-up"
                                              : "a callback for the slot's last connection does not return");
    }
    entry.handle = handle;
    add_arm(connection.slot(), std::move(entry));
    const bool pushes = found.push.enable;
    const int error = pushes ? open_stream(connection.slot(), handle, found.peer.address, found.push.port) : 0;
    if (!keeps_model) {
        put_into_model(found);
        model.unlock();
    }
    if (error) log(ZK_LOG_EVENTS, handle, "no real-time stream: port %d: %s", found.push.port, std::strerror(error));
    if (options.flags & ZK_STOP_AT_EXIT) {
        Line::at(connection.slot()).stops_at_exit = true;
        watch_the_exit();
    }
    *arm = handle;
    report_change(handle, ZK_CONNECTION_UP, "");
    if (Line* line = Line::of(handle)) line->introduce();  // the callback may have closed it
    return ZK_OK;
}

}  // namespace

int fail(int status, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(failure_text, sizeof failure_text, format, arguments);
    va_end(arguments);
    return status;
}

int fail(int status) { return fail(status, "%s", ZK_Status_Text(status)); }

void add_arm(int slot, Arm arm) {
    const std::lock_guard guard(arms().lock);
    arms().of_slot[static_cast<size_t>(slot)] = std::move(arm);
}

Arm arm_of(ArmSocket handle) {
    const int slot = is_handle(handle) ? slot_of(handle) : -1;
    if (slot < 0) return {};
    const std::lock_guard guard(arms().lock);
    const Arm& arm = arms().of_slot[static_cast<size_t>(slot)];
    return arm.handle == handle ? arm : Arm{};
}

void remove_arm(ArmSocket handle) {
    const std::lock_guard guard(arms().lock);
    for (Arm& arm : arms().of_slot) {
        if (arm.handle == handle) arm = {};
    }
}

}  // namespace zk

using namespace zk;

ZK_API int ZK_Connect(const char* host, int32_t port, const ZK_ConnectOptions* options, ArmSocket* arm) try {
    if (arm) *arm = 0;
    const ZK_ConnectOptions usual{};
    if (const int status = check(host, port, options ? *options : usual, arm)) return status;
    return connect(host, port, options ? *options : usual, arm);
} catch (const std::bad_alloc&) {
    return fail(ZK_NO_MEMORY);
}

ZK_API int ZK_Close(ArmSocket arm) {
    Line* line = Line::of(arm);
    if (!line || !line->close(arm)) return fail(ZK_STALE_HANDLE);
    close_stream(arm);
    remove_arm(arm);
    return ZK_OK;
}

ZK_API int ZK_Close_All() {
    int closed = 0;
    for (int slot = 0; slot < ZK_SLOTS; ++slot) {
        const Line& line = Line::at(slot);
        const ArmSocket handle = line.handle();
        if (handle != 0 && line.is_introduced() && ZK_Close(handle) == ZK_OK) ++closed;
    }
    return closed;
}

ZK_API const char* ZK_Failure() { return failure_text; }

ZK_API ZK_Model* ZK_Arm_Model(ArmSocket arm) try {
    const Arm found = arm_of(arm);
    if (found.handle == 0) fail(ZK_STALE_HANDLE);
    return found.geometry ? ZK_Model_Clone(found.geometry.get()) : nullptr;
} catch (const std::bad_alloc&) {
    fail(ZK_NO_MEMORY);
    return nullptr;
}
