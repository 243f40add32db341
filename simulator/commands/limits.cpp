// Limits of the tool and settings of the whole arm.

#include "commands/commands.h"
#include "motion/tool.h"
#include "wire/command_table.h"
#include "wire/memory.h"

namespace sim {
namespace {

void add_limit(CommandTable& table, Memory& memory, const char* name, const char* key, int& limit, int most,
               MotionQueue& motion) {
    memory.keep(name, {{key, limit, 1, most}});
    table.set(std::string("set_") + name, key, [&limit, key, most, &motion](const Call& call) {
        limit = call.request.integer(key, 1, most);
        motion.outdate();
        return true;
    });
    table.query(std::string("get_") + name, name, [&limit, key](const Call&) { return Json{{key, limit}}; });
}

void add_cartesian_limits(CommandTable& table, Memory& memory, CartesianLimits& limits, MotionQueue& motion) {
    add_limit(table, memory, "arm_max_line_speed", "arm_line_speed", limits.line_speed, 1000, motion);
    add_limit(table, memory, "arm_max_line_acc", "arm_line_acc", limits.line_acc, 5000, motion);
    add_limit(table, memory, "arm_max_angular_speed", "arm_angular_speed", limits.angular_speed, 3000, motion);
    add_limit(table, memory, "arm_max_angular_acc", "arm_angular_acc", limits.angular_acc, 12000, motion);
    table.set("set_arm_init", "arm_init", [&limits, &motion](const Call&) {
        limits = {};
        motion.outdate();
        return true;
    });
}

// Numbers that are stored and returned, without effect.
void add_model(CommandTable& table, Memory& memory, const Arm& arm) {
    const auto dh = std::make_shared<std::vector<int>>(5, 0);
    const auto load = [dh](const Request& request) { *dh = request.integers("data", dh->size()); };
    const auto saved = [dh] { return Json{{"data", *dh}}; };
    table.set("set_DH_data", "set_state", [load](const Call& call) {
        load(call.request);
        return true;
    });
    table.query("get_DH_data", "DH_data", [saved](const Call&) { return saved(); });
    memory.keep("DH_data", saved, load);
    table.set("set_joint_zero_offset", "set_state", [&arm](const Call& call) {
        call.request.integers("offset", arm.joint_count());
        return true;
    });
    table.set("set_arm_dynamic_parm", "set_state", [&arm](const Call& call) {
        call.request.numbers("parm", 2 * arm.joint_count());
        return true;
    });
}

void add_collision_and_modes(CommandTable& table, Memory& memory, int& stage, TeachFrame& frame) {
    constexpr int kLightest = 8;
    memory.keep("collision_stage", {{"collision_stage", stage, 0, kLightest}});
    const auto set_frame = [&frame](const Request& request) {
        frame = static_cast<TeachFrame>(request.integer("frame_type", 0, 1));
    };
    const auto saved_frame = [&frame] { return Json{{"frame_type", static_cast<int>(frame)}}; };
    memory.keep("teach_frame", saved_frame, set_frame);
    table
        .set("set_collision_stage", "collision_state",
             [&stage](const Call& call) {
                 stage = call.request.integer("collision_stage", 0, kLightest);
                 return true;
             })
        .literal = "set_collision_state";
    table.query("get_collision_stage", "get_collision_stage", [&stage](const Call&) {
        return Json{{"collision_stage", stage}};
    });
    table.set("set_teach_frame", "set_state", [set_frame](const Call& call) {
        set_frame(call.request);
        return true;
    });
    table.query("get_teach_frame", "get_teach_frame", [saved_frame](const Call&) { return saved_frame(); });
    table.set("plan_speed", "plan_state", [](const Call& call) {
        call.request.integer("speed", 1, 100);
        return true;
    });
    table.set("set_arm_servo", "arm_servo", [](const Call& call) {
        call.request.integer("arm_servo", 0, 1);
        return true;
    });
    table.set("set_system_state_servo", "servo_state", [](const Call& call) {
        call.request.integer("servo_state");
        return true;
    });
}

}  // namespace

void add_limit_commands(CommandTable& table, Memory& memory, Arm& arm, Tool& tool) {
    add_cartesian_limits(table, memory, tool.limits, arm.motion());
    add_model(table, memory, arm);
    add_collision_and_modes(table, memory, arm.collision_stage, tool.teach_frame);
}

}  // namespace sim
