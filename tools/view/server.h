// The page's server: files, the stream of events, and the stop.
#pragma once

#include <httplib.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "view/feed.h"
#include "view/watcher.h"

namespace zk::view {

class Server {
 public:
    using Watchers = std::vector<std::unique_ptr<Watcher>>;

    // token: what who stops an arm has to know; "" offers no stop. film: a recording to play, or null.
    Server(Feed& feed, const Watchers& watchers, std::string token, const Film* film);

    // Takes the port, or any free one for 0. The port; -1 when it is taken.
    int bind(int port);
    // Serves until end().
    void run() { server_.listen_after_bind(); }
    void end() { server_.stop(); }

 private:
    // What a page has seen of the stream, as it says now and then.
    struct Viewer {
        std::atomic<Feed::Number> seen{0};
    };
    using Number = std::uint64_t;

    void on_post(const char* path, const httplib::Server::Handler& handle);
    void serve_files();
    void stream(httplib::Response& response);
    void note_seen(const httplib::Request& request);
    void stop(const httplib::Request& request, httplib::Response& response);
    bool knows_token(const httplib::Request& request) const;
    std::string welcome(Number viewer) const;

    Feed& feed_;
    const Watchers& watchers_;
    std::string token_;
    const Film* film_;
    httplib::Server server_;
    int port_ = 0;
    std::mutex lock_;
    Number last_viewer_ = 0;
    std::map<Number, std::shared_ptr<Viewer>> viewers_;
};

}  // namespace zk::view
