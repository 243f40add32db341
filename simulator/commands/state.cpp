// The state of the whole arm: joints, pose, measurements and stored poses.

#include "commands/commands.h"
#include "motion/tool.h"
#include "wire/command_table.h"
#include "wire/memory.h"

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

void set_mounting(Tool& tool, const Request& request) {
    const std::vector<double> angles = request.numbers("pose", 3);
    tool.mounting = {angles[0], angles[1], angles[2]};
}

bool set_install_pose(Tool& tool, const Call& call) {
    set_mounting(tool, call.request);
    return true;
}

void set_init_pose(JointVector& pose, const Request& request) {
    const std::vector<int> joints = request.integers("init_pose", pose.size());
    for (size_t i = 0; i < joints.size(); ++i) pose[i] = joints[i] / 1000.0;
}

// A pose that is stored and returned.
void add_init_pose(CommandTable& table, Memory& memory, const Arm& arm) {
    const auto pose = std::make_shared<JointVector>(arm.joint_count());
    table.set("set_init_pose", "init_pose", [pose](const Call& call) {
        set_init_pose(*pose, call.request);
        return true;
    });
    const auto saved = [pose] { return Json{{"init_pose", thousandths(*pose)}}; };
    table.query("get_init_pose", "init_pose", [saved](const Call&) { return saved(); });
    memory.keep("init_pose", saved, [pose](const Request& request) { set_init_pose(*pose, request); });
}

}  // namespace

void add_state_commands(CommandTable& table, Memory& memory, const Arm& arm, Tool& tool) {
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
    add_init_pose(table, memory, arm);
    table.set("set_install_pose", "set_state", with(set_install_pose, tool));
    const auto mounting = [&tool] { return Json{{"pose", tool.mounting}}; };
    table.query("get_install_pose", "install_pose", [mounting](const Call&) { return mounting(); });
    memory.keep("mounting", mounting, [&tool](const Request& request) { set_mounting(tool, request); });
}

}  // namespace sim
