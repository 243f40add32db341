// Parses a datagram of the real-time stream; the order of its parts decides which error counts.
#include <cstring>
#include <iterator>

#include "connection/realtime.h"
#include "connection/reply.h"
#include "zk/replies/realtime.h"

namespace zk {
namespace {

// An array longer than its field continues into the next fields, up to the end of the record.
template <class Value, class Convert>
void run_on(RobotStatus* status, size_t field, Item array, Convert convert) {
    for (int i = 0; i < array.size() && field + sizeof(Value) <= sizeof *status; ++i, field += sizeof(Value)) {
        const Value value = convert(array[i].integer());
        std::memcpy(reinterpret_cast<char*>(status) + field, &value, sizeof value);
    }
}

int32_t whole(int32_t wire) { return wire; }
float thousandth(int32_t wire) { return static_cast<float>(wire) / 1000.0f; }

void hand(Reply& reply, Item hand, RobotStatus* status) {
    if (!hand) return;
    const auto take = [&](const char* key, size_t field) {
        run_on<int32_t>(status, field, reply.array(hand, key, -1, 0, ZK_BAD_REPLY), whole);
    };
    take("hand_pos", offsetof(RobotStatus, hand_pos));
    take("hand_angle", offsetof(RobotStatus, hand_angle));
    take("hand_force", offsetof(RobotStatus, hand_force));
    take("hand_state", offsetof(RobotStatus, hand_state));
    if (const Item error = reply.number(hand, "hand_err", ZK_BAD_REPLY)) status->hand_err = error.integer();
}

void aloha(Reply& reply, Item aloha, RobotStatus* status) {
    if (!aloha) return;
    const Item io1 = aloha.key("io1_state");
    const Item io2 = aloha.key("io2_state");
    if (!reply.require(io1.is_number() && io2.is_number(), ZK_WRONG_TYPE)) return;
    status->io1_state = io1.integer();
    status->io2_state = io2.integer();
}

void integer(Reply& reply, Item object, const char* key, int32_t& field) {
    if (const Item number = reply.number(object, key)) field = number.integer();
}

void thousandths(Reply& reply, Item object, const char* key, float& field) {
    if (const Item number = reply.number(object, key)) field = thousandth(number.integer());
}

void lift(Reply& reply, Item lift, RobotStatus* status) {
    if (!lift) return;
    thousandths(reply, lift, "pos", status->lift_pos);
    integer(reply, lift, "height", status->lift_height);
    integer(reply, lift, "current", status->lift_current);
    integer(reply, lift, "err_flag", status->lift_err_flag);
    integer(reply, lift, "en_flag", status->lift_en_flag);
}

void expansion(Reply& reply, Item axis, RobotStatus* status) {
    if (!axis) return;
    integer(reply, axis, "joint_id", status->expand_joint_id);
    integer(reply, axis, "mode", status->expand_mode);
    thousandths(reply, axis, "pos", status->expand_pos);
    integer(reply, axis, "current", status->expand_current);
    integer(reply, axis, "err_flag", status->expand_err_flag);
    integer(reply, axis, "en_flag", status->expand_en_flag);
}

// Arrays of six or seven joints.
template <class Value, class Convert>
void joints(Reply& reply, Item array, Value (&field)[7], Convert convert) {
    if (!reply.require(array.size() == 6 || array.size() == 7, ZK_WRONG_SIZE)) return;
    for (int i = 0; i < array.size(); ++i) field[i] = static_cast<Value>(convert(array[i].integer()));
}

void joint_status(Reply& reply, RobotStatus* status) {
    const Item object = reply.object(reply.root(), "joint_status");
    if (const Item speed = object.key("joint_speed")) {
        reply.require(speed.is_array(), ZK_WRONG_TYPE);
        joints(reply, speed, status->joint_speed,
               [](int32_t wire) { return static_cast<float>(wire) * 6.0f / 1000.0f; });
    }
    const auto array = [&](const char* key) { return reply.array(object, key); };
    joints(reply, array("joint_current"), status->joint_current, thousandth);
    joints(reply, array("joint_en_flag"), status->joint_en_flag, whole);
    joints(reply, array("joint_err_code"), status->joint_err_code, whole);
    joints(reply, array("joint_position"), status->joint_position, thousandth);
    joints(reply, array("joint_temperature"), status->joint_temperature, thousandth);
    joints(reply, array("joint_voltage"), status->joint_voltage, thousandth);
}

void waypoint(Reply& reply, RobotStatus* status) {
    const Item object = reply.object(reply.root(), "waypoint");
    scaled(reply.array(object, "quat", 4), 4, 1000000.0f, status->quat);
    scaled(reply.array(object, "euler", 3), 3, 1000.0f, status->euler);
    scaled(reply.array(object, "position", 3), 3, 1000000.0f, status->position);
}

void error_words(Reply& reply, RobotStatus* status) {
    if (const Item word = reply.number(reply.root(), "arm_err"))
        status->arm_err = static_cast<uint16_t>(word.integer());
    if (const Item word = reply.number(reply.root(), "sys_err"))
        status->sys_err = static_cast<uint16_t>(word.integer());
}

void forces(Reply& reply, Item sensor, int wrong, RobotStatus* status) {
    if (!sensor) return;
    run_on<float>(status, offsetof(RobotStatus, force), reply.array(sensor, "force", -1, 0, wrong), thousandth);
    run_on<float>(status, offsetof(RobotStatus, zero_force), reply.array(sensor, "zero_force", -1, 0, wrong),
                  thousandth);
    integer(reply, sensor, "coordinate", status->coordinate);
}

// Of a one-axis sensor the forces are taken when they are arrays.
void one_axis_forces(Reply& reply, Item sensor, RobotStatus* status) {
    if (!sensor) return;
    const Item force = sensor.key("force");
    const Item zero_force = sensor.key("zero_force");
    if (!reply.require(force && zero_force, ZK_BAD_REPLY)) return;
    if (force.is_array()) run_on<float>(status, offsetof(RobotStatus, force), force, thousandth);
    if (zero_force.is_array()) run_on<float>(status, offsetof(RobotStatus, zero_force), zero_force, thousandth);
    integer(reply, sensor, "coordinate", status->coordinate);
}

}  // namespace
}  // namespace zk

