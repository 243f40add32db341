#include "look/look.h"
#include "report.h"

namespace tool {

Json state_of(const zk::Arm& arm) {
    const zk::ArmState now = arm.state().value();
    const ArmAllState all = arm.measurements().value();
    Json joints = Json::array();
    for (std::size_t i = 0; i < now.joints.size(); ++i) {
        joints.push_back({{"joint", i + 1},
                          {"position_deg", rounded(now.joints[i].degrees())},
                          {"current_A", rounded(all.current[i], 3)},
                          {"temperature_C", rounded(all.temperature[i], 1)},
                          {"voltage_V", rounded(all.voltage[i], 1)},
                          {"enabled", all.en_state[i] != 0},
                          {"error", hexadecimal(all.err_flag[i])}});
    }
    return {{"powered", arm.is_powered().value()},
            {"joints", joints},
            {"pose", json_of(now.pose)},
            {"tool", arm.tool_frames().current().value().name},
            {"work_frame", arm.work_frames().current().value().name},
            {"errors", json_of_errors(now.arm_error, now.system_error)}};
}

void add_state(CLI::App& zk) {
    add_looking_at_arm(zk, "state", "where the arm is: joints, pose, temperatures, errors", state_of);
}

}  // namespace tool
