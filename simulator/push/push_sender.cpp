#include "push/push_sender.h"

#include <asio/buffer.hpp>
#include <asio/ip/address_v4.hpp>

namespace sim {

using asio::ip::udp;

PushSender::PushSender(asio::io_context& io, const Push& push, const std::string& address)
    : push_(push),
      socket_(io, udp::endpoint(asio::ip::make_address_v4(address), 0)),
      unbound_(io, udp::endpoint(udp::v4(), 0)) {
    socket_.non_blocking(true);
    unbound_.non_blocking(true);
}

// A missing listener and a full buffer lose a datagram, as a network does: neither is an error.
void PushSender::step() {
    if (!push_.due()) return;
    asio::error_code ignored;
    const auto address = asio::ip::make_address_v4(push_.settings.ip, ignored);
    const bool leaves = !address.is_loopback() && socket_.local_endpoint(ignored).address().is_loopback();
    (leaves ? unbound_ : socket_)
        .send_to(asio::buffer(push_.datagram()),
                 udp::endpoint(address, static_cast<asio::ip::port_type>(push_.settings.port)), 0, ignored);
}

int free_udp_port(asio::io_context& io) { return udp::socket(io, udp::endpoint(udp::v4(), 0)).local_endpoint().port(); }

}  // namespace sim
