// The file of a drag recording. A thread of its own writes it, so that a slow disk delays no arm.
#pragma once

#include <cstdint>
#include <string>

namespace zk {

// Closes the file before and creates the next. False when that fails, or when the disk does not write the last points
// of the file before within the reply limit.
bool open_recording(const char* path);

// Closes the file after its last points. Waits for that, for the reply limit at most.
void close_recording();

bool is_recording();

// Adds a line; the file is closed after so many. Receive thread.
void record(const char* line, int32_t announced);

}  // namespace zk
