#include "proxy/push_share.h"

#include <algorithm>
#include <asio/buffer.hpp>
#include <asio/steady_timer.hpp>
#include <cmath>

#include "wire/note.h"

namespace tool {

using asio::ip::udp;

namespace {

constexpr int kUsualPort = 8089;

template <class Value>
Value value_of(const Json& settings, const char* key, Value otherwise) {
    const auto found = settings.find(key);
    try {
        return found == settings.end() ? otherwise : found->get<Value>();
    } catch (const Json::exception&) {
        return otherwise;
    }
}

}  // namespace

PushShare::PushShare(asio::io_context& io, const asio::ip::address& listen, const sim::DisturbedWire& faults)
    : io_(io), out_(io, udp::endpoint(listen, 0)), disturbance_(faults.seed), faults_(faults) {
    out_.non_blocking(true);
}

void PushShare::configure(const Json& settings) { settings_ = settings; }

void PushShare::receive(const asio::ip::address& controller, int port,
                        std::function<void(const std::string&)> on_datagram) {
    in_.emplace(io_, udp::endpoint(udp::v4(), static_cast<asio::ip::port_type>(port)));
    controller_ = controller;
    on_datagram_ = std::move(on_datagram);
    read();
}

void PushShare::read() {
    in_->async_receive_from(asio::buffer(buffer_), sender_, [this](const asio::error_code& error, std::size_t size) {
        if (error == asio::error::operation_aborted) return;
        if (!error && sender_.address() == controller_) {
            const std::string datagram(buffer_.data(), size);
            on_datagram_(datagram);
            send(datagram);
        }
        read();
    });
}

// One that nothing else on this host has, so that several programs get the states.
int PushShare::free_port(const Client& client) const {
    const auto is_given = [&](int port) {
        return std::any_of(listeners_.begin(), listeners_.end(),
                           [&](const auto& one) { return one.second.at.port() == port; });
    };
    int port = value_of(*settings_, "port", kUsualPort);
    if (!client.is_on_this_host()) {
        while (is_given(port)) ++port;
        return port;
    }
    do port = udp::socket(io_, udp::endpoint(udp::v4(), 0)).local_endpoint().port();
    while (is_given(port));
    return port;
}

PushShare::Listener& PushShare::listener_of(const Client& client) {
    if (const auto known = listeners_.find(&client); known != listeners_.end()) return known->second;
    const udp::endpoint at(client.address(), static_cast<asio::ip::port_type>(free_port(client)));
    return listeners_[&client] = {at, value_of(*settings_, "enable", false), value_of(*settings_, "cycle", 1)};
}

std::string PushShare::answer(const std::shared_ptr<Client>& client, const Request& request) {
    if (!settings_ || settings_->empty()) return {};
    if (request.command == "set_realtime_push")
        return Json{{"command", "set_realtime_push"}, {"state", set(*client, request.body)}}.dump();
    const Listener& listener = listener_of(*client);
    Json reply = *settings_;
    reply["cycle"] = listener.cycle;
    reply["enable"] = listener.enable;
    reply["port"] = listener.at.port();
    reply["ip"] = listener.at.address().to_string();
    return reply.dump();
}

// Another host than the client's own is refused: the proxy aims at nobody else.
bool PushShare::set(const Client& client, const Json& wanted) {
    Listener changed = listener_of(client);
    changed.enable = value_of(wanted, "enable", changed.enable);
    changed.cycle = value_of(wanted, "cycle", changed.cycle);
    const int port = value_of(wanted, "port", int{changed.at.port()});
    if (changed.cycle < 1 || port < 1 || port > 65535) return false;
    changed.at.port(static_cast<asio::ip::port_type>(port));
    asio::error_code none;
    const std::string ip = value_of(wanted, "ip", changed.at.address().to_string());
    const auto address = asio::ip::make_address_v4(ip, none);
    if (none || (asio::ip::address(address) != client.address() &&
                 !(address.is_loopback() && client.address().is_loopback()))) {
        sim::note(client.name() + ": asks for states at " + ip + ", which is not its own address: refused");
        return false;
    }
    changed.at.address(address);
    listeners_[&client] = changed;
    return true;
}

void PushShare::forget(const Client& client) { listeners_.erase(&client); }

void PushShare::send(const std::string& datagram) {
    const double cycle = std::max(1, settings_ ? value_of(*settings_, "cycle", 1) : 1);
    for (auto& [client, listener] : listeners_) {
        if (!listener.enable || ++listener.passed < std::lround(listener.cycle / cycle)) continue;
        listener.passed = 0;
        for (const sim::Sending& sending : disturbance_.sendings(datagram, faults_.wire.push)) {
            if (sending.delay.count() == 0) {
                send_to(listener.at, sending.text);
                continue;
            }
            const auto timer = std::make_shared<asio::steady_timer>(io_, sending.delay);
            timer->async_wait([this, timer, at = listener.at, text = sending.text](const asio::error_code& error) {
                if (!error) send_to(at, text);
            });
        }
    }
}

// A missing listener and a full buffer lose a datagram, as a network does.
void PushShare::send_to(const udp::endpoint& at, const std::string& datagram) {
    asio::error_code ignored;
    out_.send_to(asio::buffer(datagram), at, 0, ignored);
}

}  // namespace tool
