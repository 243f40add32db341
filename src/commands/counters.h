// The replies about the controller's counters. `known` is 0 when the controller does not know them; then the outputs
// keep their values.
#pragma once

#include <cstdint>

namespace zk {

int read_system_runtime(const char* text, int32_t* known, int32_t* day, int32_t* hour, int32_t* min, int32_t* sec);
int read_joint_odom(const char* text, int32_t* known, float* odom);

}  // namespace zk
