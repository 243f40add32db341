#include "wire/server.h"

#include <asio/ip/address_v4.hpp>

#include "wire/note.h"
#include "wire/session.h"

namespace sim {

using asio::ip::tcp;

namespace {

constexpr int kRetryMs = 100;

tcp::acceptor listener(asio::io_context& io, const std::string& address, int port) {
    try {
        return {io, tcp::endpoint(asio::ip::make_address_v4(address), static_cast<asio::ip::port_type>(port))};
    } catch (const asio::system_error& error) {
        throw asio::system_error(error.code(), "cannot listen on " + address + ":" + std::to_string(port));
    }
}

}  // namespace

Server::Server(asio::io_context& io, const Dispatcher& dispatcher, const std::string& address, int port)
    : dispatcher_(dispatcher),
      acceptor_(listener(io, address, port)),
      endpoint_(acceptor_.local_endpoint()),
      retry_(io) {
    accept();
}

// A client that sees its connection closed finds no listener.
Server::~Server() {
    asio::error_code ignored;
    acceptor_.close(ignored);
    disconnect_others(nullptr, false);
}

void Server::accept() {
    if (!acceptor_.is_open()) return;
    acceptor_.async_accept([this, alive = std::weak_ptr(alive_)](const asio::error_code& error, tcp::socket socket) {
        if (error == asio::error::operation_aborted || alive.expired()) return;
        if (!error) {
            admit(std::move(socket));
            accept();
            return;
        }
        // Most likely out of descriptors, until a client disconnects.
        note("cannot accept a client: " + error.message());
        accept_after(kRetryMs);
    });
}

void Server::accept_after(int milliseconds) {
    retry_.expires_after(std::chrono::milliseconds(milliseconds));
    retry_.async_wait([this, alive = std::weak_ptr(alive_)](const asio::error_code& stopped) {
        if (stopped || alive.expired()) return;
        if (!acceptor_.is_open()) listen_again();
        acceptor_.is_open() ? accept() : accept_after(kRetryMs);
    });
}

void Server::refuse(int milliseconds) {
    asio::error_code ignored;
    acceptor_.close(ignored);
    accept_after(milliseconds);
}

void Server::listen_again() {
    try {
        acceptor_ = tcp::acceptor(acceptor_.get_executor(), endpoint_);
    } catch (const asio::system_error& error) {
        note(std::string("cannot listen: ") + error.what());
    }
}

void Server::admit(tcp::socket socket) {
    std::erase_if(sessions_, [](const auto& session) { return session.expired(); });
    if (sessions_.size() >= static_cast<size_t>(dispatcher_.faults.wire.max_clients)) return;
    const auto session = std::make_shared<Session>(std::move(socket), dispatcher_);
    sessions_.push_back(session);
    session->start();
}

void Server::disconnect_others(const Client* spared, bool reset) {
    for (const auto& known : sessions_) {
        const auto session = known.lock();
        if (session && session.get() != spared) session->drop(reset);
    }
}

}  // namespace sim
