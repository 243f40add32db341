#include <pthread.h>
#include <signal.h>

#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <thread>

#include "view/page.h"
#include "view/server.h"
#include "view/view.h"
#include "view/watcher.h"

namespace zk::view {
namespace {

// Signals that end the view; from here on they wait for the thread that asks for them.
sigset_t blocked_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

// Fifty bits that are easily typed.
std::string new_token() {
    static constexpr char kLetters[] = "abcdefghijkmnpqrstuvwxyz23456789";
    std::random_device random;
    std::string token;
    for (int i = 0; i < 10; ++i) token += kLetters[random() % 32];
    return token;
}

bool watch_all(const Options& options, Feed& feed, Server::Watchers& watchers) {
    for (const Address& address : options.arms) {
        watchers.push_back(std::make_unique<Watcher>(watchers.size(), address, feed));
        if (const Result<void> started = watchers.back()->start(); !started) {
            std::cerr << "zk view: " << watchers.back()->name() << ": " << started.error().message() << '\n';
            return false;
        }
    }
    return true;
}

}  // namespace

int serve(const Options& options) {
    if (kPage[0].path.empty()) {
        std::cerr << "zk view: this program was built without the page, which needs node and npm.\n";
        return 1;
    }
    const sigset_t signals = blocked_signals();
    const std::string token = options.control ? new_token() : "";
    Feed feed(options.arms.size());
    Server::Watchers watchers;
    Server server(feed, watchers, token);
    const int port = server.bind(options.port);
    if (port < 0) {
        std::cerr << "zk view: port " << options.port << " is taken on this machine: choose another by --port.\n";
        return 1;
    }
    if (!watch_all(options, feed, watchers)) return 1;
    std::thread serving([&server] { server.run(); });
    std::cout << "http://127.0.0.1:" << port << '/' << (token.empty() ? "" : "#token=" + token) << std::endl;
    int signal = 0;
    sigwait(&signals, &signal);
    feed.end();
    server.end();
    serving.join();
    for (const auto& watcher : watchers) watcher->end();
    return 0;
}

}  // namespace zk::view
