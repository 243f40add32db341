#include "wire/server.h"

#include <asio/ip/address_v4.hpp>

#include "wire/note.h"
#include "wire/session.h"

namespace sim {

using asio::ip::tcp;

Server::Server(asio::io_context& io, const Dispatcher& dispatcher, const std::string& address, int port)
    : dispatcher_(dispatcher),
      acceptor_(io, tcp::endpoint(asio::ip::make_address_v4(address), static_cast<asio::ip::port_type>(port))),
      retry_(io) {
    accept();
}

void Server::accept() {
    acceptor_.async_accept([this](const asio::error_code& error, tcp::socket socket) {
        if (error == asio::error::operation_aborted) return;
        if (!error) {
            std::make_shared<Session>(std::move(socket), dispatcher_)->start();
            accept();
            return;
        }
        // Most likely out of descriptors, until a client disconnects.
        note("cannot accept a client: " + error.message());
        retry_.expires_after(std::chrono::milliseconds(100));
        retry_.async_wait([this](const asio::error_code& stopped) {
            if (!stopped) accept();
        });
    });
}

}  // namespace sim
