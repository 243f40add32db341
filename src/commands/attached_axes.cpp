// Lift, expansion axis and mobile base. The replies of most of the base's commands, and of some of the lift's, do not
// reach the pending list: their blocking forms end in 7.
#include "zk/replies/attached_axes.h"

#include "commands/arrival.h"
#include "connection/pending.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/replies/arm_limits.h"
#include "zk/replies/pending.h"
#include "zk/replies/system.h"

using namespace zk;

namespace {

constexpr int32_t kTravelMs = 120000;  // longer than any of the axes travels

Request one(ArmSocket s, const char* command, const char* key, int32_t value) {
    return Request(s, command).number(key, value);
}

Request two(ArmSocket s, const char* command, const char* first_key, int32_t first, const char* second_key,
            int32_t second) {
    return Request(s, command).number(first_key, first).number(second_key, second);
}

Request lift(ArmSocket s, const char* command, int32_t height, int32_t speed) {
    return two(s, command, "height", height, "speed", speed);
}

// A command of the base whose reply never reaches the pending list: its keys, one or two, and the code and the parser
// of the reply.
struct BaseCommand {
    const char* name;
    const char* keys[2];
    int key_code;
    int (*parse)(const char*);

    Request request(ArmSocket s, int32_t first) const { return one(s, name, keys[0], first); }
    Request request(ArmSocket s, int32_t first, int32_t second) const {
        return two(s, name, keys[0], first, keys[1], second);
    }
    template <class... Values>
    int wait(ArmSocket s, Values... values) const {
        return pending(request(s, values...), key_code, parse);
    }
};

// Reads required numbers in order.
struct Number {
    const char* key;
    int32_t* value;
};
int numbers(const char* text, std::initializer_list<Number> fields) {
    Reply reply(text);
    for (const Number& field : fields) reply.take(field.key, *field.value);
    return reply.status();
}

int look_at_lift(ArmSocket s, MotionPoll& motion) {
    int32_t height, current, mode = 0;
    uint16_t err_flag;
    const int status = Get_Lift_State(s, &height, &current, &err_flag, &mode);
    motion = {.idle = mode == 0, .expected = mode != 0};
    return status;
}

// Any report ends the wait, even an old one of another device.
int axis_arrived(const Request& request) {
    const Wait connection(request.socket());
    if (const int status = connection.claim(Move_Cmd, Sharing::kAlone)) return status;
    if (is_handle(request.socket())) Mailbox(Move_Cmd).clear(connection.slot());
    if (const int status = post(request)) return status;
    if (const int status = await(Move_Cmd, connection, limit_beyond(kTravelMs))) return status;
    const MoveReport report = take_report(connection.slot());
    if (const int status = connection.status()) return status;
    return is_of(report, Device::kExpansionAxis) ? report.result : int(ZK_OTHER_DEVICE);
}

}  // namespace

// ------------------------------------------------------------------------------------------------------------- Lift --

ZK_API int Set_Lift_Height(ArmSocket s, int32_t height, int32_t speed, bool block) {
    return guarded(block ? Set_Lift_Height_BLock : Set_Lift_Height_NonBLock, s, height, speed);
}
ZK_API int Set_Lift_Height_BLock(ArmSocket s, int32_t height, int32_t speed) {
    const Wait connection(s);
    if (const int status = connection.claim(Move_Cmd, Sharing::kAlone)) return status;
    Mailbox(Move_Cmd).clear(connection.slot());
    if (const int status = post(lift(s, "set_lift_height", height, speed))) return status;
    return await_report(connection, Device::kLift, [s](MotionPoll& motion) { return look_at_lift(s, motion); });
}
ZK_API int Set_Lift_Height_NonBLock(ArmSocket s, int32_t height, int32_t speed) {
    return post(lift(s, "set_lift_height", height, speed));
}

LiftStateReply Get_Lift_State_Cmd[ZK_SLOTS];
ZK_API int Get_Lift_State(ArmSocket s, int32_t* height, int32_t* current, uint16_t* err_flag, int32_t* mode) {
    if (!sending_file() && any_null(height, current, err_flag)) return ZK_BAD_ARGUMENT;
    return guarded(Get_Lift_State_Block, s, height, current, err_flag, mode);
}
ZK_API int Get_Lift_State_Block(ArmSocket s, int32_t* height, int32_t* current, uint16_t* err_flag, int32_t* mode) {
    return query({s, "get_lift_state"}, Get_Lift_State_Cmd, [&](const LiftStateReply& reply) {
        *height = reply.height;
        *current = reply.current;
        *err_flag = static_cast<uint16_t>(reply.err_flag);
        if (mode) *mode = reply.mode;
    });
}
ZK_API int Parser_Get_Lift_Speed(const char* text, int32_t* height, int32_t* current, int32_t* err_flag,
                                 int32_t* mode) {
    return numbers(text, {{"height", height}, {"current", current}, {"err_flag", err_flag}, {"mode", mode}});
}

