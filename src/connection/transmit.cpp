// The entrance of the transmit queue, and the thread that empties it.
#include <atomic>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "connection/die.h"
#include "connection/elapsed.h"
#include "connection/journal.h"
#include "connection/line.h"
#include "connection/slots.h"
#include "connection/transmit.h"
#include "zk/queue.h"
#include "zk/status.h"

using namespace zk;

namespace {

constexpr int32_t kPaceMs = 20;  // at most 50 frames a second, over all connections
constexpr size_t kLongestFrame = sizeof(TxFrame) - offsetof(TxFrame, data);

char* bytes_of(TxFrame& frame) { return reinterpret_cast<char*>(&frame) + offsetof(TxFrame, data); }

// The value of "command", the first key of a request; empty when the text is no request.
std::string command_of(const char* text, size_t bytes) {
    const std::string_view request(text, bytes), key = "\"command\"";
    const size_t colon = request.find(key);
    const size_t start = colon == request.npos ? colon : request.find('"', colon + key.size());
    if (start == request.npos) return {};
    return std::string(request.substr(start + 1, request.find('"', start + 1) - start - 1));
}

ssize_t write_frame(TxFrame& frame) {
    return send_silently(frame.socket, bytes_of(frame), static_cast<size_t>(frame.length < 0 ? 0 : frame.length));
}

// True while WriteThread checks IsSendFile, takes a frame and writes it.
std::atomic<bool> transmitting{false};

void write_next_frame() {
    TxFrame frame{};
    ssize_t sent = 0;
    transmitting.store(true, std::memory_order_seq_cst);
    if (read(IsSendFile, std::memory_order_seq_cst) != 1 && ZK_Dequeue(&Socket_Tx_Buffer, &frame))
        sent = write_frame(frame);
    transmitting.store(false, std::memory_order_release);
    if (sent > 0) log_frame(frame.socket, Way::kSent, bytes_of(frame), static_cast<size_t>(sent));
}

}  // namespace

void zk::wait_for_frame() {
    for (Pause pause; transmitting.load(std::memory_order_seq_cst);) pause.next();
}

LineHold::LineHold() : held_(std::atomic_ref(IsSendFile).exchange(1, std::memory_order_seq_cst) != 1) {
    // A frame in the middle of a file would become a part of it.
    if (held_) wait_for_frame();
}

LineHold::~LineHold() {
    if (held_) write(IsSendFile, 0, std::memory_order_seq_cst);
}

void zk::forget_frames(ArmSocket socket) {
    ZK_Mutex_Lock();
    Queue_Mutex_Lock();
    const TxQueue& queue = Socket_Tx_Buffer;
    for (int32_t i = queue.front; queue.base && i != queue.rear; i = (i + 1) % queue.capacity) {
        if (queue.base[i].socket == socket) queue.base[i].socket = -1;
    }
    Queue_Mutex_UnLock();
    ZK_Mutex_UnLock();
}

int zk::enqueue(ArmSocket socket, const char* text, int32_t length) {
    const size_t bytes = length < 0 ? 0 : static_cast<size_t>(length);
    if (bytes > kLongestFrame) {
        die("the request \"%s\" takes %d bytes, the queue holds %zu", command_of(text, bytes).c_str(), length,
            kLongestFrame);
    }

    TxFrame frame{};
    if (bytes > 0) std::memcpy(bytes_of(frame), text, bytes);
    frame.length = length;
    frame.socket = socket;

    ZK_Mutex_Lock();
    int status = Socket_Tx_Buffer.base ? ZK_OK : ZK_NOT_RUNNING;
    if (status == ZK_OK) {
        release_request();
        if (!ZK_Enqueu(&Socket_Tx_Buffer, &frame)) status = ZK_SEND_FAILED;
    }
    ZK_Mutex_UnLock();
    return status;
}

// What does not fit or finds no queue is dropped and counted, where a socket's frame is changed or ends the process.
static void add_for_handle(ArmSocket handle, const char* text, int32_t length) {
    const bool fits = length >= 1 && length <= int32_t{sizeof TxFrame::data};
    const int status = fits ? enqueue(handle, text, length) : int(ZK_BAD_ARGUMENT);
    if (status == ZK_OK) return;
    if (Line* line = Line::of(handle)) ++line->traffic().dropped;
    log(ZK_LOG_EVENTS, handle, "a frame of %d bytes is dropped: %s", length,
        fits ? ZK_Status_Text(status) : "a frame has 1 to 500");
}

ZK_API void Add_Queue(int32_t socket, const char* text, int32_t length) {
    if (is_handle(socket)) return add_for_handle(socket, text, length);
    wake_receiver();  // an application may have put the socket into the table itself
    const int status = enqueue(socket, text, length);
    if (status == ZK_NOT_RUNNING) {
        die("the request \"%s\" needs ZK_API_Init first, and again after ZK_API_UnInit",
            command_of(text, length < 0 ? 0 : static_cast<size_t>(length)).c_str());
    }
    if (status == ZK_SEND_FAILED) {
        std::printf("enqueue socket:%d\r\n", socket);
        std::fflush(stdout);
    }
}

// The frames leave at the times of a thread that looks once in every kPaceMs; an empty queue needs no looks.
ZK_API void* WriteThread(void*) {
    for (;;) {
        write_next_frame();
        const int32_t start = Get_Program_Runtime();
        wait_for_queued();
        sleep_cp(kPaceMs - elapsed_since(start) % kPaceMs);
    }
    return nullptr;
}
