#include "connection/exchange.h"

#include <algorithm>

#include "connection/black_box.h"
#include "connection/elapsed.h"
#include "connection/line.h"
#include "connection/transmit.h"
#include "zk/queue.h"

namespace zk {

// A handle is refused where a socket's frame is dropped or ends the process.
static int post(ArmSocket socket, const Frame& frame) {
    if (!is_handle(socket)) {
        Add_Queue(socket, frame.text, frame.length);
        return ZK_OK;
    }
    const Connection connection(socket);
    if (const int status = connection.status()) return status;
    if (Line::at(connection.slot()).is_in_transfer()) return ZK_SENDING_FILE;
    if (frame.refusal) return frame.refusal;
    if (frame.length < 1 || frame.length > static_cast<int>(sizeof TxFrame::data)) return ZK_BAD_ARGUMENT;
    return enqueue(socket, frame.text, frame.length);
}
int post(const Request& request) { return post(request.socket(), request.frame()); }

static int stream(ArmSocket socket, const Frame& frame, bool announces_file = false) {
    if (frame.refusal) return frame.refusal;
    if (frame.length < 1) return ZK_SEND_FAILED;
    release_request();
    const auto sent = send_now(socket, frame.text, static_cast<size_t>(frame.length), announces_file);
    return sent < 1 ? int(ZK_SEND_FAILED) : int(ZK_OK);
}
int stream(const Request& request) { return stream(request.socket(), request.frame()); }

bool has_arrived(Mailbox mailbox, const Connection& connection) {
    return connection.slot() >= 0 && mailbox.count(connection.slot()) > 0;
}

void pause(const Connection& connection, int32_t milliseconds, Mailbox awaited) {
    pause(connection, milliseconds, [&] { return has_arrived(awaited, connection); });
}

int await(Mailbox mailbox, const Connection& connection, int32_t limit, int32_t poll) {
    const int32_t start = Get_Program_Runtime();
    for (;; pause(connection, poll, mailbox)) {
        const bool arrived = has_arrived(mailbox, connection);
        if (arrived && connection.is_open()) return ZK_OK;
        if (const int status = connection.status()) return status;
        if (elapsed_since(start) >= limit) return ZK_TIMEOUT;
    }
}

int take_result(Mailbox mailbox, const Connection& connection, Take take) {
    const int result = mailbox.result(connection.slot());
    if (result != ZK_OK && is_handle(connection.socket())) black_box::keep("error");
    take == Take::kAll ? mailbox.clear(connection.slot()) : mailbox.lower(connection.slot());
    return connection.is_open() ? result : int(ZK_NOT_CONNECTED);
}

int await_result(Mailbox mailbox, const Connection& connection, int32_t limit, Take take, int32_t poll) {
    const int status = await(mailbox, connection, limit, poll);
    return status ? status : take_result(mailbox, connection, take);
}

int32_t limit_beyond(int32_t milliseconds) {
    return static_cast<int32_t>(std::min<int64_t>(int64_t{read(m_nOutTime)} + milliseconds, kNoLimit));
}

static int32_t limit_of(int32_t limit) { return limit > 0 ? limit : read(m_nOutTime); }

// A call on a connection of ZK_Connect whose reply did not come in time is counted.
static int counted(const Connection& connection, int status) {
    if (status == ZK_TIMEOUT && is_handle(connection.socket())) {
        ++Line::at(connection.slot()).traffic().late;
        black_box::keep("silence");
    }
    return status;
}

int set(const Request& request, Mailbox mailbox, const SetForm& form) {
    if (slot_of(request.socket()) < 0) return ZK_NOT_CONNECTED;
    return set(request.socket(), request.frame(), mailbox, form);
}

int set(ArmSocket socket, const Frame& frame, Mailbox mailbox, const SetForm& form) {
    const Wait connection(socket);
    if (const int status = connection.claim(mailbox)) return status;
    if (form.clears) Mailbox(*form.clears).clear(connection.slot());
    if ((!form.clears && !form.keeps_count) || is_handle(socket)) mailbox.clear(connection.slot());

    if (form.direct) {
        if (const int status = stream(socket, frame, true)) return status;
    } else if (const int status = post(socket, frame)) {
        return status;
    }
    return counted(connection, await_result(mailbox, connection, limit_of(form.limit)));
}

int exchange(const Request& request, Mailbox mailbox, const QueryForm& form, void* record, bool& arrived) {
    const Wait connection(request.socket());
    const int32_t start = Get_Program_Runtime(), limit = limit_of(form.limit);
    if (const int status = connection.claim(mailbox, Sharing::kInTurn, limit)) return status;
    const int slot = connection.slot();
    const bool has_own_way = is_handle(request.socket());  // no late reply counts, and no other arm's record is wiped
    if (form.clears_before || has_own_way) mailbox.clear(slot);

    if (const int status = post(request)) return status;
    if (const int status = await(mailbox, connection, has_own_way ? limit - elapsed_since(start) : limit))
        return counted(connection, status);
    form.clears_after || has_own_way ? mailbox.clear(slot) : mailbox.lower(slot);
    mailbox.copy(slot, record);
    int result = mailbox.result(slot);
    if (form.wipes_first && !has_own_way && !is_handle(read(SockInfo[0].socket))) mailbox.wipe(0);
    if (form.result_last) result = mailbox.result(slot);
    arrived = connection.is_open();  // otherwise the record may be that of the next connection
    return arrived ? result : int(ZK_NOT_CONNECTED);
}

}  // namespace zk
