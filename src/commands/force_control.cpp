// Force control: the force sensors, their calibration, and the holding of a force.
#include "zk/replies/force_control.h"

#include <algorithm>

#include "commands/float_product.h"
#include "commands/twin.h"
#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/replies/arm_limits.h"
#include "zk/replies/drag_teach.h"
#include "zk/replies/system.h"

using namespace zk;

constexpr int32_t kCalibrationMs = 30000;

AckReply Set_Force_Postion_Cmd[ZK_SLOTS];
static Request set_force_position(ArmSocket s, int32_t sensor, int32_t mode, int32_t direction, int32_t force) {
    return Request(s, "set_force_position")
        .number("sensor", sensor)
        .number("mode", mode)
        .number("direction", direction)
        .number("N", force);
}
ZK_API int Set_Force_Postion(ArmSocket s, int32_t sensor, int32_t mode, int32_t direction, int32_t force, bool block) {
    const auto tenths = static_cast<int32_t>(static_cast<uint32_t>(force) * 10u);  // wraps, as the wire's integer does
    return guarded(block ? Set_Force_Postion_Block : Set_Force_Postion_NonBlock, s, sensor, mode, direction, tenths);
}
ZK_API int Set_Force_Postion_Block(ArmSocket s, int32_t sensor, int32_t mode, int32_t direction, int32_t force) {
    return set(set_force_position(s, sensor, mode, direction, force), Set_Force_Postion_Cmd);
}
ZK_API int Set_Force_Postion_NonBlock(ArmSocket s, int32_t sensor, int32_t mode, int32_t direction, int32_t force) {
    return post(set_force_position(s, sensor, mode, direction, force));
}

ZK_API int Set_Force_Postion_New(ArmSocket s, ForcePositionNew param) {
    return guarded(Set_Force_Postion_New_Block, s, param);
}
ZK_API int Set_Force_Postion_New_Block(ArmSocket s, ForcePositionNew param) {
    Request request(s, "set_force_position");
    request.number("sensor", param.sensor).number("mode", param.mode);
    return set(held_directions(request, param.desired_force, param.control_mode, param.limit_vel),
               Set_Force_Postion_Cmd);
}

AckReply Stop_Force_Postion_Cmd[ZK_SLOTS];
ZK_API int Stop_Force_Postion(ArmSocket s, bool block) {
    return guarded(block ? Stop_Force_Postion_Block : Stop_Force_Postion_NonBlock, s);
}
ZK_API int Stop_Force_Postion_Block(ArmSocket s) {
    return set({s, "stop_force_position"}, Stop_Force_Postion_Cmd, {.limit = limit_beyond(2000)});
}
ZK_API int Stop_Force_Postion_NonBlock(ArmSocket s) { return post({s, "stop_force_position"}); }

// The six-axis sensor.
namespace {

constexpr int kAxes = 6;

float thousandth(Item number) { return static_cast<float>(number.number() / 1000.0); }

void read_forces(Item array, float* forces) {
    if (!array.is_array()) return;
    for (int i = 0; i < std::min(array.size(), kAxes); ++i) forces[i] = thousandth(array[i]);
}

}  // namespace

ForceDataReply Get_Force_Data_Cmd[ZK_SLOTS];
ZK_API int Get_Force_Data(ArmSocket s, float* force, float* zero_force, float* work_zero_force,
                          float* tool_zero_force) {
    const auto form = [=](ArmSocket socket, float* first) {
        return Get_Force_Data_Block(socket, first, zero_force, work_zero_force, tool_zero_force);
    };
    return checked(form, s, force);
}
ZK_API int Get_Force_Data_Block(ArmSocket s, float* force, float* zero_force, float* work_zero_force,
                                float* tool_zero_force) {
    const auto deliver = [&](const ForceDataReply& reply) {
        std::copy_n(reply.force_data, kAxes, force);
        std::copy_n(reply.zero_force_data, kAxes, zero_force);
        std::copy_n(reply.work_zero_force_data, kAxes, work_zero_force);
        std::copy_n(reply.tool_zero_force_data, kAxes, tool_zero_force);
    };
    return query({s, "get_force_data"}, Get_Force_Data_Cmd, deliver, {.wipes_first = true});
}
ZK_API int Parser_Get_Force_Data(const char* text, float* force, float* zero_force, float* work_zero_force,
                                 float* tool_zero_force) {
    Reply reply(text);
    read_forces(reply.array(reply.root(), "force_data"), force);
    if (!reply.good()) return reply.status();
    read_forces(reply.find("zero_force_data"), zero_force);
    read_forces(reply.find("work_zero_force_data"), work_zero_force);
    read_forces(reply.find("tool_zero_force_data"), tool_zero_force);
    return reply.status();
}

