// What a recording holds: the messages of its topics.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "recording/mcap.h"
#include "zk/state_stream.hpp"

namespace tool {

// A state of the stream, on /arm_state. Units are those of the names; arrays have a value for each joint.
struct ArmRecord {
    std::int64_t unix_ns = 0;
    std::uint32_t sequence = 0;
    std::int64_t controller_ms = -1;
    std::vector<float> position_deg, speed_deg_s, current_a, voltage_v, temperature_c;
    std::vector<std::uint16_t> joint_error;
    std::array<float, 3> tool_position_m{};
    std::array<float, 4> tool_quaternion_wxyz{};
    std::array<float, 6> force{};  // newtons and newton metres
    std::uint16_t arm_error = 0, system_error = 0;

    // Of a state, seen at a time.
    static ArmRecord from(const ZK_State& state, std::int64_t unix_ns);
};

// An event, or a frame of the wire, on /rosout. A frame begins with "> " to the controller, "< " from it.
struct LogRecord {
    std::int64_t unix_ns = 0;
    bool is_frame = false;
    std::string text;
    std::string client = {};  // of a proxy, whose frame it is
};

// A datagram as it came, on /push.
struct PushRecord {
    std::int64_t unix_ns = 0;
    std::string text;
};

extern const Topic kArmTopic, kJointTopic, kTransformTopic, kLogTopic, kPushTopic;

// The messages, serialized; and back.
std::string arm_message(const ArmRecord& record);
std::string joint_message(const ArmRecord& record);
std::string transform_message(const ArmRecord& record);
std::string log_message(const LogRecord& record);
ArmRecord read_arm_message(const McapMessage& message);
LogRecord read_log_message(const McapMessage& message);
PushRecord read_push_message(const McapMessage& message);

// The topics of a recording, in a file.
class Topics {
 public:
    explicit Topics(McapWriter& file);
    void add(const ArmRecord& record);
    void add(const LogRecord& record);
    void add(const PushRecord& record);

 private:
    McapWriter& file_;
    std::uint16_t arm_, joint_, transform_, log_, push_ = 0;
};

}  // namespace tool
