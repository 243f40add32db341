// The simulated controller in this process, with one client on a socket pair. It runs only in the calls made to it.
#pragma once

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <asio/io_context.hpp>
#include <cerrno>
#include <csignal>
#include <memory>
#include <string_view>

#include "input.h"
#include "simulator/controller.h"
#include "simulator/wire/note.h"
#include "simulator/wire/session.h"

namespace zk::fuzz {

class Simulated {
 public:
    explicit Simulated(std::uint8_t model)
        : controller_(options(model)), seven_joints_(options(model).model.joint_count() == 7) {
        connect();
    }
    ~Simulated() { leave(); }
    Simulated(const Simulated&) = delete;
    Simulated& operator=(const Simulated&) = delete;

    // A new client, which takes the place of the one before.
    void connect() {
        leave();
        int ends[2];
        expect(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends) == 0, "a socket pair opens");
        client_ = ends[0];
        asio::ip::tcp::socket socket(io_);
        socket.assign(asio::ip::tcp::v4(), ends[1]);
        std::make_shared<sim::Session>(std::move(socket), controller_.dispatcher())->start();
    }
    void leave() {
        if (client_ < 0) return;
        run();
        close(client_);
        client_ = -1;
        run();
    }

    // Gives up when the controller has left or reads no more.
    void write(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t written = send(client_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
            const std::size_t before = replies_.size();
            run();
            if (written < 0 && (errno != EAGAIN || replies_.size() == before)) return;
        }
    }
    // What it has sent since the last call.
    std::string replies() {
        run();
        return std::exchange(replies_, {});
    }
    void step() { controller_.step(); }
    bool has_seven_joints() const { return seven_joints_; }

 private:
    static sim::Options options(std::uint8_t model) {
        static const std::vector<sim::RobotModel> models = [] {
            sim::silence_notes();
            std::signal(SIGPIPE, SIG_IGN);
            std::vector<sim::RobotModel> all;
            for (const std::string& name : sim::model_names()) all.push_back(sim::make_model(name));
            return all;
        }();
        sim::Options options;
        options.model = models[model % models.size()];
        return options;
    }
    void run() {
        for (bool more = true; more;) {
            io_.restart();
            more = io_.poll() > 0;
            char bytes[4096];
            for (ssize_t got; (got = recv(client_, bytes, sizeof bytes, 0)) > 0; more = true) {
                replies_.append(bytes, static_cast<std::size_t>(got));
            }
        }
    }

    asio::io_context io_{1};
    sim::Controller controller_;
    bool seven_joints_;
    int client_ = -1;
    std::string replies_;
};

}  // namespace zk::fuzz
