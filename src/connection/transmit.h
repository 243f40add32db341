#pragma once

#include "zk/connection.h"

namespace zk {

// What still waits in the queue for a socket will not be sent: its number may come back as another arm's.
void forget_frames(ArmSocket socket);

// Returns once the frame that was already taken out of the queue, if any, is written.
void wait_for_frame();

// A file transfer's hold on the line: while it lasts, IsSendFile is 1, nothing queued goes out, and most calls give 18.
class LineHold {
 public:
    LineHold();  // once it is there, no frame is on its way any more
    ~LineHold();
    LineHold(const LineHold&) = delete;
    LineHold& operator=(const LineHold&) = delete;

    bool held() const { return held_; }  // false when another transfer holds the line

 private:
    bool held_;
};

}  // namespace zk
