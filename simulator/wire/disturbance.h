#pragma once

#include <chrono>
#include <random>
#include <string>
#include <vector>

namespace sim {

// What happens to messages or datagrams on their way. Shares are in percent.
struct Disorder {
    int drop = 0;
    int twice = 0;      // sent twice
    int overtaken = 0;  // sent after the next ones
    int delay_ms = 0;   // of each
    int jitter_ms = 0;  // up to this much more
};

// How the wire disturbs what goes to the clients.
struct WireFaults {
    Disorder replies;
    Disorder push;
    int garbage = 0;         // percent of the replies that a line of other bytes precedes
    int slice_bytes = 0;     // replies leave in pieces of this size; 0: whole
    int slice_delay_ms = 1;  // between two pieces
    int cut_at = 0;          // the size of the first of two pieces; 0: whole
    int join_ms = 0;         // replies wait and leave together once in this time; 0: at once
    int silence_ms = 0;      // nothing is sent for this time
    int refuse_ms = 0;       // nobody listens for this time
    int max_clients = 1000;  // more are disconnected at once
};

// The faults of the wire, and what follows from them.
struct DisturbedWire {
    WireFaults wire;
    std::chrono::steady_clock::time_point silent_until;  // nothing is sent before
    unsigned seed = 1;                                   // of what is drawn

    void begin_silence() {
        silent_until = std::chrono::steady_clock::now() + std::chrono::milliseconds(wire.silence_ms);
    }
};

// A copy of a message that is sent.
struct Sending {
    std::string text;
    std::chrono::milliseconds delay;
    bool keeps_order;
};

class Disturbance {
 public:
    explicit Disturbance(unsigned seed) : random_(seed) {}

    // What becomes of one message: nothing, the message, or copies of it.
    std::vector<Sending> sendings(const std::string& message, const Disorder& disorder);

    // A line that is no reply, or nothing.
    std::string garbage(int percent);

 private:
    bool strikes(int percent) { return percent > 0 && below(100) < percent; }
    int below(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }

    std::minstd_rand random_;
};

}  // namespace sim