static Request lift_speed(ArmSocket s, int32_t speed) { return one(s, "set_lift_speed", "speed", speed); }
ZK_API int Set_Lift_Speed(ArmSocket s, int32_t speed) {
    return after_20_ms(false, Set_Lift_Speed_Block, Set_Lift_Speed_NonBlock, s, speed);
}
ZK_API int Set_Lift_Speed_Block(ArmSocket s, int32_t speed) {
    return pending(lift_speed(s, speed), ZK_KEY_LIFT_SPEED, Parser_Set_Hand);
}
ZK_API int Set_Lift_Speed_NonBlock(ArmSocket s, int32_t speed) { return post(lift_speed(s, speed)); }

// The trailing blank of the name in the non-blocking form belongs to the protocol.
ZK_API int Set_Lift(ArmSocket s, int32_t height, int32_t speed, bool block) {
    return after_20_ms(block, Set_Lift_Block, Set_Lift_NonBlock, s, height, speed);
}
ZK_API int Set_Lift_Block(ArmSocket s, int32_t height, int32_t speed) {
    return pending(lift(s, "set_lift", height, speed), ZK_KEY_LIFT, Parser_Set_Hand, {.extra_ms = kTravelMs});
}
ZK_API int Set_Lift_NonBlock(ArmSocket s, int32_t height, int32_t speed) {
    return post(lift(s, "set_lift ", height, speed));
}

// --------------------------------------------------------------------------------------------------- Expansion axis --

static Request axis_speed(ArmSocket s, int32_t speed) { return one(s, "expand_set_speed", "speed", speed); }
ZK_API int Expand_Set_Speed(ArmSocket s, int32_t speed, bool block) {
    return guarded(block ? Expand_Set_Speed_Block : Expand_Set_Speed_NonBlock, s, speed);
}
ZK_API int Expand_Set_Speed_Block(ArmSocket s, int32_t speed) { return axis_arrived(axis_speed(s, speed)); }
ZK_API int Expand_Set_Speed_NonBlock(ArmSocket s, int32_t speed) { return post(axis_speed(s, speed)); }

static Request axis_pos(ArmSocket s, int32_t pos, int32_t speed) {
    return two(s, "expand_set_pos", "pos", pos, "speed", speed);
}
ZK_API int Expand_Set_Pos(ArmSocket s, int32_t pos, int32_t speed, bool block) {
    if (sending_file()) return ZK_SENDING_FILE;
    const Wait call(s);
    if (const int status = sleep_before(call, kPauseMs)) return status;
    return block ? Expand_Set_Pos_Block(s, pos, speed) : Expand_Set_Pos_NonBlock(s, pos, speed);
}
ZK_API int Expand_Set_Pos_Block(ArmSocket s, int32_t pos, int32_t speed) {
    return axis_arrived(axis_pos(s, pos, speed));
}
ZK_API int Expand_Set_Pos_NonBlock(ArmSocket s, int32_t pos, int32_t speed) { return post(axis_pos(s, pos, speed)); }

ExpandStateReply Expand_Get_State_Cmd[ZK_SLOTS];
ZK_API int Expand_Get_State(ArmSocket s, int32_t* pos, uint16_t* err_flag, int32_t* current, int32_t* mode) {
    return checked(Expand_Get_State_BLock, s, pos, err_flag, current, mode);
}
ZK_API int Expand_Get_State_BLock(ArmSocket s, int32_t* pos, uint16_t* err_flag, int32_t* current, int32_t* mode) {
    const auto deliver = [&](const ExpandStateReply& reply) {
        *pos = reply.pos;
        *err_flag = static_cast<uint16_t>(reply.err_flag);
        *current = reply.current;
        *mode = reply.mode;
    };
    return query({s, "expand_get_state"}, Expand_Get_State_Cmd, deliver, {.limit = read(m_nOutTime_max)});
}
ZK_API int Parser_Expand_Get_State(const char* text, int32_t* pos, int32_t* err_flag, int32_t* current, int32_t* mode) {
    return numbers(text, {{"pos", pos}, {"current", current}, {"err_flag", err_flag}, {"mode", mode}});
}

// These two setters clear the count of another mailbox, not their own: the reply to an earlier call ends the wait.
AckReply Expand_Set_Version_Cmd[ZK_SLOTS];
ZK_API int Expand_Set_Version(ArmSocket s, int32_t version) { return guarded(Expand_Set_Version_BLock, s, version); }
ZK_API int Expand_Set_Version_BLock(ArmSocket s, int32_t version) {
    return set(one(s, "expand_set_version", "expand_version", version), Expand_Set_Version_Cmd,
               {.clears = Set_Arm_Power_Cmd, .limit = read(m_nOutTime_max)});
}
ZK_API int Parser_Expand_Set_Version(const char* text) { return acknowledgement(text, "expand_version"); }

