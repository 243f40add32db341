// The exchange of a request and its reply, in the forms of waiting that commands have:
//
//   set     queues a request and waits for its acknowledgement
//   query   the same, and copies the payload to the caller
//   post    queues a request and waits for nothing
//   stream  writes a request to the socket at once, ahead of the queue, and waits for nothing
//   pending waits on the pending list instead of a mailbox (pending.h)
//
// and their parts, `Wait`, `Mailbox` and `await`, for the waits of another shape.
#pragma once

#include <optional>

#include "connection/mailbox.h"
#include "connection/request.h"
#include "connection/wait.h"
#include "zk/mailboxes.h"
#include "zk/status.h"

namespace zk {

constexpr int32_t kPollMs = 10;
constexpr int32_t kNoLimit = INT32_MAX;

struct SetForm {
    std::optional<Mailbox> clears = {};  // the mailbox cleared before the request, where it is not the command's own
    bool keeps_count = false;            // an old reply ends the wait at once
    int32_t limit = 0;                   // ms; 0: m_nOutTime
    bool direct = false;                 // writes to the socket, past the queue
};

struct QueryForm {
    bool clears_before = false;  // ignores a late reply to an earlier request
    bool clears_after = false;   // takes all replies, not one
    bool wipes_first = false;    // wipes the record of slot 0 after use, whichever slot asked
    bool result_last = false;    // reads the status after the wipe
    int32_t limit = 0;
};

int set(const Request& request, Mailbox mailbox, const SetForm& form = {});
int set(ArmSocket socket, const Frame& frame, Mailbox mailbox, const SetForm& form = {});  // a text of its own kind
int post(const Request& request);
// Returns 0; 6 when nothing was written; what refuses the request of a handle.
int stream(const Request& request);

// Waits until a reply of the connection is in the mailbox. Returns 0; 5 when the connection is closed, also when
// another has its number and slot; 7 at the limit.
int await(Mailbox mailbox, const Connection& connection, int32_t limit, int32_t poll = kPollMs);

enum class Take { kOne, kAll };

// Takes one reply or all from the mailbox. Returns the result, or 5 when the connection is closed.
int take_result(Mailbox mailbox, const Connection& connection, Take take = Take::kAll);
int await_result(Mailbox mailbox, const Connection& connection, int32_t limit, Take take = Take::kAll,
                 int32_t poll = kPollMs);

// Whether a reply is in the mailbox. Check that the connection is open after this, not before: then the reply is its
// own.
bool has_arrived(Mailbox mailbox, const Connection& connection);

// Sleeps between two looks; on a connection of ZK_Connect at most until a reply is in the mailbox.
void pause(const Connection& connection, int32_t milliseconds, Mailbox awaited);

// m_nOutTime plus a number of milliseconds.
int32_t limit_beyond(int32_t milliseconds);

// Copies the reply to `record`, whatever its result. `arrived` becomes true when there was one.
int exchange(const Request& request, Mailbox mailbox, const QueryForm& form, void* record, bool& arrived);

template <class Record, class Deliver>
int query(const Request& request, Record (&table)[ZK_SLOTS], Deliver deliver, const QueryForm& form = {}) {
    Record record;
    bool arrived = false;
    const int status = exchange(request, Mailbox(table), form, &record, arrived);
    if (arrived) deliver(record);
    return status;
}

// Delivers one value for each of the connection's joints.
template <class Value, class Held, size_t size>
void copy_joints(ArmSocket socket, const Held (&held)[size], Value* out) {
    const int joints = joint_count(socket);
    for (int i = 0; i < joints && i < static_cast<int>(size); ++i) out[i] = static_cast<Value>(held[i]);
}

// The query of a single value.
template <class Record, class Value>
int query_value(ArmSocket socket, const char* command, Record (&mailbox)[ZK_SLOTS], Value* out) {
    return query({socket, command}, mailbox, [&](const Record& reply) { *out = reply.value; });
}

// The query of one number for each joint.
inline int query_joints(ArmSocket socket, const char* command, JointReply (&mailbox)[ZK_SLOTS], float* out) {
    return query({socket, command}, mailbox, [&](const JointReply& reply) { copy_joints(socket, reply.value, out); });
}

}  // namespace zk
