// The state of the whole arm: joints, pose, measurements and stored poses.

#include "commands/commands.h"
#include "controller.h"

namespace sim {
namespace {

Json arm_state(Call& call) {
    const Controller& controller = call.controller;
    return {{"arm_state",
             {{"pose", wire_pose(controller.tool_pose())},
              {"joint", thousandths(controller.arm.joints())},
              {"arm_err", controller.arm.arm_error()},
              {"sys_err", controller.arm.system_error()}}}};
}

Json all_state(Call& call) {
    const Arm& arm = call.controller.arm;
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

bool set_init_pose(Call& call) {
    const std::vector<int> joints = call.request.integers("init_pose", call.controller.arm.joint_count());
    for (size_t i = 0; i < joints.size(); ++i) call.controller.init_pose[i] = joints[i] / 1000.0;
    return true;
}

bool set_install_pose(Call& call) {
    const std::vector<double> angles = call.request.numbers("pose", 3);
    call.controller.install = {angles[0], angles[1], angles[2]};
    return true;
}

}  // namespace

void add_state_commands(CommandTable& table) {
    table.query("get_current_arm_state", "current_arm_state", arm_state);
    table.query("get_arm_all_state", "arm_all_state", all_state);
    table.query("get_joint_degree", "joint_degree", [](Call& call) {
        return Json{{"joint", thousandths(call.controller.arm.joints())}};
    });
    table.query("get_current_joint_temperature", "current_joint_temperature", [](Call& call) {
        return Json{{"joint_temperature", call.controller.arm.temperatures()}};
    });
    table.query("get_current_joint_current", "current_joint_current", [](Call& call) {
        return Json{{"joint_current", call.controller.arm.currents()}};
    });
    table.query("get_current_joint_voltage", "current_joint_voltage", [](Call& call) {
        return Json{{"joint_voltage", call.controller.arm.voltages()}};
    });
    table.query("get_arm_plan_num", "arm_plan_num", [](Call& call) {
        return Json{{"plan_num", call.controller.arm.motion().size()}};
    });
    table.set("set_init_pose", "init_pose", set_init_pose);
    table.query("get_init_pose", "init_pose", [](Call& call) {
        return Json{{"init_pose", thousandths(call.controller.init_pose)}};
    });
    table.set("set_install_pose", "set_state", set_install_pose);
    table.query("get_install_pose", "install_pose", [](Call& call) { return Json{{"pose", call.controller.install}}; });
}

}  // namespace sim
