#include "push/push_sender.h"

#include <asio/buffer.hpp>
#include <asio/ip/address_v4.hpp>

namespace sim {

using asio::ip::udp;

PushSender::PushSender(asio::io_context& io, const Push& push, const std::string& address, const Faults& faults)
    : push_(push),
      faults_(faults),
      socket_(io, udp::endpoint(asio::ip::make_address_v4(address), 0)),
      unbound_(io, udp::endpoint(udp::v4(), 0)),
      disturbance_(faults.seed) {
    socket_.non_blocking(true);
    unbound_.non_blocking(true);
}

void PushSender::step() {
    if (!push_.due()) return;
    for (Sending& sending : disturbance_.sendings(push_.datagram(), faults_.wire.push)) {
        if (sending.delay.count() == 0) {
            send(sending.text);
        } else {
            send_later(std::move(sending.text), sending.delay);
        }
    }
}

// A missing listener and a full buffer lose a datagram, as a network does: neither is an error.
void PushSender::send(const std::string& datagram) {
    asio::error_code ignored;
    const auto address = asio::ip::make_address_v4(push_.settings.ip, ignored);
    const bool leaves = !address.is_loopback() && socket_.local_endpoint(ignored).address().is_loopback();
    const auto port = static_cast<asio::ip::port_type>(push_.settings.port);
    (leaves ? unbound_ : socket_).send_to(asio::buffer(datagram), udp::endpoint(address, port), 0, ignored);
}

void PushSender::send_later(std::string datagram, std::chrono::milliseconds delay) {
    const auto timer = std::make_shared<asio::steady_timer>(socket_.get_executor(), delay);
    timer->async_wait(
        [this, timer, datagram = std::move(datagram), alive = std::weak_ptr(alive_)](const asio::error_code& error) {
            if (!error && !alive.expired()) send(datagram);
        });
}

int free_udp_port(asio::io_context& io) { return udp::socket(io, udp::endpoint(udp::v4(), 0)).local_endpoint().port(); }

}  // namespace sim
