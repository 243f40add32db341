// The state of the whole arm: joints, pose, measurements and stored poses.

#include "commands/commands.h"
#include "motion/tool.h"
#include "wire/command_table.h"

namespace sim {
namespace {

Json arm_state(const Arm& arm, const Tool& tool, const Call&) {
    return {{"arm_state",
             {{"pose", wire_pose(tool.pose())},
              {"joint", thousandths(arm.joints())},
              {"arm_err", arm.arm_error()},
              {"sys_err", arm.system_error()}}}};
}

Json all_state(const Arm& arm, const Call&) {
    std::vector<int> enabled, errors;
    for (const JointState& state : arm.states()) {
        enabled.push_back(state.enabled);
        errors.push_back(state.error);
    }
    return {{"all_state",
             {{"temperature", arm.temperatures()},
              {"current", arm.currents()},
              {"voltage", arm.voltages()},
              {"en_flag", enabled},
              {"err_flag", errors},
              {"sys_err", arm.system_error()}}}};
}

bool set_install_pose(Tool& tool, const Call& call) {
    const std::vector<double> angles = call.request.numbers("pose", 3);
    tool.mounting = {angles[0], angles[1], angles[2]};
    return true;
}

// A pose that is stored and returned.
void add_init_pose(CommandTable& table, const Arm& arm) {
    const auto pose = std::make_shared<JointVector>(arm.joint_count());
    table.set("set_init_pose", "init_pose", [pose](const Call& call) {
        const std::vector<int> joints = call.request.integers("init_pose", pose->size());
        for (size_t i = 0; i < joints.size(); ++i) (*pose)[i] = joints[i] / 1000.0;
        return true;
    });
    table.query("get_init_pose", "init_pose", [pose](const Call&) { return Json{{"init_pose", thousandths(*pose)}}; });
}

}  // namespace

void add_state_commands(CommandTable& table, const Arm& arm, Tool& tool) {
    table.query("get_current_arm_state", "current_arm_state", with(arm_state, arm, tool));
    table.query("get_arm_all_state", "arm_all_state", with(all_state, arm));
    table.query("get_joint_degree", "joint_degree", [&arm](const Call&) {
        return Json{{"joint", thousandths(arm.joints())}};
    });
    table.query("get_current_joint_temperature", "current_joint_temperature", [&arm](const Call&) {
        return Json{{"joint_temperature", arm.temperatures()}};
    });
    table.query("get_current_joint_current", "current_joint_current", [&arm](const Call&) {
        return Json{{"joint_current", arm.currents()}};
    });
    table.query("get_current_joint_voltage", "current_joint_voltage", [&arm](const Call&) {
        return Json{{"joint_voltage", arm.voltages()}};
    });
    table.query("get_arm_plan_num", "arm_plan_num", [&arm](const Call&) {
        return Json{{"plan_num", arm.motion().size()}};
    });
    add_init_pose(table, arm);
    table.set("set_install_pose", "set_state", with(set_install_pose, tool));
    table.query("get_install_pose", "install_pose", [&tool](const Call&) { return Json{{"pose", tool.mounting}}; });
}

}  // namespace sim
