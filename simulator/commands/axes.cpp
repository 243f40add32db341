// Lift, expansion axis and mobile base. The end of a motion of the first two is reported, except for a lift that was
// only given a speed.

#include "commands/commands.h"
#include "devices/devices.h"
#include "wire/command_table.h"
#include "wire/memory.h"

namespace sim {
namespace {

constexpr int kMaxPercent = 100;
constexpr int kMaxStation = 1000;
constexpr int kMaxDrive = 2000;  // millimetres per second

Action go(LinearAxis& slide, const char* target_key) {
    return [&slide, target_key](const Call& call) {
        const int target = call.request.integer(target_key, static_cast<int>(slide.low), static_cast<int>(slide.high));
        const int percent = call.request.integer("speed", 1, kMaxPercent);
        slide.audience.expect(call.client, true);
        slide.go(target, percent);
        return true;
    };
}

Action run(LinearAxis& slide, bool report) {
    return [&slide, report](const Call& call) {
        const int percent = call.request.integer("speed", -kMaxPercent, kMaxPercent);
        slide.audience.expect(call.client, report);
        slide.run(percent);
        return true;
    };
}

// Reports to a client that waits for the arrival that there is none.
Hook refusal_of(Device device) {
    return [device](const Call& call) { report_arrival(call.client, device, false); };
}

Json lift_state(const LinearAxis& lift, const Call&) {
    return {{"height", lift.position()},
            {"current", lift.current()},
            {"err_flag", lift.stuck() ? 1 : 0},
            {"mode", lift.moving() ? 1 : 0}};
}

// Clients that do not wait for the reply send the name with a trailing blank.
void add_lift(CommandTable& table, LinearAxis& lift) {
    for (const char* name : {"set_lift_height", "set_lift", "set_lift "})
        table.set(name, "set_state", go(lift, "height")).refused = refusal_of(Device::kLift);
    table.set("set_lift_speed", "set_state", run(lift, false));
    table.query("get_lift_state", "lift_state", with(lift_state, lift));
}

Json expansion_state(const LinearAxis& axis, const Call&) {
    return {{"pos", axis.position()},
            {"current", axis.current()},
            {"err_flag", axis.stuck() ? 1 : 0},
            {"mode", axis.moving() ? 1 : 0}};
}

void set_expansion(Devices& devices, const Request& request) {
    constexpr int kMaxRpm = 6000, kMaxRpmPerSecond = 60'000, kMaxUnits = 1'000'000;
    ExpansionConfig config = devices.expansion_config;
    config.rpm_max = request.integer("rpm_max", 1, kMaxRpm);
    config.rpm_acc = request.integer("rpm_acc", 1, kMaxRpmPerSecond);
    config.units_per_revolution = request.integer("conversin_coe", 1, kMaxUnits);
    devices.configure_expansion(config);
}

bool configure_expansion(Devices& devices, const Call& call) {
    set_expansion(devices, call.request);
    return true;
}

Json expansion_config(const Devices& devices) {
    const ExpansionConfig& config = devices.expansion_config;
    return {{"rpm_max", config.rpm_max},
            {"rpm_acc", config.rpm_acc},
            {"conversin_coe", config.units_per_revolution},
            {"limit_min", static_cast<int>(devices.expansion.low)},
            {"limit_max", static_cast<int>(devices.expansion.high)}};
}

void add_expansion(CommandTable& table, Memory& memory, Devices& devices) {
    table.set("expand_set_pos", "set_state", go(devices.expansion, "pos")).refused = refusal_of(Device::kExpansionAxis);
    table.set("expand_set_speed", "set_state", run(devices.expansion, true)).refused =
        refusal_of(Device::kExpansionAxis);
    table.query("expand_get_state", "expand_state", with(expansion_state, devices.expansion));
    memory.keep(
        "expansion_axis", [&devices] { return expansion_config(devices); },
        [&devices](const Request& saved) { set_expansion(devices, saved); });
    memory.keep("expansion_version", {{"expand_version", devices.expansion_config.version, 0}});
    table.set("expand_config", "config_state", with(configure_expansion, devices));
    table.query("expand_get_config", "expand_get_config",
                [&devices](const Call&) { return expansion_config(devices); });
    table.set("expand_set_version", "expand_version", [&devices](const Call& call) {
        devices.expansion_config.version = call.request.integer("expand_version", 0);
        return true;
    });
    table.query("expand_get_version", "expand_get_version", [&devices](const Call&) {
        return Json{{"expand_version", devices.expansion_config.version}};
    });
}

Action drive(MobileBase& base, const char* linear_key, const char* angular_key) {
    constexpr int kMaxTurning = 3000;  // thousandths of a radian per second
    return [&base, linear_key, angular_key](const Call& call) {
        const int linear = call.request.integer(linear_key, -kMaxDrive, kMaxDrive);
        const int angular = call.request.integer(angular_key, -kMaxTurning, kMaxTurning);
        base.drive(linear, angular);
        return true;
    };
}

bool go_to_station(MobileBase& base, const Call& call) {
    const int station = call.request.integer("station", 0, kMaxStation);
    base.go_to_station(station, call.request.integer("speed", 1, kMaxDrive));
    return true;
}

Json base_state(const MobileBase& base, const Call&) {
    return {{"battery_volume", base.battery()},
            {"voltage", 48000},
            {"current", base.state() == MobileBase::State::kRests ? 500 : 4000},
            {"car_err", 0},
            {"car_state", static_cast<int>(base.state())},
            {"station_num", base.station()}};
}

void add_base(CommandTable& table, MobileBase& base) {
    table.set("set_vehicle", "set_state", drive(base, "speed", "angular"));
    table.set("set_car_move", "set_state", drive(base, "linear_speed", "angular_speed"));
    table.set("set_car_speed", "navigation_state", with(go_to_station, base));
    table.set("set_car_navigation_speed", "navigation_state", [](const Call& call) {
        call.request.integer("speed", 1);
        return true;
    });
    table.set("set_car_navigation_mode", "navigation_state", [](const Call& call) {
        call.request.integer("mode", 0);
        return true;
    });
    table.set("set_car_charge", "navigation_state", [&base](const Call& call) {
        base.charge(call.request.integer("charge_state", 0, 1) == 1);
        return true;
    });
    table.set("set_car_station_num", "navigation_state", [&base](const Call& call) {
        base.stand_at(call.request.integer("station_num", 0, kMaxStation));
        return true;
    });
    table.query("get_car_state", "get_car_state", with(base_state, base));
}

}  // namespace

void add_axis_commands(CommandTable& table, Memory& memory, Devices& devices) {
    add_lift(table, devices.lift);
    add_expansion(table, memory, devices);
    add_base(table, devices.base);
}

}  // namespace sim
