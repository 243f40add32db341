#include "serve.h"

#include <unistd.h>

#include <array>
#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/signal_set.hpp>
#include <csignal>
#include <iostream>
#include <memory>
#include <string>

#include "station.h"

namespace sim {
namespace {

// Whoever started the program holds the other end of its standard input, and has ended with it.
void stop_at_end(asio::io_context& io, asio::posix::stream_descriptor& input, std::array<char, 64>& buffer) {
    input.async_read_some(asio::buffer(buffer), [&](const asio::error_code& error, size_t) {
        error ? io.stop() : stop_at_end(io, input, buffer);
    });
}

}  // namespace

void serve(const std::vector<Options>& arms) {
    asio::io_context io(1);
    asio::signal_set signals(io, SIGINT, SIGTERM);
    signals.async_wait([&io](const asio::error_code&, int) { io.stop(); });
    asio::posix::stream_descriptor input(io);
    std::array<char, 64> dropped;
    if (wanted_by_any(arms, &Options::until_eof)) {
        input.assign(STDIN_FILENO);
        stop_at_end(io, input, dropped);
    }
    std::vector<std::unique_ptr<Station>> stations;
    std::string line = "zk_simulator";
    for (const Options& arm : arms) {
        stations.push_back(std::make_unique<Station>(io, arm));
        line += ' ' + stations.back()->description();
        if (arms.size() > 1) line += " address=" + stations.back()->address();
    }
    std::cout << line << std::endl;
    io.run();
    for (const auto& station : stations) station->write_state();  // the destructors save those after one that fails
}

}  // namespace sim
