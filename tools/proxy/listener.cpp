#include "proxy/listener.h"

#include "wire/note.h"

namespace tool {

using asio::ip::tcp;

namespace {

tcp::acceptor listen(asio::io_context& io, const tcp::endpoint& at) {
    try {
        return {io, at};
    } catch (const asio::system_error& error) {
        throw Failure(kFailed, "cannot listen on " + at.address().to_string() + ":" + std::to_string(at.port()) + ": " +
                                   error.code().message());
    }
}

}  // namespace

Listener::Listener(asio::io_context& io, const tcp::endpoint& at, const sim::DisturbedWire& faults, Service& service)
    : faults_(faults), service_(service), acceptor_(listen(io, at)), at_(acceptor_.local_endpoint()), timer_(io) {
    faults.wire.refuse_ms > 0 ? refuse(faults.wire.refuse_ms) : accept();
}

void Listener::accept() {
    acceptor_.async_accept([this](const asio::error_code& error, tcp::socket socket) {
        if (error == asio::error::operation_aborted) return;
        if (error) {  // most likely out of descriptors, until a client disconnects
            sim::note("cannot accept a client: " + error.message());
            return accept_after(100);
        }
        admit(std::move(socket));
        if (acceptor_.is_open()) accept();
    });
}

void Listener::accept_after(int milliseconds) {
    timer_.expires_after(std::chrono::milliseconds(milliseconds));
    timer_.async_wait([this](const asio::error_code& stopped) {
        if (stopped) return;
        try {
            if (!acceptor_.is_open()) acceptor_ = tcp::acceptor(acceptor_.get_executor(), at_);
            accept();
        } catch (const asio::system_error& error) {
            sim::note(std::string("cannot listen: ") + error.what());
            accept_after(100);
        }
    });
}

void Listener::refuse(int milliseconds) {
    asio::error_code ignored;
    acceptor_.close(ignored);
    accept_after(milliseconds);
}

void Listener::admit(tcp::socket socket) {
    std::erase_if(clients_, [](const auto& client) { return client.expired(); });
    if (clients_.size() >= static_cast<std::size_t>(faults_.wire.max_clients)) return;
    const auto client = std::make_shared<Client>(std::move(socket), faults_, service_);
    clients_.push_back(client);
    client->start();
}

void Listener::disconnect_others(const Client& spared, bool reset) {
    for (const auto& known : clients_) {
        const auto client = known.lock();
        if (client && client.get() != &spared) client->drop(reset);
    }
}

}  // namespace tool