AckReply Clear_Force_Data_Cmd[ZK_SLOTS];
ZK_API int Clear_Force_Data(ArmSocket s, bool block) {
    return after_20_ms(block, Clear_Force_Data_Block, Clear_Force_Data_NonBlock, s);
}
ZK_API int Clear_Force_Data_Block(ArmSocket s) { return set({s, "clear_force_data"}, Clear_Force_Data_Cmd); }
ZK_API int Clear_Force_Data_NonBlock(ArmSocket s) { return post({s, "clear_force_data"}); }
ZK_API int Parser_Clear_Force_Data(const char* text) { return acknowledgement(text, "clear_state"); }
ZK_TWIN(Parser_Clear_Force_Data);

// Calibrations. The replies for the two sensors cannot be distinguished: both mailboxes get each.
AckReply Set_Force_Sensor_Cmd[ZK_SLOTS];
ZK_API int Set_Force_Sensor(ArmSocket s) { return guarded(Set_Force_Sensor_Block, s); }
ZK_API int Set_Force_Sensor_Block(ArmSocket s) {
    return set({s, "set_force_sensor"}, Set_Force_Sensor_Cmd, {.limit = limit_beyond(kCalibrationMs)});
}
ZK_API int Set_Force_Sensor_NonBlock(ArmSocket s) { return post({s, "set_force_sensor"}); }
ZK_API int Parser_Set_Force_Sensor(const char* text) { return acknowledgement(text, "set_state"); }
ZK_TWIN(Parser_Set_Force_Sensor);

namespace {

// Joint angles times 1000, not truncated.
struct PreciseJoints {
    double values[8];
    int count;

    PreciseJoints(ArmSocket s, const float* degrees) : count(request_joint_count(s)) {
        for (int i = 0; i < count; ++i) values[i] = float_product(degrees[i], 1000.0f);
    }
};

Request manual_set_force(ArmSocket s, int32_t number, const float* joint) {
    constexpr const char* commands[] = {"manual_set_force_pose1", "manual_set_force_pose2", "manual_set_force_pose3",
                                        "manual_set_force_pose4"};
    const PreciseJoints joints(s, joint);
    const bool known = number >= 1 && number <= 4;
    return Request(s, known ? commands[number - 1] : nullptr).numbers("joint", joints.values, joints.count);
}

}  // namespace

ZK_API int Manual_Set_Force(ArmSocket s, int32_t number, const float* joint) {
    return checked(number == 4 ? Manual_Set_Force_Block : Manual_Set_Force_NonBlock, s, number, joint);
}
ZK_API int Manual_Set_Force_Block(ArmSocket s, int32_t number, const float* joint) {
    return set(manual_set_force(s, number, joint), Set_Force_Sensor_Cmd, {.limit = limit_beyond(kCalibrationMs)});
}
ZK_API int Manual_Set_Force_NonBlock(ArmSocket s, int32_t number, const float* joint) {
    if (const int slot = slot_of(s); slot >= 0) Mailbox(Set_Force_Sensor_Cmd).clear(slot);
    return post(manual_set_force(s, number, joint));
}

AckReply Stop_Set_Force_Sensor_Cmd[ZK_SLOTS];
ZK_API int Stop_Set_Force_Sensor(ArmSocket s, bool block) {
    return guarded(block ? Stop_Set_Force_Sensor_Block : Stop_Set_Force_Sensor_NonBlock, s);
}
ZK_API int Stop_Set_Force_Sensor_Block(ArmSocket s) {
    return set({s, "stop_set_force_sensor"}, Stop_Set_Force_Sensor_Cmd);
}
ZK_API int Stop_Set_Force_Sensor_NonBlock(ArmSocket s) { return post({s, "stop_set_force_sensor"}); }
ZK_API int Parser_Stop_Force_Sensor(const char* text) { return acknowledgement(text, "stop_state"); }
ZK_TWIN(Parser_Stop_Force_Sensor);

