// A peer that vanished without a word, with its host or its cable, is noticed within half a minute.
#pragma once

#include <netinet/tcp.h>
#include <asio/ip/tcp.hpp>

namespace tool {

inline void keep_alive(asio::ip::tcp::socket& socket) {
    asio::error_code ignored;
    socket.set_option(asio::socket_base::keep_alive(true), ignored);
    const auto set = [&](int option, int value) {
        (void)::setsockopt(socket.native_handle(), IPPROTO_TCP, option, &value, sizeof value);
    };
    set(TCP_KEEPIDLE, 10);
    set(TCP_KEEPINTVL, 5);
    set(TCP_KEEPCNT, 3);
    set(TCP_USER_TIMEOUT, 30'000);
}

}  // namespace tool
