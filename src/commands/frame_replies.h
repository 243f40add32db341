// The replies about frames, as both families of parsers read them.
#pragma once

#include "zk/frames.h"
#include "zk/status.h"

namespace zk {

struct FrameReading {
    size_t tool_name_bytes = 10;
    int wrong_pose_size = ZK_WRONG_SIZE;
    double mass_divisor = 1000.0;
};

int read_current_tool(const char* text, FrameRec* frame, const FrameReading& reading);
int read_given_tool(const char* text, FrameRec* frame, const FrameReading& reading);
int read_given_work(const char* text, char* name, Pose* pose, const FrameReading& reading);

}  // namespace zk
