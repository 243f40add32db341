// Limits of the tool and settings of the whole arm.

#include "commands/commands.h"
#include "controller.h"

namespace sim {
namespace {

using Limit = int CartesianLimits::*;

void add_limit(CommandTable& table, const std::string& name, const char* key, Limit limit, int most) {
    table.set("set_" + name, key, [=](Call& call) {
        call.controller.tool_limits.*limit = call.request.integer(key, 1, most);
        return true;
    });
    table.query("get_" + name, name, [=](Call& call) { return Json{{key, call.controller.tool_limits.*limit}}; });
}

void add_cartesian_limits(CommandTable& table) {
    add_limit(table, "arm_max_line_speed", "arm_line_speed", &CartesianLimits::line_speed, 1000);
    add_limit(table, "arm_max_line_acc", "arm_line_acc", &CartesianLimits::line_acc, 5000);
    add_limit(table, "arm_max_angular_speed", "arm_angular_speed", &CartesianLimits::angular_speed, 3000);
    add_limit(table, "arm_max_angular_acc", "arm_angular_acc", &CartesianLimits::angular_acc, 12000);
    table.set("set_arm_init", "arm_init", [](Call& call) {
        call.controller.tool_limits = {};
        return true;
    });
}

// Numbers that are stored and returned, without effect.
void add_model(CommandTable& table) {
    const auto dh = std::make_shared<std::vector<int>>(5, 0);
    table.set("set_DH_data", "set_state", [dh](Call& call) {
        *dh = call.request.integers("data", dh->size());
        return true;
    });
    table.query("get_DH_data", "DH_data", [dh](Call&) { return Json{{"data", *dh}}; });
    table.set("set_joint_zero_offset", "set_state", [](Call& call) {
        call.request.integers("offset", call.controller.arm.joint_count());
        return true;
    });
    table.set("set_arm_dynamic_parm", "set_state", [](Call& call) {
        call.request.numbers("parm", 2 * call.controller.arm.joint_count());
        return true;
    });
}

void add_collision_and_modes(CommandTable& table) {
    const auto stage = std::make_shared<int>(0);
    table
        .set("set_collision_stage", "collision_state",
             [stage](Call& call) {
                 constexpr int kLightest = 8;
                 *stage = call.request.integer("collision_stage", 0, kLightest);
                 return true;
             })
        .literal = "set_collision_state";
    table.query("get_collision_stage", "get_collision_stage", [stage](Call&) {
        return Json{{"collision_stage", *stage}};
    });
    table.set("set_teach_frame", "set_state", [](Call& call) {
        call.controller.teach_frame = static_cast<TeachFrame>(call.request.integer("frame_type", 0, 1));
        return true;
    });
    table.query("get_teach_frame", "get_teach_frame", [](Call& call) {
        return Json{{"frame_type", static_cast<int>(call.controller.teach_frame)}};
    });
    table.set("plan_speed", "plan_state", [](Call& call) {
        call.request.integer("speed", 1, 100);
        return true;
    });
    table.set("set_arm_servo", "arm_servo", [](Call& call) {
        call.request.integer("arm_servo", 0, 1);
        return true;
    });
    table.set("set_system_state_servo", "servo_state", [](Call& call) {
        call.request.integer("servo_state");
        return true;
    });
}

}  // namespace

void add_limit_commands(CommandTable& table) {
    add_cartesian_limits(table);
    add_model(table);
    add_collision_and_modes(table);
}

}  // namespace sim
