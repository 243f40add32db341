// Limits, states, zero points and firmware of the joints.

#include "commands/commands.h"
#include "motion/arm.h"
#include "wire/command_table.h"
#include "wire/memory.h"

namespace sim {
namespace {

using Limits = std::vector<JointLimits>;

// [joint, value] with the joint counted from 1.
struct JointValue {
    size_t joint;
    int value;
};

size_t joint_index(const Arm& arm, const Call& call, int number) {
    if (number < 1 || number > static_cast<int>(arm.joint_count()))
        throw BadRequest(call.request.command() + ": there is no joint " + std::to_string(number));
    return static_cast<size_t>(number - 1);
}

JointValue joint_value(const Arm& arm, const Call& call, const char* key) {
    const std::vector<int> pair = call.request.integers(key, 2);
    return {joint_index(arm, call, pair[0]), pair[1]};
}

// A limit stays within the mechanical one, and the lower limit below the upper one.
Action set_min_pos(const Arm& arm, Limits& limits) {
    return [&arm, &limits](const Call& call) {
        const auto [joint, value] = joint_value(arm, call, "joint_min_pos");
        JointLimits& limit = limits[joint];
        if (value < arm.range()[joint].min_pos || value >= limit.max_pos) return false;
        limit.min_pos = value;
        return true;
    };
}

Action set_max_pos(const Arm& arm, Limits& limits) {
    return [&arm, &limits](const Call& call) {
        const auto [joint, value] = joint_value(arm, call, "joint_max_pos");
        JointLimits& limit = limits[joint];
        if (value > arm.range()[joint].max_pos || value <= limit.min_pos) return false;
        limit.max_pos = value;
        return true;
    };
}

Action set_rate(const Arm& arm, Limits& limits, int JointLimits::*rate, const char* key) {
    return [&arm, &limits, rate, key](const Call& call) {
        const auto [joint, value] = joint_value(arm, call, key);
        if (value < 1 || value > arm.range()[joint].*rate) return false;
        limits[joint].*rate = value;
        return true;
    };
}

Query get(const Limits& limits, int JointLimits::*limit, const char* key) {
    return [&limits, limit, key](const Call&) {
        std::vector<int> values;
        for (const JointLimits& joint : limits) values.push_back(joint.*limit);
        return Json{{key, values}};
    };
}

constexpr struct {
    const char* key;
    int JointLimits::*limit;
} kKept[] = {{"min_pos", &JointLimits::min_pos},
             {"max_pos", &JointLimits::max_pos},
             {"max_speed", &JointLimits::max_speed},
             {"max_acc", &JointLimits::max_acc}};

Json saved_limits(const Limits& limits) {
    Json saved;
    for (const auto& [key, limit] : kKept) {
        for (const JointLimits& joint : limits) saved[key].push_back(joint.*limit);
    }
    return saved;
}

void load_limits(const Arm& arm, Limits& limits, const Request& saved) {
    for (const auto& [key, limit] : kKept) {
        const std::vector<int> values = saved.integers(key, arm.joint_count());
        for (size_t i = 0; i < values.size(); ++i) limits[i].*limit = values[i];
    }
    for (size_t i = 0; i < limits.size(); ++i) {
        const JointLimits &limit = limits[i], &range = arm.range()[i];
        const bool fits = limit.min_pos >= range.min_pos && limit.min_pos < limit.max_pos &&
                          limit.max_pos <= range.max_pos && limit.max_speed >= 1 &&
                          limit.max_speed <= range.max_speed && limit.max_acc >= 1 && limit.max_acc <= range.max_acc;
        if (!fits) throw Refusal("limits beyond those of joint " + std::to_string(i + 1));
    }
}

void keep_limits(Memory& memory, const char* section, const Arm& arm, Limits& limits) {
    memory.keep(
        section, [&limits] { return saved_limits(limits); },
        [&arm, &limits](const Request& saved) { load_limits(arm, limits, saved); });
}

void add_limits(CommandTable& table, Arm& arm) {
    Limits& limits = arm.limits;
    table.set("set_joint_max_speed", "joint_max_speed",
              set_rate(arm, limits, &JointLimits::max_speed, "joint_max_speed"));
    table.set("set_joint_max_acc", "joint_max_acc", set_rate(arm, limits, &JointLimits::max_acc, "joint_max_acc"));
    table.set("set_joint_min_pos", "joint_min_pos", set_min_pos(arm, limits));
    table.set("set_joint_max_pos", "joint_max_pos", set_max_pos(arm, limits));
    table.query("get_joint_max_speed", "joint_max_speed", get(limits, &JointLimits::max_speed, "joint_speed"));
    table.query("get_joint_max_acc", "joint_max_acc", get(limits, &JointLimits::max_acc, "joint_acc"));
    table.query("get_joint_min_pos", "joint_min_pos", get(limits, &JointLimits::min_pos, "min_pos"));
    table.query("get_joint_max_pos", "joint_max_pos", get(limits, &JointLimits::max_pos, "max_pos"));
}

void add_drive_limits(CommandTable& table, Arm& arm) {
    Limits& drive = arm.drive_limits;
    table.set("set_joint_drive_max_speed", "joint_max_speed",
              set_rate(arm, drive, &JointLimits::max_speed, "joint_max_speed"));
    table.set("set_joint_drive_max_acc", "joint_max_acc", set_rate(arm, drive, &JointLimits::max_acc, "joint_max_acc"));
    table.set("set_joint_drive_min_pos", "joint_min_pos", set_min_pos(arm, drive));
    table.set("set_joint_drive_max_pos", "joint_max_pos", set_max_pos(arm, drive));
    table.query("get_joint_drive_max_speed", "get_joint_drive_max_speed",
                get(drive, &JointLimits::max_speed, "joint_speed"));
    table.query("get_joint_drive_max_acc", "get_joint_drive_max_acc", get(drive, &JointLimits::max_acc, "joint_acc"));
    table.query("get_joint_drive_min_pos", "get_joint_drive_min_pos", get(drive, &JointLimits::min_pos, "min_pos"));
    table.query("get_joint_drive_max_pos", "get_joint_drive_max_pos", get(drive, &JointLimits::max_pos, "max_pos"));
}

void add_calibration(CommandTable& table, const Arm& arm) {
    const auto calibrating = std::make_shared<bool>(false);
    table.set("start_calibrate", "calibrate_state", [calibrating, &arm](const Call&) {
        *calibrating = arm.reason_not_to_move().empty();
        return *calibrating;
    });
    table.set("stop_calibrate", "calibrate_state", [calibrating](const Call&) {
        *calibrating = false;
        return true;
    });
    table.query("get_calibrate_state", "calibrate_state", [calibrating, &arm](const Call&) {
        const size_t joints = arm.joint_count();
        return Json{{"joint_state", std::vector<int>(joints, *calibrating)}, {"err", std::vector<int>(joints, 0)}};
    });
}

Json err_flags(const Arm& arm, const Call&) {
    std::vector<int> errors, brakes;
    for (const JointState& state : arm.states()) {
        errors.push_back(state.error);
        brakes.push_back(!state.enabled);
    }
    return {{"err_flag", errors}, {"brake_state", brakes}};
}

Json enabled_states(const Arm& arm, const Call&) {
    std::vector<int> enabled;
    for (const JointState& state : arm.states()) enabled.push_back(state.enabled);
    return {{"en_state", enabled}};
}

Json software_versions(const Arm& arm, const Call&) {
    std::vector<int> versions;
    for (size_t i = 0; i < arm.joint_count(); ++i) versions.push_back(0x20000 + static_cast<int>(i));
    return {{"version", versions}};
}

void add_states(CommandTable& table, Arm& arm) {
    table.set("set_joint_en_state", "joint_en_state", [&arm](const Call& call) {
        const auto [joint, value] = joint_value(arm, call, "joint_en_state");
        arm.set_joint_enabled(joint, value != 0);
        return true;
    });
    table.set("set_joint_clear_err", "joint_clear_err", [&arm](const Call& call) {
        return arm.clear_joint_error(joint_index(arm, call, call.request.integer("joint_clear_err")));
    });
    table.set("set_joint_zero_pos", "joint_zero_pos", [&arm](const Call& call) {
        return arm.set_joint_zero(joint_index(arm, call, call.request.integer("joint_zero_pos")));
    });
    table.query("get_joint_en_state", "joint_en_state", with(enabled_states, arm));
    table.query("get_joint_err_flag", "joint_err_flag", with(err_flags, arm));
    table.query("get_joint_software_version", "joint_software_version", with(software_versions, arm));
    table.set("auto_set_joint_limit", "limit_mode", [&arm](const Call& call) {
        call.request.integer("limit_mode");
        for (size_t i = 0; i < arm.joint_count(); ++i) {
            arm.limits[i].min_pos = arm.range()[i].min_pos;
            arm.limits[i].max_pos = arm.range()[i].max_pos;
        }
        return true;
    });
}

}  // namespace

void add_joint_commands(CommandTable& table, Memory& memory, Arm& arm) {
    add_limits(table, arm);
    add_drive_limits(table, arm);
    keep_limits(memory, "joint_limits", arm, arm.limits);
    keep_limits(memory, "drive_limits", arm, arm.drive_limits);
    add_calibration(table, arm);
    add_states(table, arm);
}

}  // namespace sim
