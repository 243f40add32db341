#include "station.h"

#include <asio/post.hpp>
#include <stdexcept>

#include "clock.h"
#include "push/push_sender.h"
#include "wire/note.h"
#include "wire/server.h"

namespace sim {

struct Station::Running {
    Running(asio::io_context& io, const Options& options, const Json& kept, Scenario::Progress progress)
        : controller(options, kept, std::move(progress)),
          server(io, controller.dispatcher(), options.listen, options.port),
          push(io, controller.push(), options.listen, controller.dispatcher().faults),
          clock(io, controller, [this] { push.step(); }) {
        controller.dispatcher().disconnect_others = [this](const Client& spared, bool reset) {
            server.disconnect_others(&spared, reset);
        };
        controller.dispatcher().refuse_clients = [this](int milliseconds) { server.refuse(milliseconds); };
        if (options.faults.wire.refuse_ms > 0) server.refuse(options.faults.wire.refuse_ms);
    }

    Controller controller;
    Server server;
    PushSender push;
    Clock clock;
};

Station::Station(asio::io_context& io, Options options)
    : io_(io), options_(std::move(options)), pause_(io), saving_(io) {
    if (!options_.state.empty()) kept_ = state_.emplace(options_.state, options_.model.name).sections();
    if (options_.push.port == 0) options_.push.port = free_udp_port(io);
    start({});
    options_.port = running_->server.port();
    if (!state_) return;
    kept_ = running_->controller.memory().saved();
    if (!state_->save(kept_)) throw std::invalid_argument("--state: '" + options_.state + "' cannot be written");
    save_from_time_to_time();
}

Station::~Station() { saved(); }

bool Station::saved() {
    if (!state_) return true;
    if (running_) kept_ = running_->controller.memory().saved();
    return state_->save(kept_);
}

void Station::save() {
    const bool written = saved();
    if (!written && state_written_) note("the state cannot be written to " + options_.state);
    state_written_ = written;
}

void Station::write_state() {
    if (!saved()) throw std::runtime_error("the state cannot be written to " + options_.state + ", it is lost");
}

void Station::save_from_time_to_time() {
    saving_.expires_after(std::chrono::milliseconds(200));
    saving_.async_wait([this](const asio::error_code& error) {
        if (error) return;
        save();
        save_from_time_to_time();
    });
}

std::string Station::description() const {
    return "model=" + options_.model.name + " port=" + std::to_string(options_.port) +
           " push_port=" + std::to_string(options_.push.port);
}

void Station::start(Scenario::Progress progress) {
    running_ = std::make_unique<Running>(io_, options_, kept_, std::move(progress));
    running_->controller.dispatcher().restart = [this](int pause_ms) { restart(pause_ms); };
}

// In a handler of its own: a request of the controller asks for it.
void Station::restart(int pause_ms) {
    asio::post(io_, [this, pause_ms] {
        if (!running_) return;  // asked for twice
        note("restart");
        save();
        Scenario::Progress progress = running_->controller.progress();
        running_.reset();
        pause_.expires_after(std::chrono::milliseconds(pause_ms));
        pause_.async_wait([this, progress = std::move(progress)](const asio::error_code& error) {
            if (!error) start(progress);
        });
    });
}

}  // namespace sim
