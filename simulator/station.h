#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <memory>
#include <optional>
#include <string>

#include "options.h"
#include "state_file.h"
#include "world/scenario.h"

namespace sim {

// One arm: a controller with its server, push and clock.
class Station {
 public:
    // Throws std::exception when the options contradict each other, or the port is in use.
    Station(asio::io_context& io, Options options);
    ~Station();
    Station(const Station&) = delete;
    Station& operator=(const Station&) = delete;

    // "model=ZK65-B port=40123 push_port=40124"
    std::string description() const;
    const std::string& address() const { return options_.listen; }

    // Writes the state to its file. Throws std::runtime_error when that fails.
    void write_state();

 private:
    struct Running;

    void start(Scenario::Progress progress);
    bool saved();
    void save();
    void save_from_time_to_time();
    void restart(int pause_ms);

    asio::io_context& io_;
    Options options_;  // with the ports in use
    std::optional<StateFile> state_;
    bool state_written_ = true;
    Json kept_ = Json::object();
    std::unique_ptr<Running> running_;
    asio::steady_timer pause_, saving_;
};

}  // namespace sim
