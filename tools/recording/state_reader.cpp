#include "recording/state_reader.h"

#include "command.h"
#include "zk/replies/realtime.h"

namespace tool {

std::optional<ArmRecord> StateReader::read(const std::string& datagram, std::int64_t unix_ns) {
    const Json body = Json::parse(datagram, nullptr, false);
    if (!body.is_object() || Parser_Realtime_Arm_Joint_State(datagram.c_str(), &state_.status) != ZK_OK)
        return std::nullopt;
    const auto time = body.find("time");
    state_.joint_count = static_cast<int>(body["joint_status"]["joint_position"].size());
    state_.controller_ms = time != body.end() && time->is_number() ? time->get<std::int64_t>() : -1;
    ++state_.sequence;
    return ArmRecord::from(state_, unix_ns);
}

}  // namespace tool
