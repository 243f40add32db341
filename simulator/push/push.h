#pragma once

#include <cstddef>
#include <string>

#include "wire/json.h"

namespace sim {

class Controller;

// The settings of the real-time push: content, cycle and destination.
struct PushSettings {
    int cycle = 1;  // in units of 5 ms
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

// The current state of the arm as one datagram.
std::string push_datagram(const Controller& controller);

}  // namespace sim