AckReply Expand_Config_Cmd[ZK_SLOTS];
ZK_API int Expand_Config(ArmSocket s, int32_t rpm_max, int32_t rpm_acc, int32_t coefficient) {
    return guarded(Expand_Config_Block, s, rpm_max, rpm_acc, coefficient);
}
ZK_API int Expand_Config_Block(ArmSocket s, int32_t rpm_max, int32_t rpm_acc, int32_t coefficient) {
    return set(two(s, "expand_config", "rpm_max", rpm_max, "rpm_acc", rpm_acc).number("conversin_coe", coefficient),
               Expand_Config_Cmd, {.clears = Set_Arm_Power_Cmd});
}
ZK_API int Parser_Expand_Config(const char* text) { return acknowledgement(text, "config_state"); }

IntReply Expand_Get_Version_Cmd[ZK_SLOTS];
ZK_API int Expand_Get_Version(ArmSocket s, int32_t* version) { return checked(Expand_Get_Version_BLock, s, version); }
ZK_API int Expand_Get_Version_BLock(ArmSocket s, int32_t* version) {
    return query({s, "expand_get_version"}, Expand_Get_Version_Cmd,
                 [&](const IntReply& reply) { *version = reply.value; }, {.limit = read(m_nOutTime_max)});
}
ZK_API int Parser_Expand_Get_Version(const char* text, int32_t* version) {
    return integer_value(text, "expand_version", version);
}

ExpandConfigReply Expand_Get_Config_Cmd[ZK_SLOTS];
ZK_API int Expand_Get_Config(ArmSocket s, int32_t* rpm_max, int32_t* rpm_acc, int32_t* coefficient, int32_t* limit_min,
                             int32_t* limit_max) {
    return checked(Expand_Get_Config_Block, s, rpm_max, rpm_acc, coefficient, limit_min, limit_max);
}
ZK_API int Expand_Get_Config_Block(ArmSocket s, int32_t* rpm_max, int32_t* rpm_acc, int32_t* coefficient,
                                   int32_t* limit_min, int32_t* limit_max) {
    return query({s, "expand_get_config"}, Expand_Get_Config_Cmd, [&](const ExpandConfigReply& reply) {
        *rpm_max = reply.rpm_max;
        *rpm_acc = reply.rpm_acc;
        *coefficient = reply.conversin_coe;
        *limit_min = reply.limit_min;
        *limit_max = reply.limit_max;
    });
}
ZK_API int Parser_Expand_Get_Config(const char* text, int32_t* rpm_max, int32_t* rpm_acc, int32_t* coefficient,
                                    int32_t* limit_min, int32_t* limit_max) {
    return numbers(text, {{"rpm_max", rpm_max},
                          {"rpm_acc", rpm_acc},
                          {"conversin_coe", coefficient},
                          {"limit_min", limit_min},
                          {"limit_max", limit_max}});
}

// ------------------------------------------------------------------------------------------------------ Mobile base --

static constexpr BaseCommand kVehicle = {"set_vehicle", {"speed", "angular"}, ZK_KEY_VEHICLE, Parser_Set_Hand};
ZK_API int Set_Vehicle(ArmSocket s, int32_t speed, int32_t angular, bool block) {
    return after_20_ms(block, Set_Vehicle_Block, Set_Vehicle_NonBlock, s, speed, angular);
}
ZK_API int Set_Vehicle_Block(ArmSocket s, int32_t speed, int32_t angular) { return kVehicle.wait(s, speed, angular); }
ZK_API int Set_Vehicle_NonBlock(ArmSocket s, int32_t speed, int32_t angular) {
    return post(kVehicle.request(s, speed, angular));
}

static constexpr BaseCommand kMove = {
    "set_car_move", {"linear_speed", "angular_speed"}, ZK_KEY_CAR_MOVE, Parser_Set_Hand};
ZK_API int Set_Car_Move(ArmSocket s, int32_t linear, int32_t angular, bool block) {
    return after_20_ms(block, Set_Car_Move_Block, Set_Car_Move_NonBlock, s, linear, angular);
}
ZK_API int Set_Car_Move_Block(ArmSocket s, int32_t linear, int32_t angular) { return kMove.wait(s, linear, angular); }
ZK_API int Set_Car_Move_NonBlock(ArmSocket s, int32_t linear, int32_t angular) {
    return post(kMove.request(s, linear, angular));
}

// On the wire the travel to a station is called a speed.
static constexpr BaseCommand kGoTo = {
    "set_car_speed", {"station", "speed"}, ZK_KEY_CAR_STATION, Parser_Set_Car_Station};
