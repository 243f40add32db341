#pragma once

#include <cstddef>
#include <string>

#include "wire/json.h"

namespace sim {

class Arm;
class DragTeach;
class ForceControl;
class Tool;
struct Devices;
struct SimulatedTime;

// The settings of the real-time push: content, cycle and destination.
struct PushSettings {
    static constexpr int kCycleMs = 5;

    int cycle = 1;  // in units of kCycleMs
    bool enable = true;
    int port = 0;
    int force_coordinate = 0;
    std::string ip = "127.0.0.1";

    // The optional parts to send.
    bool joint_speed = false;
    bool lift_state = false;
    bool expand_state = false;
    bool hand = false;
    bool arm_current_status = true;
    bool aloha_state = false;
};

// The bytes that a client reads of a datagram.
constexpr size_t kMaxDatagram = 1024;

// The real-time push of the state of these parts.
class Push {
 public:
    struct Parts {
        const SimulatedTime& time;
        const Arm& arm;
        const Tool& tool;
        const DragTeach& drag;
        const ForceControl& force;
        const Devices& devices;
    };
    Push(const PushSettings& initial, const Parts& parts) : settings(initial), parts_(parts) {}

    // Whether a datagram is to be sent at this time.
    bool due() const;
    // The current state as one datagram.
    std::string datagram() const;

    PushSettings settings;

 private:
    void add_force(Json& message) const;
    void add_devices(Json& message) const;

    Parts parts_;
};

}  // namespace sim
