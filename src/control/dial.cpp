#include "control/dial.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <future>
#include <memory>
#include <string>
#include <system_error>
#include <thread>

#include "connection/slots.h"
#include "zk/status.h"

namespace zk {
namespace {

constexpr int32_t kSliceMs = 10;

struct Lookup {
    int error = 0;         // of getaddrinfo
    int system_error = 0;  // errno with EAI_SYSTEM
    std::shared_ptr<addrinfo> list;
};

Lookup look_up(const std::string& host, const std::string& port, int flags) {
    addrinfo wanted{};
    wanted.ai_family = AF_UNSPEC;
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = AI_NUMERICSERV | flags;
    addrinfo* list = nullptr;
    Lookup found;
    found.error = getaddrinfo(host.c_str(), port.c_str(), &wanted, &list);
    found.system_error = errno;
    if (found.error == 0) found.list.reset(list, freeaddrinfo);
    return found;
}

// The resolver has no time limit, so it runs on a thread of its own, which may outlive the call.
int resolve(const std::string& host, const std::string& port, Attempt& attempt, Lookup& found) {
    found = look_up(host, port, AI_NUMERICHOST);
    if (found.error == 0) return ZK_OK;
    std::packaged_task<Lookup()> task([host, port] { return look_up(host, port, 0); });
    std::future<Lookup> result = task.get_future();
    std::thread(std::move(task)).detach();
    while (result.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
        if (attempt.left() == 0)
            return attempt.fail(ZK_NO_ANSWER, "the name \"%.100s\" was not resolved within %d ms", host.c_str(),
                                attempt.limit());
        sleep_cp(1);
    }
    found = result.get();
    if (found.error == 0) return ZK_OK;
    const std::string why = found.error == EAI_SYSTEM ? std::generic_category().message(found.system_error)
                                                      : std::string(gai_strerror(found.error));
    return attempt.fail(found.error == EAI_MEMORY ? ZK_NO_MEMORY : ZK_UNKNOWN_HOST, "the name \"%.100s\": %s",
                        host.c_str(), why.c_str());
}

bool write_address(const sockaddr* address, char (&text)[48]) {
    const void* bytes = address->sa_family == AF_INET6
                            ? static_cast<const void*>(&reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr)
                            : &reinterpret_cast<const sockaddr_in*>(address)->sin_addr;
    return inet_ntop(address->sa_family, bytes, text, sizeof text);
}

// A connection to a port of this host that nobody listens on may get that port for its own end.
bool is_connected_to_itself(int descriptor) {
    sockaddr_storage own{}, peer{};
    socklen_t own_size = sizeof own, peer_size = sizeof peer;
    return getsockname(descriptor, reinterpret_cast<sockaddr*>(&own), &own_size) == 0 &&
           getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &peer_size) == 0 && own_size == peer_size &&
           std::memcmp(&own, &peer, own_size) == 0;
}

// Waits until the connection stands. Returns 0 or an errno.
int await_connection(int descriptor, int32_t limit) {
    const int32_t start = Get_Program_Runtime();
    pollfd wanted{descriptor, POLLOUT, 0};
    while (poll(&wanted, 1, kSliceMs) <= 0) {
        if (elapsed_since(start) >= limit) return ETIMEDOUT;
    }
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &size);
    return error == 0 && is_connected_to_itself(descriptor) ? ECONNREFUSED : error;
}

// Returns 0 or an errno.
int try_address(const addrinfo& address, int32_t limit, Descriptor& connected) {
    Descriptor own(socket(address.ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (own.get() < 0) return errno;
    const int on = 1;  // a set-point does not wait for the acknowledgement of the last one
    (void)setsockopt(own.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    const int result = connect(own.get(), address.ai_addr, address.ai_addrlen);
    if (result != 0 && errno != EINPROGRESS) return errno;
    if (const int error = await_connection(own.get(), limit)) return error;
    (void)fcntl(own.get(), F_SETFL, fcntl(own.get(), F_GETFL) & ~O_NONBLOCK);
    Descriptor lifted(lift_descriptor(own.release()));
    if (lifted.get() < 0) return errno;
    connected = std::move(lifted);
    return 0;
}

int status_of(int error) {
    switch (error) {
        case ECONNREFUSED:
            return ZK_CONNECTION_REFUSED;
        case ETIMEDOUT:
            return ZK_NO_ANSWER;
        case ECONNRESET:
            return ZK_LOST;
        case EMFILE:
        case ENFILE:
            return ZK_NO_SOCKET;
        case ENOMEM:
        case ENOBUFS:
            return ZK_NO_MEMORY;
        default:  // no network, no host, an address family that the system does not have, a firewall
            return ZK_NO_ROUTE;
    }
}

int length(const addrinfo* list) {
    int count = 0;
    for (; list; list = list->ai_next) ++count;
    return count;
}

}  // namespace

// Of several failures the one counts that got furthest: an address without a route says less than a refusal.
int dial(const char* host, int32_t port, Attempt& attempt, Peer& peer) {
    Lookup found;
    if (const int status = resolve(host, std::to_string(port), attempt, found)) return status;
    int failure = ZK_NO_ROUTE;
    for (const addrinfo* address = found.list.get(); address; address = address->ai_next) {
        write_address(address->ai_addr, peer.address);
        const int error = try_address(*address, attempt.left() / length(address), peer.descriptor);
        if (error == 0) return ZK_OK;
        const int status = status_of(error);
        if (failure != ZK_NO_ROUTE && status == ZK_NO_ROUTE) continue;
        failure =
            attempt.fail(status, "%s port %d: %s", peer.address, port, std::generic_category().message(error).c_str());
    }
    return failure;
}

}  // namespace zk
