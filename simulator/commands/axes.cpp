// Lift, expansion axis and mobile base. The end of a motion of the first two is reported, except for a lift that was
// only given a speed.

#include "commands/commands.h"
#include "controller.h"

namespace sim {
namespace {

constexpr int kMaxPercent = 100;
constexpr int kMaxStation = 1000;
constexpr int kMaxDrive = 2000;  // millimetres per second

Action go(LinearAxis Devices::*axis, const char* target_key) {
    return [axis, target_key](Call& call) {
        LinearAxis& slide = call.controller.devices.*axis;
        const int target = call.request.integer(target_key, static_cast<int>(slide.low), static_cast<int>(slide.high));
        const int percent = call.request.integer("speed", 1, kMaxPercent);
        slide.audience.expect(call.client, true);
        slide.go(target, percent);
        return true;
    };
}

Action run(LinearAxis Devices::*axis, bool report) {
    return [axis, report](Call& call) {
        LinearAxis& slide = call.controller.devices.*axis;
        const int percent = call.request.integer("speed", -kMaxPercent, kMaxPercent);
        slide.audience.expect(call.client, report);
        slide.run(percent);
        return true;
    };
}

// Reports to a client that waits for the arrival that there is none.
Hook refusal_of(Device device) {
    return [device](Call& call) { report_arrival(call.client, device, false); };
}

Json lift_state(Call& call) {
    const LinearAxis& lift = call.controller.devices.lift;
    return {{"height", lift.position()}, {"current", lift.current()}, {"err_flag", 0}, {"mode", lift.moving() ? 1 : 0}};
}

// Clients that do not wait for the reply send the name with a trailing blank.
void add_lift(CommandTable& table) {
    for (const char* name : {"set_lift_height", "set_lift", "set_lift "})
        table.set(name, "set_state", go(&Devices::lift, "height")).refused = refusal_of(Device::kLift);
    table.set("set_lift_speed", "set_state", run(&Devices::lift, false));
    table.query("get_lift_state", "lift_state", lift_state);
}

Json expansion_state(Call& call) {
    const LinearAxis& axis = call.controller.devices.expansion;
    return {{"pos", axis.position()}, {"current", axis.current()}, {"err_flag", 0}, {"mode", axis.moving() ? 1 : 0}};
}

bool configure_expansion(Call& call) {
    constexpr int kMaxRpm = 6000, kMaxRpmPerSecond = 60'000, kMaxUnits = 1'000'000;
    ExpansionConfig config = call.controller.devices.expansion_config;
    config.rpm_max = call.request.integer("rpm_max", 1, kMaxRpm);
    config.rpm_acc = call.request.integer("rpm_acc", 1, kMaxRpmPerSecond);
    config.units_per_revolution = call.request.integer("conversin_coe", 1, kMaxUnits);
    call.controller.devices.configure_expansion(config);
    return true;
}

Json expansion_config(Call& call) {
    const Devices& devices = call.controller.devices;
    const ExpansionConfig& config = devices.expansion_config;
    return {{"rpm_max", config.rpm_max},
            {"rpm_acc", config.rpm_acc},
            {"conversin_coe", config.units_per_revolution},
            {"limit_min", static_cast<int>(devices.expansion.low)},
            {"limit_max", static_cast<int>(devices.expansion.high)}};
}

void add_expansion(CommandTable& table) {
    table.set("expand_set_pos", "set_state", go(&Devices::expansion, "pos")).refused =
        refusal_of(Device::kExpansionAxis);
    table.set("expand_set_speed", "set_state", run(&Devices::expansion, true)).refused =
        refusal_of(Device::kExpansionAxis);
    table.query("expand_get_state", "expand_state", expansion_state);
    table.set("expand_config", "config_state", configure_expansion);
    table.query("expand_get_config", "expand_get_config", expansion_config);
    table.set("expand_set_version", "expand_version", [](Call& call) {
        call.controller.devices.expansion_config.version = call.request.integer("expand_version", 0);
        return true;
    });
    table.query("expand_get_version", "expand_get_version", [](Call& call) {
        return Json{{"expand_version", call.controller.devices.expansion_config.version}};
    });
}

Action drive(const char* linear_key, const char* angular_key) {
    constexpr int kMaxTurning = 3000;  // thousandths of a radian per second
    return [linear_key, angular_key](Call& call) {
        const int linear = call.request.integer(linear_key, -kMaxDrive, kMaxDrive);
        const int angular = call.request.integer(angular_key, -kMaxTurning, kMaxTurning);
        call.controller.devices.base.drive(linear, angular);
        return true;
    };
}

bool go_to_station(Call& call) {
    const int station = call.request.integer("station", 0, kMaxStation);
    call.controller.devices.base.go_to_station(station, call.request.integer("speed", 1, kMaxDrive));
    return true;
}

Json base_state(Call& call) {
    const MobileBase& base = call.controller.devices.base;
    return {{"battery_volume", base.battery()},
            {"voltage", 48000},
            {"current", base.state() == MobileBase::State::kRests ? 500 : 4000},
            {"car_err", 0},
            {"car_state", static_cast<int>(base.state())},
            {"station_num", base.station()}};
}

void add_base(CommandTable& table) {
    table.set("set_vehicle", "set_state", drive("speed", "angular"));
    table.set("set_car_move", "set_state", drive("linear_speed", "angular_speed"));
    table.set("set_car_speed", "navigation_state", go_to_station);
    table.set("set_car_navigation_speed", "navigation_state", [](Call& call) {
        call.request.integer("speed", 1);
        return true;
    });
    table.set("set_car_navigation_mode", "navigation_state", [](Call& call) {
        call.request.integer("mode", 0);
        return true;
    });
    table.set("set_car_charge", "navigation_state", [](Call& call) {
        call.controller.devices.base.charge(call.request.integer("charge_state", 0, 1) == 1);
        return true;
    });
    table.set("set_car_station_num", "navigation_state", [](Call& call) {
        call.controller.devices.base.stand_at(call.request.integer("station_num", 0, kMaxStation));
        return true;
    });
    table.query("get_car_state", "get_car_state", base_state);
}

}  // namespace

void add_axis_commands(CommandTable& table) {
    add_lift(table);
    add_expansion(table);
    add_base(table);
}

}  // namespace sim