using namespace zk;

ZK_API int get_arm_status_from_string(const char* text) {
    static constexpr const char* kTexts[] = {"idle",
                                             "move_L",
                                             "move_J",
                                             "move_C",
                                             "move_S",
                                             "move_through_joint",
                                             "move_through_pose",
                                             "move_through_force_pose",
                                             "move_through_current",
                                             "stop",
                                             "slow_stop",
                                             "pause",
                                             "current_drag",
                                             "sensor_drag",
                                             "tech_demonstration"};
    for (size_t i = 0; text && i < std::size(kTexts); ++i) {
        if (std::strcmp(text, kTexts[i]) == 0) return static_cast<int>(i);
    }
    return 0;
}

int zk::parse_datagram(const char* text, RobotStatus* status, double* time) {
    Reply reply(text);
    if (const Item sent = reply.find("time"); time && sent.is_number()) *time = sent.number();
    hand(reply, reply.find("hand"), status);
    if (reply.good()) aloha(reply, reply.find("aloha_state"), status);
    if (const Item doing = reply.find("arm_current_status"); doing && reply.require(doing.is_text(), ZK_WRONG_TYPE)) {
        status->arm_current_status = get_arm_status_from_string(doing.text());
    }
    lift(reply, reply.find("lift_state"), status);
    expansion(reply, reply.find("expand_state"), status);
    joint_status(reply, status);
    waypoint(reply, status);
    error_words(reply, status);
    forces(reply, reply.find("six_force_sensor"), ZK_WRONG_TYPE, status);
    one_axis_forces(reply, reply.good() ? reply.find("one_force_sensor") : Item(), status);
    return reply.status();
}

ZK_API int Parser_Realtime_Arm_Joint_State(const char* text, RobotStatus* status) {
    return parse_datagram(text, status, nullptr);
}
