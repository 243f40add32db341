#include "recording/messages.h"

#include <algorithm>
#include <numbers>

#include "recording/cdr.h"

namespace tool {
namespace {

// Types that others are made of, as the definitions of ROS 2's messages repeat them.
#define RULE "================================================================================\n"
#define TIME RULE "MSG: builtin_interfaces/Time\nint32 sec\nuint32 nanosec\n"
#define HEADER RULE "MSG: std_msgs/Header\nbuiltin_interfaces/Time stamp\nstring frame_id\n" TIME

constexpr std::int64_t kSecond = 1'000'000'000;

void put_time(CdrWriter& out, std::int64_t unix_ns) {
    out << static_cast<std::int32_t>(unix_ns / kSecond) << static_cast<std::uint32_t>(unix_ns % kSecond);
}

void put_header(CdrWriter& out, std::int64_t unix_ns) {
    put_time(out, unix_ns);
    out << std::string("base");
}

template <class Value>
std::vector<Value> first(const Value* values, int count) {
    return {values, values + count};
}

constexpr std::uint8_t kDebug = 10, kInfo = 20;  // levels of rcl_interfaces/Log

}  // namespace

const Topic kArmTopic{"/arm_state", "zk_msgs/msg/ArmState",
                      "std_msgs/Header header\nuint32 sequence\nint64 controller_ms\nfloat32[] position_deg\n"
                      "float32[] speed_deg_s\nfloat32[] current_a\nfloat32[] voltage_v\nfloat32[] temperature_c\n"
                      "uint16[] joint_error\nfloat32[3] tool_position_m\nfloat32[4] tool_quaternion_wxyz\n"
                      "float32[6] force\nuint16 arm_error\nuint16 system_error\n" HEADER};
const Topic kJointTopic{"/joint_states", "sensor_msgs/msg/JointState",
                        "std_msgs/Header header\nstring[] name\nfloat64[] position\nfloat64[] velocity\n"
                        "float64[] effort\n" HEADER};
const Topic kTransformTopic{
    "/tf", "tf2_msgs/msg/TFMessage",
    "geometry_msgs/TransformStamped[] transforms\n" RULE
    "MSG: geometry_msgs/TransformStamped\nstd_msgs/Header header\nstring child_frame_id\nTransform transform\n" RULE
    "MSG: geometry_msgs/Transform\nVector3 translation\nQuaternion rotation\n" RULE
    "MSG: geometry_msgs/Vector3\nfloat64 x\nfloat64 y\nfloat64 z\n" RULE
    "MSG: geometry_msgs/Quaternion\nfloat64 x\nfloat64 y\nfloat64 z\nfloat64 w\n" HEADER};
const Topic kLogTopic{"/rosout", "rcl_interfaces/msg/Log",
                      "builtin_interfaces/Time stamp\nuint8 level\nstring name\nstring msg\nstring file\n"
                      "string function\nuint32 line\n" TIME};
const Topic kPushTopic{"/push", "std_msgs/msg/String", "string data\n"};

ArmRecord ArmRecord::from(const ZK_State& state, std::int64_t unix_ns) {
    const RobotStatus& of = state.status;
    ArmRecord record{unix_ns,
                     state.sequence,
                     state.controller_ms,
                     first(of.joint_position, state.joint_count),
                     first(of.joint_speed, state.joint_count),
                     first(of.joint_current, state.joint_count),
                     first(of.joint_voltage, state.joint_count),
                     first(of.joint_temperature, state.joint_count),
                     first(of.joint_err_code, state.joint_count)};
    std::copy_n(of.position, 3, record.tool_position_m.begin());
    std::copy_n(of.quat, 4, record.tool_quaternion_wxyz.begin());
    std::copy_n(of.force, 6, record.force.begin());
    record.arm_error = of.arm_err;
    record.system_error = of.sys_err;
    return record;
}

std::string arm_message(const ArmRecord& record) {
    CdrWriter out;
    put_header(out, record.unix_ns);
    out << record.sequence << record.controller_ms << record.position_deg << record.speed_deg_s << record.current_a
        << record.voltage_v << record.temperature_c << record.joint_error << record.tool_position_m
        << record.tool_quaternion_wxyz << record.force << record.arm_error << record.system_error;
    return out.bytes();
}

ArmRecord read_arm_message(const McapMessage& message) {
    ArmRecord record;
    CdrReader in(message.bytes);
    std::int32_t seconds = 0;
    std::uint32_t nanoseconds = 0;
    std::string frame;
    in >> seconds >> nanoseconds >> frame >> record.sequence >> record.controller_ms >> record.position_deg >>
        record.speed_deg_s >> record.current_a >> record.voltage_v >> record.temperature_c >> record.joint_error >>
        record.tool_position_m >> record.tool_quaternion_wxyz >> record.force >> record.arm_error >>
        record.system_error;
    record.unix_ns = seconds * kSecond + nanoseconds;
    return record;
}

std::string joint_message(const ArmRecord& record) {
    constexpr double kDegree = std::numbers::pi / 180;
    std::vector<std::string> names;
    std::vector<double> position, speed;
    for (std::size_t i = 0; i < record.position_deg.size(); ++i) {
        names.push_back("joint" + std::to_string(i + 1));
        position.push_back(record.position_deg[i] * kDegree);
        speed.push_back(record.speed_deg_s[i] * kDegree);
    }
    // Controllers leave the speeds out unless they are configured to send them.
    if (std::all_of(speed.begin(), speed.end(), [](double value) { return value == 0; })) speed.clear();
    CdrWriter out;
    put_header(out, record.unix_ns);
    out << names << position << speed << std::vector<double>();
    return out.bytes();
}

std::string transform_message(const ArmRecord& record) {
    CdrWriter out;
    out << std::uint32_t{1};
    put_header(out, record.unix_ns);
    out << std::string("tool");
    for (const float value : record.tool_position_m) out << static_cast<double>(value);
    for (const std::size_t part : {1, 2, 3, 0}) out << static_cast<double>(record.tool_quaternion_wxyz[part]);
    return out.bytes();
}

std::string log_message(const LogRecord& record) {
    CdrWriter out;
    put_time(out, record.unix_ns);
    const std::string name = !record.is_frame ? "connection" : record.client.empty() ? "wire" : "wire " + record.client;
    out << (record.is_frame ? kDebug : kInfo) << name << record.text << std::string() << std::string()
        << std::uint32_t{0};
    return out.bytes();
}

LogRecord read_log_message(const McapMessage& message) {
    CdrReader in(message.bytes);
    std::int32_t seconds = 0;
    std::uint32_t nanoseconds = 0;
    std::uint8_t level = 0;
    std::string name, text;
    in >> seconds >> nanoseconds >> level >> name >> text;
    const std::string wire = "wire ";
    return {seconds * kSecond + nanoseconds, level == kDebug, text,
            name.starts_with(wire) ? name.substr(wire.size()) : std::string()};
}

PushRecord read_push_message(const McapMessage& message) {
    CdrReader in(message.bytes);
    if (message.unix_ns < 0) throw std::out_of_range("a time before 1970");
    PushRecord record{message.unix_ns, {}};
    in >> record.text;
    return record;
}

Topics::Topics(McapWriter& file)
    : file_(file),
      arm_(file.add(kArmTopic)),
      joint_(file.add(kJointTopic)),
      transform_(file.add(kTransformTopic)),
      log_(file.add(kLogTopic)) {}

void Topics::add(const ArmRecord& record) {
    file_.write(arm_, record.unix_ns, arm_message(record));
    file_.write(joint_, record.unix_ns, joint_message(record));
    file_.write(transform_, record.unix_ns, transform_message(record));
}

void Topics::add(const LogRecord& record) { file_.write(log_, record.unix_ns, log_message(record)); }

void Topics::add(const PushRecord& record) {
    if (push_ == 0) push_ = file_.add(kPushTopic);
    CdrWriter out;
    out << record.text;
    file_.write(push_, record.unix_ns, out.bytes());
}

}  // namespace tool
