#include <pthread.h>
#include <signal.h>

#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <thread>

#include "command.h"
#include "remedy.h"
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

void watch_all(const Options& options, Feed& feed, Server::Watchers& watchers) {
    for (const Address& address : options.arms) {
        watchers.push_back(std::make_unique<Watcher>(watchers.size(), address, feed));
        const Watcher& watcher = *watchers.back();
        if (const Result<void> started = watchers.back()->start(); !started)
            throw tool::Failure(tool::kNoArm, tool::sentence_of_no_arm(watcher.name(), address.host, started.error()));
    }
}

}  // namespace

void serve(const Options& options) {
    if (kPage[0].path.empty())
        throw tool::Failure(tool::kFailed, "this program was built without the page, which needs node and npm");
    const sigset_t signals = blocked_signals();
    const Film* film = options.film ? &*options.film : nullptr;
    const std::string token = options.control ? new_token() : "";
    Feed feed(film ? 1 : options.arms.size());
    if (film) feed.set_fact(0, "arm", film->arm);
    Server::Watchers watchers;
    Server server(feed, watchers, token, film);
    const int port = server.bind(options.port);
    if (port < 0) {
        throw tool::Failure(tool::kFailed, "port " + std::to_string(options.port) +
                                               " is taken on this machine: choose another by --port");
    }
    watch_all(options, feed, watchers);
    std::thread serving([&server] { server.run(); });
    std::cout << "http://127.0.0.1:" << port << '/' << (token.empty() ? "" : "#token=" + token) << std::endl;
    int signal = 0;
    sigwait(&signals, &signal);
    feed.end();
    server.end();
    serving.join();
    for (const auto& watcher : watchers) watcher->end();
}

}  // namespace zk::view
