// Limits, states, zero points and firmware of the joints.

#include "commands/commands.h"
#include "controller.h"

namespace sim {
namespace {

using Limits = std::vector<JointLimits> Arm::*;

// [joint, value] with the joint counted from 1.
struct JointValue {
    size_t joint;
    int value;
};

size_t joint_index(const Call& call, int number) {
    if (number < 1 || number > static_cast<int>(call.controller.arm.joint_count()))
        throw BadRequest(call.request.command() + ": there is no joint " + std::to_string(number));
    return static_cast<size_t>(number - 1);
}

JointValue joint_value(const Call& call, const char* key) {
    const std::vector<int> pair = call.request.integers(key, 2);
    return {joint_index(call, pair[0]), pair[1]};
}

// A limit stays within the mechanical one, and the lower limit below the upper one.
Action set_min_pos(Limits limits) {
    return [limits](Call& call) {
        const auto [joint, value] = joint_value(call, "joint_min_pos");
        JointLimits& limit = (call.controller.arm.*limits)[joint];
        if (value < call.controller.arm.range()[joint].min_pos || value >= limit.max_pos) return false;
        limit.min_pos = value;
        return true;
    };
}

Action set_max_pos(Limits limits) {
    return [limits](Call& call) {
        const auto [joint, value] = joint_value(call, "joint_max_pos");
        JointLimits& limit = (call.controller.arm.*limits)[joint];
        if (value > call.controller.arm.range()[joint].max_pos || value <= limit.min_pos) return false;
        limit.max_pos = value;
        return true;
    };
}

Action set_rate(Limits limits, int JointLimits::*rate, const char* key) {
    return [=](Call& call) {
        const auto [joint, value] = joint_value(call, key);
        if (value < 1 || value > call.controller.arm.range()[joint].*rate) return false;
        (call.controller.arm.*limits)[joint].*rate = value;
        return true;
    };
}

Query get(Limits limits, int JointLimits::*limit, const char* key) {
    return [=](Call& call) {
        std::vector<int> values;
        for (const JointLimits& joint : call.controller.arm.*limits) values.push_back(joint.*limit);
        return Json{{key, values}};
    };
}

void add_limits(CommandTable& table) {
    table.set("set_joint_max_speed", "joint_max_speed",
              set_rate(&Arm::limits, &JointLimits::max_speed, "joint_max_speed"));
    table.set("set_joint_max_acc", "joint_max_acc", set_rate(&Arm::limits, &JointLimits::max_acc, "joint_max_acc"));
    table.set("set_joint_min_pos", "joint_min_pos", set_min_pos(&Arm::limits));
    table.set("set_joint_max_pos", "joint_max_pos", set_max_pos(&Arm::limits));
    table.query("get_joint_max_speed", "joint_max_speed", get(&Arm::limits, &JointLimits::max_speed, "joint_speed"));
    table.query("get_joint_max_acc", "joint_max_acc", get(&Arm::limits, &JointLimits::max_acc, "joint_acc"));
    table.query("get_joint_min_pos", "joint_min_pos", get(&Arm::limits, &JointLimits::min_pos, "min_pos"));
    table.query("get_joint_max_pos", "joint_max_pos", get(&Arm::limits, &JointLimits::max_pos, "max_pos"));
}

void add_drive_limits(CommandTable& table) {
    const Limits drive = &Arm::drive_limits;
    table.set("set_joint_drive_max_speed", "joint_max_speed",
              set_rate(drive, &JointLimits::max_speed, "joint_max_speed"));
    table.set("set_joint_drive_max_acc", "joint_max_acc", set_rate(drive, &JointLimits::max_acc, "joint_max_acc"));
    table.set("set_joint_drive_min_pos", "joint_min_pos", set_min_pos(drive));
    table.set("set_joint_drive_max_pos", "joint_max_pos", set_max_pos(drive));
    table.query("get_joint_drive_max_speed", "get_joint_drive_max_speed",
                get(drive, &JointLimits::max_speed, "joint_speed"));
    table.query("get_joint_drive_max_acc", "get_joint_drive_max_acc", get(drive, &JointLimits::max_acc, "joint_acc"));
    table.query("get_joint_drive_min_pos", "get_joint_drive_min_pos", get(drive, &JointLimits::min_pos, "min_pos"));
    table.query("get_joint_drive_max_pos", "get_joint_drive_max_pos", get(drive, &JointLimits::max_pos, "max_pos"));
}

void add_calibration(CommandTable& table) {
    const auto calibrating = std::make_shared<bool>(false);
    table.set("start_calibrate", "calibrate_state", [calibrating](Call& call) {
        *calibrating = call.controller.arm.reason_not_to_move().empty();
        return *calibrating;
    });
    table.set("stop_calibrate", "calibrate_state", [calibrating](Call&) {
        *calibrating = false;
        return true;
    });
    table.query("get_calibrate_state", "calibrate_state", [calibrating](Call& call) {
        const size_t joints = call.controller.arm.joint_count();
        return Json{{"joint_state", std::vector<int>(joints, *calibrating)}, {"err", std::vector<int>(joints, 0)}};
    });
}

Json err_flags(Call& call) {
    std::vector<int> errors, brakes;
    for (const JointState& state : call.controller.arm.states()) {
        errors.push_back(state.error);
        brakes.push_back(!state.enabled);
    }
    return {{"err_flag", errors}, {"brake_state", brakes}};
}

Json enabled_states(Call& call) {
    std::vector<int> enabled;
    for (const JointState& state : call.controller.arm.states()) enabled.push_back(state.enabled);
    return {{"en_state", enabled}};
}

Json software_versions(Call& call) {
    std::vector<int> versions;
    for (size_t i = 0; i < call.controller.arm.joint_count(); ++i) versions.push_back(0x20000 + static_cast<int>(i));
    return {{"version", versions}};
}

void add_states(CommandTable& table) {
    table.set("set_joint_en_state", "joint_en_state", [](Call& call) {
        const auto [joint, value] = joint_value(call, "joint_en_state");
        call.controller.arm.set_joint_enabled(joint, value != 0);
        return true;
    });
    table.set("set_joint_clear_err", "joint_clear_err", [](Call& call) {
        call.controller.arm.set_joint_error(joint_index(call, call.request.integer("joint_clear_err")), 0);
        return true;
    });
    table.set("set_joint_zero_pos", "joint_zero_pos", [](Call& call) {
        return call.controller.arm.set_joint_zero(joint_index(call, call.request.integer("joint_zero_pos")));
    });
    table.query("get_joint_en_state", "joint_en_state", enabled_states);
    table.query("get_joint_err_flag", "joint_err_flag", err_flags);
    table.query("get_joint_software_version", "joint_software_version", software_versions);
    table.set("auto_set_joint_limit", "limit_mode", [](Call& call) {
        call.request.integer("limit_mode");
        call.controller.arm.limits = call.controller.arm.range();
        return true;
    });
}

}  // namespace

void add_joint_commands(CommandTable& table) {
    add_limits(table);
    add_drive_limits(table);
    add_calibration(table);
    add_states(table);
}

}  // namespace sim
