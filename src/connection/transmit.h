#pragma once

#include "zk/connection.h"

namespace zk {

// Queues a frame. Returns 0; 2 without a transmit queue; 6 when it is full.
int enqueue(ArmSocket socket, const char* text, int32_t length);

// Drops the queued frames of a socket, since its number may become that of another arm.
void forget_frames(ArmSocket socket);

// Returns when the queue holds a frame, for the transmit thread.
void wait_for_queued();

// Returns when no frame is between the queue and the wire.
void wait_for_frame();

// Holds the line for a file transfer: IsSendFile is 1, no queued frame goes out, and most calls return 18.
class LineHold {
 public:
    LineHold();  // returns when no frame is between the queue and the wire
    ~LineHold();
    LineHold(const LineHold&) = delete;
    LineHold& operator=(const LineHold&) = delete;

    bool held() const { return held_; }  // false when another transfer holds the line

 private:
    bool held_;
};

}  // namespace zk
