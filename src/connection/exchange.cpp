#include "connection/exchange.h"

#include <sys/socket.h>

#include <algorithm>
#include <cstring>

#include "connection/elapsed.h"
#include "zk/queue.h"

namespace zk {
namespace {

constexpr size_t kHead = 2 * sizeof(int32_t);  // count and result precede the payload
constexpr Word kNoWord = 0;

}  // namespace

int32_t& Mailbox::word(int slot, int index) const { return reinterpret_cast<int32_t*>(at(slot))[index]; }

int Mailbox::count(int slot) const { return read(word(slot, 0), std::memory_order_acquire); }
int Mailbox::result(int slot) const { return read(word(slot, 1)); }
void Mailbox::clear(int slot) { write(word(slot, 0), 0, std::memory_order_release); }

void Mailbox::lower(int slot) {
    const std::atomic_ref count(word(slot, 0));
    int32_t held = count.load(std::memory_order_relaxed);
    while (held > 0 && !count.compare_exchange_weak(held, held - 1, std::memory_order_acq_rel)) {
    }
}

void Mailbox::wipe(int slot) {
    // The count last: a reply that arrives now is lost as a whole.
    for (size_t end = size_; end > 0; end -= sizeof(Word))
        write_words(at(slot) + end - sizeof(Word), &kNoWord, sizeof kNoWord);
}

void Mailbox::copy(int slot, void* record) const { read_words(record, at(slot), size_); }

void Mailbox::fill(int slot, const void* record) {
    write_words(at(slot) + kHead, static_cast<const std::byte*>(record) + kHead, size_ - kHead);
}

void Mailbox::finish(int slot, int result) { write(word(slot, 1), static_cast<int32_t>(result)); }

void Mailbox::raise(int slot, bool add) {
    if (add) {
        std::atomic_ref(word(slot, 0)).fetch_add(1, std::memory_order_acq_rel);
    } else {
        write(word(slot, 0), 1, std::memory_order_release);
    }
}

static int post(ArmSocket socket, const Frame& frame) {
    Add_Queue(socket, frame.text, frame.length);
    return ZK_OK;
}
int post(const Request& request) { return post(request.socket(), request.frame()); }

static int stream(ArmSocket socket, const Frame& frame) {
    release_request();
    return static_cast<int>(send(socket, frame.text, static_cast<size_t>(frame.length), MSG_DONTWAIT | MSG_NOSIGNAL));
}
int stream(const Request& request) { return stream(request.socket(), request.frame()); }

bool has_arrived(Mailbox mailbox, const Connection& connection) {
    return connection.slot() >= 0 && mailbox.count(connection.slot()) > 0;
}

int await(Mailbox mailbox, const Connection& connection, int32_t limit, int32_t poll) {
    const int32_t start = Get_Program_Runtime();
    for (;; sleep_cp(poll)) {
        const bool arrived = has_arrived(mailbox, connection);
        if (!connection.is_open()) return ZK_NOT_CONNECTED;
        if (arrived) return ZK_OK;
        if (elapsed_since(start) >= limit) return ZK_TIMEOUT;
    }
}

int take_result(Mailbox mailbox, const Connection& connection, Take take) {
    const int result = mailbox.result(connection.slot());
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

int set(const Request& request, Mailbox mailbox, const SetForm& form) {
    if (slot_of(request.socket()) < 0) return ZK_NOT_CONNECTED;
    return set(request.socket(), request.frame(), mailbox, form);
}

int set(ArmSocket socket, const Frame& frame, Mailbox mailbox, const SetForm& form) {
    const Connection connection(socket);
    if (!connection.is_open()) return ZK_NOT_CONNECTED;
    if (form.clears) Mailbox(*form.clears).clear(connection.slot());
    if (!form.clears && !form.keeps_count) mailbox.clear(connection.slot());

    if (form.direct) {
        if (stream(socket, frame) < 1) return ZK_SEND_FAILED;
    } else {
        post(socket, frame);
    }
    return await_result(mailbox, connection, limit_of(form.limit));
}

int exchange(const Request& request, Mailbox mailbox, const QueryForm& form, void* record, bool& arrived) {
    const Connection connection(request.socket());
    if (!connection.is_open()) return ZK_NOT_CONNECTED;
    const int slot = connection.slot();
    if (form.clears_before) mailbox.clear(slot);

    post(request);
    if (const int status = await(mailbox, connection, limit_of(form.limit))) return status;
    form.clears_after ? mailbox.clear(slot) : mailbox.lower(slot);
    mailbox.copy(slot, record);
    int result = mailbox.result(slot);
    if (form.wipes_first) mailbox.wipe(0);
    if (form.result_last) result = mailbox.result(slot);
    arrived = connection.is_open();  // otherwise the record may be that of the next connection
    return arrived ? result : int(ZK_NOT_CONNECTED);
}

}  // namespace zk
