#include "serve.h"

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <csignal>
#include <iostream>

#include "clock.h"
#include "controller.h"
#include "push/push_sender.h"
#include "wire/server.h"

namespace sim {

void serve(Options options) {
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
}

}  // namespace sim
