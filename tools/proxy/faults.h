// Faults that the proxy injects, by the names that the simulated controller has for them.
#pragma once

#include <functional>
#include <set>
#include <string>

#include "proxy/client.h"
#include "wire/disturbance.h"

namespace tool {

struct FaultDesk : sim::DisturbedWire {
    std::set<std::string> silent_on, refuse_on;
    std::function<void(int milliseconds)> refuse_clients;
    std::function<void(const Client& spared, bool reset)> disconnect_others;

    // "drop=10,delay_ms=50", and commands, as "movej,movel". Throws Failure.
    void set(const std::string& list, const std::string& silent, const std::string& refused);
    // Whether the request was for the proxy itself, zk_sim_fault or zk_sim_disconnect: it is answered then.
    bool serve(Client& client, const Request& request);

 private:
    void set(const Json& request);
};

}  // namespace tool
