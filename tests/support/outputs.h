// What a call wrote through its pointers, as text. What it did not write is left out, or is "-" between what it wrote.
#pragma once

#include <charconv>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <string>
#include <type_traits>

#include "zk/arm_state.h"
#include "zk/frames.h"
#include "zk/gripper_and_hand.h"
#include "zk/realtime.h"
#include "zk/safety_geometry.h"
#include "zk/system.h"

namespace zk::test {

constexpr unsigned char kUnwritten = 0xA5;

template <class T>
bool is_unwritten(const T& value) {
    unsigned char untouched[sizeof(T)];
    std::memset(untouched, kUnwritten, sizeof untouched);
    return std::memcmp(&value, untouched, sizeof(T)) == 0;
}

template <class T>
std::enable_if_t<std::is_arithmetic_v<T>, std::string> text_of(T value) {
    if (is_unwritten(value)) return "-";
    char digits[40];
    if constexpr (std::is_floating_point_v<T>) {
        return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
    } else {
        return {digits, std::to_chars(digits, digits + sizeof digits, static_cast<long long>(value)).ptr};
    }
}

template <class T, size_t size>
std::string text_of(const T (&values)[size]);

template <size_t size>
std::string text_of(const char (&text)[size]) {
    return is_unwritten(text) ? "-" : std::string(text, strnlen(text, size));
}

inline std::string text_of(const FrameName& name) { return text_of(name.text); }

// Position and Euler angles; no reply holds a quaternion.
inline std::string text_of(const Pose& pose) {
    const auto& [x, y, z] = pose.position;
    const auto& [rx, ry, rz] = pose.euler;
    return text_of({x, y, z}) + ", " + text_of({rx, ry, rz}) + (is_unwritten(pose.quaternion) ? "" : ", quaternion!");
}

// Ten bytes of name, of which the last need not be ended.
inline std::string text_of(const FrameRec& frame) {
    return std::string(frame.frame_name, strnlen(frame.frame_name, 10)) + ", " + text_of(frame.pose) + ", " +
           text_of({frame.payload, frame.x, frame.y, frame.z});
}

inline std::string text_of(const ArmAllState& all) {
    return text_of(all.temperature) + ", " + text_of(all.voltage) + ", " + text_of(all.current) + ", " +
           text_of(all.en_state) + ", " + text_of(all.err_flag) + ", " + text_of(all.sys_err);
}

inline std::string text_of(const ArmSoftwareInfo& info) {
    return text_of(info.product_version) + ", " + text_of(info.algorithm_version) + ", " +
           text_of(info.ctrl_build_time) + ", " + text_of(info.ctrl_version) + ", " +
           text_of(info.dynamic_model_version) + ", " + text_of(info.plan_build_time) + ", " +
           text_of(info.plan_version);
}

inline std::string text_of(const WifiNet& net) {
    return text_of(net.channel) + ", " + text_of(net.ip) + ", " + text_of(net.mac) + ", " + text_of(net.mask) + ", " +
           text_of(net.mode) + ", " + text_of(net.password) + ", " + text_of(net.ssid);
}

inline std::string text_of(const RealtimePushConfig& push) {
    return text_of(push.cycle) + ", " +
           (is_unwritten(push.enable) ? "-"
            : push.enable             ? "on"
                                      : "off") +
           ", " + text_of(push.port) + ", " + text_of(push.force_coordinate) + ", " + text_of(push.ip) + ", " +
           text_of({push.joint_speed, push.lift_state, push.expand_state, push.hand, push.arm_current_status,
                    push.aloha_state});
}

inline std::string text_of(const FenceName& name) { return text_of(name.text); }

// Form, name in quotes, and the lengths that are not zero: those of the forms one after the other.
inline std::string text_of(const FenceConfig& fence) {
    if (is_unwritten(fence)) return "-";
    std::string text = text_of(fence.form) + " '" + text_of(fence.form_name) + "'";
    float lengths[(sizeof fence - offsetof(FenceConfig, x_min_limit)) / sizeof(float)];
    std::memcpy(lengths, &fence.x_min_limit, sizeof lengths);
    for (size_t i = 0; i < std::size(lengths); ++i) {
        if (lengths[i] != 0) text += " " + std::to_string(i) + ":" + text_of(lengths[i]);
    }
    return text;
}

inline std::string text_of(const ToolEnvelope& envelope) {
    if (is_unwritten(envelope)) return "-";
    std::string text = text_of(envelope.tool_name) + " " + text_of(envelope.count);
    for (int i = 0; i < envelope.count; ++i) {
        const auto& [name, radius, x, y, z] = envelope.spheres[i];
        text += ", " + text_of(name) + " " + text_of({radius, x, y, z});
    }
    return text;
}

inline std::string text_of(const GripperState& state) {
    return text_of({state.enable_state, state.status}) + ", " + text_of(state.error) + " " + text_of(state.mode) + " " +
           text_of(state.current_force) + " " + text_of(state.temperature) + " " + text_of(state.actpos);
}

// The elements up to the last that was written.
template <class T, size_t size>
std::string text_of(const T (&values)[size]) {
    size_t written = size;
    while (written > 0 && is_unwritten(values[written - 1])) --written;
    std::string text;
    for (size_t i = 0; i < written; ++i) text += (i ? " " : "") + text_of(values[i]);
    return text;
}

// Room for what a pointer of a command may be given: a value, an array of them, a text.
template <class T>
class Output {
 public:
    Output() { std::memset(values_, kUnwritten, sizeof values_); }
    T* address() { return values_; }
    std::string text() const { return text_of(values_); }

 private:
    T values_[std::is_same_v<T, char> ? 64 : 12];
};

// All outputs; empty if none was written.
std::string joined(std::initializer_list<std::string> outputs);

// Calls the function with an output for each of its last parameters. `text` is that of what it wrote.
template <class... Outs, class Function, class... Ins>
int with_outputs(std::string& text, Function function, Ins... ins) {
    const auto call = [&](Output<Outs>... output) {
        const int status = function(ins..., output.address()...);
        text = joined({output.text()...});
        return status;
    };
    return call(Output<Outs>()...);
}

}  // namespace zk::test
