// Blocking calls. A call belongs to the connection on which it was made, and ends when that is closed. On a connection
// of ZK_Connect it also ends when the connection is lost, when it is cancelled and at its deadline, and it shares the
// connection with the calls of other threads by a rule.
#pragma once

#include <cstdint>
#include <functional>

#include "connection/mailbox.h"
#include "connection/slots.h"
#include "zk/status.h"

namespace zk {

// What a thread does when another thread's call has the mailbox: it waits for its turn, or returns ZK_BUSY.
enum class Sharing { kInTurn, kAlone };

class Wait : public Connection {
 public:
    // The outermost call of a thread notes how often the calls of the connection were cancelled and when it has to end;
    // calls within it end with it.
    explicit Wait(ArmSocket socket);
    ~Wait();
    Wait(const Wait&) = delete;
    Wait& operator=(const Wait&) = delete;

    // Takes a mailbox until the call ends. Returns 0; a status of the connection; ZK_BUSY. Call it before the request
    // is queued. Without effect on a connection of Arm_Socket_Start.
    // limit: of the wait for the turn, ms; 0: m_nOutTime.
    int claim(Mailbox mailbox, Sharing sharing = Sharing::kInTurn, int32_t limit = 0) const;
};

// Whether a query within a wait was not sent since a file is on its way: the wait goes on. On a connection of
// Arm_Socket_Start that is a failure like another.
inline bool is_held_by_file(const Connection& connection, int status) {
    return status == ZK_SENDING_FILE && is_handle(connection.socket());
}

// Sleeps. On a connection of ZK_Connect in short steps, since the wait may be ended early, and no longer than until a
// message of the connection makes `done()` true. That one is called with a lock held: it looks at mailboxes alone.
void pause(const Connection& connection, int32_t milliseconds, const std::function<bool()>& done = {});

// The bound of the blocking calls of a connection, from their beginning. `expired` is called once at the end of a call
// by its deadline; null for none.
struct Deadline {
    int32_t milliseconds = 0;  // 0: none
    void (*expired)(ArmSocket) = nullptr;
};
void set_deadline_of_thread(ArmSocket handle, const Deadline& deadline);
void set_deadline_of_all(ArmSocket handle, const Deadline& deadline);

// The receive thread's side, after each message: notes the arrival of the replies that calls wait for, and wakes them.
void note_arrivals(int slot);
bool is_claimed(int slot, Mailbox mailbox);

// Milliseconds from the request to the reply: last, median of the last ones, worst.
struct RoundTrips {
    double last = 0, median = 0, worst = 0;
};
RoundTrips round_trips(int slot);
void forget_round_trips(int slot);

}  // namespace zk
