// A controller without an arm: it speaks the protocol of the real one and moves its joints in simulated time.

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <csignal>
#include <iostream>

#include "clock.h"
#include "controller.h"
#include "push/push_sender.h"
#include "wire/note.h"
#include "wire/server.h"

namespace sim {
namespace {

int run(Options options) {
    asio::io_context io(1);
    asio::signal_set signals(io, SIGINT, SIGTERM);
    signals.async_wait([&io](const asio::error_code&, int) { io.stop(); });
    if (options.push.port == 0) options.push.port = free_udp_port(io);

    Controller controller(options);
    Server server(io, controller.dispatcher(), options.listen, options.port);
    PushSender push(io, controller.push(), options.listen);
    Clock clock(io, std::chrono::milliseconds(Controller::kStepMs), [&] {
        controller.step();
        push.step();
    });
    std::cout << "zk_simulator model=" << options.model.name << " port=" << server.port()
              << " push_port=" << options.push.port << std::endl;
    io.run();
    return 0;
}

int run(int argc, char** argv) {
    constexpr int kUsageError = 2;
    try {
        const Options options = parse_options(argc, argv);
        if (options.help) {
            std::cout << usage();
            return 0;
        }
        if (options.commands) {
            for (const std::string& name : Controller(options).dispatcher().commands.names()) std::cout << name << '\n';
            return 0;
        }
        if (options.quiet) silence_notes();
        return run(options);
    } catch (const std::invalid_argument& error) {
        std::cerr << "zk_simulator: " << error.what() << "\nTry --help.\n";
        return kUsageError;
    } catch (const std::exception& error) {
        std::cerr << "zk_simulator: " << error.what() << "\n";
        return 1;
    }
}

}  // namespace
}  // namespace sim

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);  // the reader of standard error may close it
    return sim::run(argc, argv);
}