// The one-axis sensor.
FzReply Get_FZ_Data_Cmd[ZK_SLOTS];
ZK_API int Get_Fz(ArmSocket s, float* fz, float* zero_fz, float* work_zero_fz, float* tool_zero_fz) {
    const auto form = [=](ArmSocket socket, float* first) {
        return Get_Fz_Block(socket, first, zero_fz, work_zero_fz, tool_zero_fz);
    };
    return checked(form, s, fz);
}
ZK_API int Get_Fz_Block(ArmSocket s, float* fz, float* zero_fz, float* work_zero_fz, float* tool_zero_fz) {
    return query({s, "get_Fz"}, Get_FZ_Data_Cmd, [&](const FzReply& reply) {
        *fz = reply.fz;
        *zero_fz = reply.zero_fz;
        *work_zero_fz = reply.work_zero_fz;
        *tool_zero_fz = reply.tool_zero_fz;
    });
}
// Here false is the good state.
ZK_API int Parser_Get_Fz(const char* text, float* fz, float* zero_fz, float* work_zero_fz, float* tool_zero_fz) {
    Reply reply(text);
    reply.require(reply.find("set_state").is_false(), ZK_BAD_REPLY);
    const auto read_force = [&](const char* key, float* force) {
        if (const Item number = reply.number(reply.root(), key)) *force = thousandth(number);
    };
    read_force("Fz", fz);
    read_force("zero_Fz", zero_fz);
    read_force("work_zero_Fz", work_zero_fz);
    read_force("tool_zero_Fz", tool_zero_fz);
    return reply.status();
}

AckReply Clear_Fz_Cmd[ZK_SLOTS];
ZK_API int Clear_Fz(ArmSocket s, bool block) { return guarded(block ? Clear_Fz_Block : Clear_Fz_NonBlock, s); }
ZK_API int Clear_Fz_Block(ArmSocket s) { return set({s, "clear_Fz"}, Clear_Fz_Cmd); }
ZK_API int Clear_Fz_NonBlock(ArmSocket s) { return post({s, "clear_Fz"}); }

AckReply Auto_Set_Fz_Cmd[ZK_SLOTS];
ZK_API int Auto_Set_Fz(ArmSocket s) { return guarded(Auto_Set_Fz_Block, s); }
ZK_API int Auto_Set_Fz_Block(ArmSocket s) {
    return set({s, "auto_set_Fz"}, Auto_Set_Fz_Cmd, {.limit = limit_beyond(kCalibrationMs)});
}
ZK_API int Auto_Set_Fz_NonBlock(ArmSocket s) { return post({s, "auto_set_Fz"}); }

ZK_API int Manual_Set_Fz(ArmSocket s, const float* pose1, const float* pose2) {
    return checked(Manual_Set_Fz_Block, s, pose1, pose2);
}
// The seventh angle of the second pose is sent at the end of the first.
ZK_API int Manual_Set_Fz_Block(ArmSocket s, const float* pose1, const float* pose2) {
    PreciseJoints first(s, pose1), second(s, pose2);
    if (second.count == 7) first.values[first.count++] = second.values[--second.count];
    return set(Request(s, "manual_set_Fz")
                   .numbers("pose1", first.values, first.count)
                   .numbers("pose2", second.values, second.count),
               Auto_Set_Fz_Cmd, {.limit = limit_beyond(2000)});
}

// Thresholds of force.
AckReply Set_Force_Drag_Threshold_Cmd[ZK_SLOTS];
AckReply Init_Force_Drag_Threshold_Cmd[ZK_SLOTS];
IntReply Get_Force_Drag_Threshold_Cmd[ZK_SLOTS];
ZK_API int Parser_init_force_drag_threshold(const char* text) { return acknowledgement(text, "init_state"); }
ZK_API int Parser_Get_Force_Drag_Threshold(const char* text, int32_t* threshold) {
    return integer_value(text, "threshold", threshold);
}