ZK_API int Set_Car_Station(ArmSocket s, int32_t station, int32_t speed, bool block) {
    return after_20_ms(block, Set_Car_Station_Block, Set_Car_Station_NonBlock, s, station, speed);
}
ZK_API int Set_Car_Station_Block(ArmSocket s, int32_t station, int32_t speed) { return kGoTo.wait(s, station, speed); }
ZK_API int Set_Car_Station_NonBlock(ArmSocket s, int32_t station, int32_t speed) {
    return post(kGoTo.request(s, station, speed));
}
ZK_API int Parser_Set_Car_Station(const char* text) { return acknowledgement(text, "navigation_state"); }

static constexpr BaseCommand kSpeed = {
    "set_car_navigation_speed", {"speed"}, ZK_KEY_CAR_NAVIGATION_SPEED, Parser_Set_Car_Station};
ZK_API int Set_Car_Navigation_Speed(ArmSocket s, int32_t speed, bool block) {
    return after_20_ms(block, Set_Car_Navigation_Speed_Block, Set_Car_Navigation_Speed_NonBlock, s, speed);
}
ZK_API int Set_Car_Navigation_Speed_Block(ArmSocket s, int32_t speed) { return kSpeed.wait(s, speed); }
ZK_API int Set_Car_Navigation_Speed_NonBlock(ArmSocket s, int32_t speed) { return post(kSpeed.request(s, speed)); }

static constexpr BaseCommand kMode = {
    "set_car_navigation_mode", {"mode"}, ZK_KEY_CAR_NAVIGATION_MODE, Parser_Set_Car_Station};
ZK_API int Set_Car_Navigation_Mode(ArmSocket s, int32_t mode, bool block) {
    return after_20_ms(block, Set_Car_Navigation_Mode_Block, Set_Car_Navigation_Mode_NonBlock, s, mode);
}
ZK_API int Set_Car_Navigation_Mode_Block(ArmSocket s, int32_t mode) { return kMode.wait(s, mode); }
ZK_API int Set_Car_Navigation_Mode_NonBlock(ArmSocket s, int32_t mode) { return post(kMode.request(s, mode)); }

static constexpr BaseCommand kCharge = {"set_car_charge", {"charge_state"}, ZK_KEY_CAR_CHARGE, Parser_Set_Car_Station};
ZK_API int Set_Car_Charge(ArmSocket s, int32_t charge_state, bool block) {
    return after_20_ms(block, Set_Car_Charge_Block, Set_Car_Charge_NonBlock, s, charge_state);
}
ZK_API int Set_Car_Charge_Block(ArmSocket s, int32_t charge_state) { return kCharge.wait(s, charge_state); }
ZK_API int Set_Car_Charge_NonBlock(ArmSocket s, int32_t charge_state) { return post(kCharge.request(s, charge_state)); }

static constexpr BaseCommand kStation = {
    "set_car_station_num", {"station_num"}, ZK_KEY_CAR_STATION_NUM, Parser_Set_Car_Station};
ZK_API int Set_Car_Station_Num(ArmSocket s, int32_t station, bool block) {
    return after_20_ms(block, Set_Car_Station_Num_Block, Set_Car_Station_Num_NonBlock, s, station);
}
ZK_API int Set_Car_Station_Num_Block(ArmSocket s, int32_t station) { return kStation.wait(s, station); }
ZK_API int Set_Car_Station_Num_NonBlock(ArmSocket s, int32_t station) { return post(kStation.request(s, station)); }

ZK_API int Get_Car_State(ArmSocket s, int32_t* battery_volume, int32_t* voltage, int32_t* current, int32_t* car_err,
                         int32_t* car_state, int32_t* station_num) {
    return query_after_20_ms(Get_Car_State_Block, s, battery_volume, voltage, current, car_err, car_state, station_num);
}
ZK_API int Get_Car_State_Block(ArmSocket s, int32_t* battery_volume, int32_t* voltage, int32_t* current,
                               int32_t* car_err, int32_t* car_state, int32_t* station_num) {
    return pending({s, "get_car_state"}, ZK_KEY_CAR_STATE, [&](const char* text) {
        return Parser_Get_Car_State(text, battery_volume, voltage, current, car_err, car_state, station_num);
    });
}
ZK_API int Parser_Get_Car_State(const char* text, int32_t* battery_volume, int32_t* voltage, int32_t* current,
                                int32_t* car_err, int32_t* car_state, int32_t* station_num) {
    return numbers(text, {{"battery_volume", battery_volume},
                          {"voltage", voltage},
                          {"current", current},
                          {"car_err", car_err},
                          {"car_state", car_state},
                          {"station_num", station_num}});
}
