// One controller behind many clients: many read, one writes. The readers' queries share one connection; the writer has
// one of its own, on which nothing is changed.
#pragma once

#include <list>
#include <set>

#include "proxy/faults.h"
#include "proxy/line.h"
#include "proxy/push_share.h"
#include "proxy/tape.h"

namespace tool {

struct SharingOptions {
    std::string controller;  // as people write it
    asio::ip::tcp::endpoint endpoint;
    std::string writer;      // the address of the host that may write, "none" for nobody; empty: any
    bool subscribe = false;  // makes the controller push to this host
};

class Sharing : public Service {
 public:
    Sharing(asio::io_context& io, SharingOptions options, PushShare& push, FaultDesk& faults, Tape& tape);
    ~Sharing() override;
    Sharing(const Sharing&) = delete;
    Sharing& operator=(const Sharing&) = delete;

    // Throws Failure when the controller cannot be reached.
    void begin();

    void join(const std::shared_ptr<Client>& client) override;
    void take(const std::shared_ptr<Client>& client, Request request) override;
    void take_file(const std::shared_ptr<Client>& client, std::string bytes) override;
    void leave(Client& client) override;

 private:
    using Time = std::chrono::steady_clock::time_point;
    // A request on the readers' connection whose reply has not come.
    struct Asked {
        std::weak_ptr<Client> client;
        bool is_own;  // the proxy's own question
        std::string command;
        Time since;
        bool is_given_up = false;
    };
    struct Guest {
        std::shared_ptr<Client> client;
        std::list<Request> waiting = {};
        bool is_writer = false, is_leaving = false;
    };

    Guest* guest_of(const Client& client);
    Guest* writer();
    void open_readers_line();
    void close_all(const std::string& why);
    void tick();
    void pump();
    void pump(Guest& guest);
    bool may_go(const Guest& guest, const Request& request) const;
    void go(Guest& guest, const Request& request);
    void ask(Guest& guest, const Request& request);
    void refuse(const Guest& guest, const Request& request, const std::string& why);
    std::string refusal_to_write(const Guest& guest);
    void begin_writing(Guest& guest);
    void end_writing();
    void write(Guest& guest, const Request& request);
    void take_writers(const std::string& text);
    void take_answer(const std::string& text);
    void learn_push(const std::string& text);
    void subscribe(Json& settings);

    asio::io_context& io_;
    SharingOptions options_;
    PushShare& push_;
    FaultDesk& faults_;
    Tape& tape_;
    asio::steady_timer timer_;
    bool has_begun_ = false;
    std::shared_ptr<Line> readers_, writers_;
    std::list<Guest> guests_;
    std::list<Asked> asked_;
    std::size_t file_announced_ = 0;  // of the writer's request that is not answered yet
    Time file_since_;
};

}  // namespace tool
