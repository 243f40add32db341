// Handles of ZK_Connect, and what the library knows of such a connection beyond its slot. A handle is no descriptor: it
// holds the slot and a generation, and never comes back.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

#include "connection/heartbeat.h"
#include "connection/motions.h"
#include "connection/slots.h"

namespace zk {

struct Traffic {
    std::atomic<int64_t> frames_sent{0}, bytes_sent{0}, messages_received{0}, bytes_received{0};
    std::atomic<int64_t> unmatched{0}, dropped{0}, late{0};

    void reset() {
        for (auto* count :
             {&frames_sent, &bytes_sent, &messages_received, &bytes_received, &unmatched, &dropped, &late})
            count->store(0);
    }
};

// The end of a connection that the application did not ask for.
struct Loss {
    std::atomic<bool> has_come{false}, is_reported{false};
    std::string cause;

    void reset() {
        has_come = is_reported = false;
        cause.clear();
    }
};

class Line {
 public:
    // Takes a slot and the descriptor. `received` is what was read of it and is no message yet. Returns the handle, or
    // -1 when all slots are taken.
    static ArmSocket open(int descriptor, int32_t arm_mode, const HeartbeatQuery& heartbeat, std::string received);
    // The line of a handle, or null when the connection is closed.
    static Line* of(ArmSocket handle);
    static Line& at(int slot);

    ArmSocket handle() const { return handle_.load(std::memory_order_seq_cst); }
    bool is_lost() const { return loss_.has_come.load(std::memory_order_acquire); }
    std::string cause() const;  // why it is lost
    const Traffic& traffic() const { return traffic_; }
    Traffic& traffic() { return traffic_; }
    Motions& motions() { return motions_; }

    // Writes without waiting. Returns what send does; -1 on a line that is lost or closed, and while a file is on its
    // way, since the controller would take the frame for a part of it; the file's own announcement is written. A frame
    // that the system takes in part loses the line, since the rest cannot follow later.
    ssize_t send(ArmSocket handle, const char* bytes, size_t size, bool announces_file = false);
    int duplicate(ArmSocket handle);  // a descriptor of its own for the same connection, or -1
    // Ends the line; the receive thread reports it, or a close that comes first.
    void lose(ArmSocket handle, const char* cause);
    bool close(ArmSocket handle);  // false when another thread has closed it

    // A file is on its way from now on; until then.
    void begin_transfer(ArmSocket handle);
    void end_transfer(ArmSocket handle);
    bool is_in_transfer() const { return transfers_ > 0; }

    // The application knows the connection: changes are reported from now on.
    void introduce();
    bool is_introduced() const { return introduced_; }

    // The receive thread's side: the descriptor, whose reads enter receive_use.
    int descriptor() const { return descriptor_.load(std::memory_order_acquire); }
    std::string take_received();
    void heard(ssize_t bytes);
    bool takes(int slot, const char* message);  // false for the reply to a heartbeat; counts
    // Sends the heartbeat when its time has come; loses the line after three without an answer. Returns the
    // milliseconds to the next, or -1. The caller has entered dispatch_use.
    int beat(ArmSocket handle);
    bool has_loss_to_report() const { return is_lost() && introduced_ && !loss_.is_reported; }
    void report_loss(ArmSocket handle);

    // The calls that are in progress end when this changes.
    std::atomic<unsigned> cancels{0};
    std::atomic<bool> stops_at_exit{false};
    std::atomic<int> reports{0};  // callbacks of the application that run for it

 private:
    mutable std::mutex lock_;  // held for a write that does not wait, and while the descriptor changes
    std::atomic<ArmSocket> handle_{0};
    std::atomic<int> descriptor_{-1};
    std::atomic<bool> introduced_{false};
    std::atomic<int> transfers_{0};
    Loss loss_;
    Traffic traffic_;
    Motions motions_;
    Heartbeat heartbeat_;
    std::string received_;
};

// Sends on a connection of either kind, without waiting.
ssize_t send_now(ArmSocket socket, const char* bytes, size_t size, bool announces_file = false);

// The same without a line in the log, for where the application must not be called.
ssize_t send_silently(ArmSocket socket, const char* bytes, size_t size, bool announces_file = false);

// Sends on a new connection to the peer of a descriptor, for at most so long. Makes system calls alone: a signal
// handler may call it.
bool send_beside(int descriptor, const char* bytes, size_t size, int milliseconds);

// Once set, connections with stops_at_exit send nothing but their stop.
inline std::atomic<bool> process_ends{false};

// Wakes the receive thread from its wait, after the table of connections has changed. Any thread.
void wake_receiver();

}  // namespace zk
