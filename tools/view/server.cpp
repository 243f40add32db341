#include "view/server.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <charconv>
#include <string_view>
#include <utility>

#include "view/geometry.h"
#include "view/page.h"

namespace zk::view {
namespace {

// A browser opens six connections to a host: the streams of its pages must leave one for the stop.
constexpr std::size_t kMostViewers = 5;
constexpr std::size_t kThreads = 24;
// Half a second of one arm's states at 5 ms: beyond that a page is behind, and misses the next ones.
constexpr Feed::Number kInFlight = 100;
constexpr int kSendBuffer = 1 << 16;

constexpr const char* kJson = "application/json";

template <class Number>
Number number_of(const std::string& text, Number otherwise) {
    Number number = otherwise;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

// Takes as long for each wrong token.
bool equal(std::string_view given, std::string_view wanted) {
    unsigned difference = given.size() == wanted.size() ? 0 : 1;
    for (std::size_t i = 0; i < wanted.size(); ++i)
        difference |= static_cast<unsigned>((i < given.size() ? given[i] : '\0') ^ wanted[i]);
    return difference == 0;
}

// Not SO_REUSEPORT, with which two views would share a port.
void set_socket_options(int socket) {
    const int yes = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    ::setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &kSendBuffer, sizeof kSendBuffer);
}

void refuse(httplib::Response& response, int status, const std::string& text) {
    response.status = status;
    response.set_content(Json{{"ok", false}, {"text", text}}.dump(), kJson);
}

}  // namespace

Server::Server(Feed& feed, const Watchers& watchers, std::string token, const Film* film)
    : feed_(feed), watchers_(watchers), token_(std::move(token)), film_(film) {
    server_.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    server_.set_socket_options(set_socket_options);
    server_.set_tcp_nodelay(true);
    server_.set_default_headers({{"Cache-Control", "no-store"},
                                 {"X-Content-Type-Options", "nosniff"},
                                 {"Content-Security-Policy",
                                  "default-src 'self'; img-src 'self' data: blob:; style-src 'self' 'unsafe-inline'; "
                                  "frame-ancestors 'none'"}});
    // A name that someone lets point to this machine must not make its pages ours.
    server_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
        const std::string host = request.get_header_value("Host"), port = ":" + std::to_string(port_);
        if (host == "127.0.0.1" + port || host == "localhost" + port)
            return httplib::Server::HandlerResponse::Unhandled;
        refuse(response, 403, "This page is at http://127.0.0.1" + port + " alone.");
        return httplib::Server::HandlerResponse::Handled;
    });
    serve_files();
    if (film_)
        server_.Get("/recording", [this](const auto&, httplib::Response& response) {
            response.set_content_provider(film_->states.size(), "application/octet-stream",
                                          [this](std::size_t from, std::size_t length, httplib::DataSink& sink) {
                                              return sink.write(film_->states.data() + from, length);
                                          });
        });
    server_.Get("/events", [this](const auto&, httplib::Response& response) { stream(response); });
    on_post("/seen", [this](const httplib::Request& request, httplib::Response& response) {
        note_seen(request);
        response.status = 204;
    });
    on_post("/stop", [this](const httplib::Request& request, httplib::Response& response) { stop(request, response); });
    on_post("/token", [this](const httplib::Request& request, httplib::Response& response) {
        if (!knows_token(request)) return refuse(response, 403, "This is not the token.");
        response.set_content(R"({"ok":true})", kJson);
    });
}

int Server::bind(int port) {
    if (port == 0) {
        port_ = server_.bind_to_any_port("127.0.0.1");
    } else {
        port_ = server_.bind_to_port("127.0.0.1", port) ? port : -1;
    }
    return port_;
}

// What is posted has no body. The server would wait for one whose length the request does not tell.
void Server::on_post(const char* path, const httplib::Server::Handler& handle) {
    server_.Post(path, [handle](const httplib::Request& request, httplib::Response& response,
                                const httplib::ContentReader&) { handle(request, response); });
}

void Server::serve_files() {
    for (const PageFile* file = kPage; !file->path.empty(); ++file) {
        server_.Get(std::string(file->path), [file](const auto&, httplib::Response& response) {
            response.set_header("Content-Encoding", "gzip");
            response.set_content(file->gzipped.data(), file->gzipped.size(), std::string(file->content_type));
        });
    }
}

std::string Server::welcome(Number viewer) const {
    Json arms = Json::array();
    for (const auto& watcher : watchers_) arms.push_back(watcher->name());
    if (film_) arms.push_back(film_->name);
    Json welcome{{"viewer", viewer}, {"arms", arms}, {"control", !token_.empty()}};
    if (film_) welcome["recording"] = Json::parse(film_->about);
    return "event: welcome\ndata: " + welcome.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n\n";
}

void Server::stream(httplib::Response& response) {
    const auto viewer = std::make_shared<Viewer>();
    Number number = 0;
    {
        const std::lock_guard<std::mutex> guard(lock_);
        if (viewers_.size() >= kMostViewers) {
            return refuse(response, 503, "Five pages are open already: close one.");
        }
        number = ++last_viewer_;
        viewers_[number] = viewer;
    }
    response.set_chunked_content_provider(
        "text/event-stream",
        [this, viewer, number, last = Feed::Number{0}, sent = Feed::Number{0}](std::size_t,
                                                                               httplib::DataSink& sink) mutable {
            const bool first = last == 0, keeps_up = sent <= viewer->seen + kInFlight * watchers_.size();
            std::string events = first ? welcome(number) : std::string();
            events += feed_.next(last, keeps_up);
            if (keeps_up) sent = last;
            if (first) viewer->seen = last;
            if (events.empty()) events = ":\n\n";  // finds out whether someone still reads
            return !feed_.ended() && sink.write(events.data(), events.size());
        },
        [this, number](bool) {
            const std::lock_guard<std::mutex> guard(lock_);
            viewers_.erase(number);
        });
}

void Server::note_seen(const httplib::Request& request) {
    const std::lock_guard<std::mutex> guard(lock_);
    const auto found = viewers_.find(number_of<Number>(request.get_param_value("viewer"), 0));
    if (found != viewers_.end()) found->second->seen = number_of<Feed::Number>(request.get_param_value("event"), 0);
}

bool Server::knows_token(const httplib::Request& request) const {
    return !token_.empty() && equal(request.get_header_value("X-Token"), token_);
}

void Server::stop(const httplib::Request& request, httplib::Response& response) {
    if (token_.empty()) return refuse(response, 403, "This view only looks: start it with --control.");
    if (!knows_token(request)) return refuse(response, 403, "This is not the token.");
    const auto arm = number_of<std::size_t>(request.get_param_value("arm"), watchers_.size());
    if (arm >= watchers_.size()) return refuse(response, 400, "There is no such arm.");
    const Result<void> stopped = watchers_[arm]->stop();
    if (!stopped) {
        const bool is_connected =
            stopped.error().status != ZK_NOT_CONNECTED && stopped.error().status != ZK_STALE_HANDLE;
        return refuse(response, 502,
                      (is_connected ? stopped.error().text : std::string("the arm is not connected")) +
                          ". Use the emergency stop of its cell.");
    }
    response.set_content(R"({"ok":true})", kJson);
}

}  // namespace zk::view
