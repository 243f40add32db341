#pragma once

#include <cstddef>
#include <string>

#include "json.h"

namespace sim {

class Controller;

// What the real-time push sends, how often and where to.
struct PushSettings {
    int cycle = 1;  // in units of 5 ms
    bool enable = true;
    int port = 0;
    int force_coordinate = 0;
    std::string ip = "127.0.0.1";

    // Which of the custom parts go along.
    bool joint_speed = false;
    bool lift_state = false;
    bool expand_state = false;
    bool hand = false;
    bool arm_current_status = true;
    bool aloha_state = false;
};

// As much as a client reads of a datagram.
constexpr size_t kMaxDatagram = 1024;

// The state of the arm at this moment, as one datagram.
std::string push_datagram(const Controller& controller);

}  // namespace sim
