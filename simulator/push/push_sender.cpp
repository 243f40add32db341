#include "push/push_sender.h"

#include <asio/buffer.hpp>
#include <asio/ip/address_v4.hpp>

namespace sim {

using asio::ip::udp;

PushSender::PushSender(asio::io_context& io, const Controller& controller)
    : controller_(controller), socket_(io, udp::endpoint(udp::v4(), 0)) {
    socket_.non_blocking(true);
}

// A missing listener and a full buffer lose a datagram, as a network does: neither is an error.
void PushSender::step() {
    const PushSettings& push = controller_.push;
    if (!push.enable || controller_.milliseconds() % (push.cycle * Controller::kStepMs) != 0) return;
    asio::error_code ignored;
    const auto address = asio::ip::make_address_v4(push.ip, ignored);
    socket_.send_to(asio::buffer(push_datagram(controller_)),
                    udp::endpoint(address, static_cast<asio::ip::port_type>(push.port)), 0, ignored);
}

int free_udp_port(asio::io_context& io) { return udp::socket(io, udp::endpoint(udp::v4(), 0)).local_endpoint().port(); }

}  // namespace sim
