// A recording, played back as the controller that it was made of.
#pragma once

#include <list>
#include <map>
#include <optional>

#include "proxy/faults.h"
#include "proxy/push_share.h"
#include "recording/recording.h"

namespace tool {

class Player : public Service {
 public:
    // Throws Failure when the recording holds no frame.
    Player(asio::io_context& io, const std::string& path, PushShare& push, FaultDesk& faults);

    void join(const std::shared_ptr<Client>& client) override;
    void take(const std::shared_ptr<Client>& client, Request request) override;
    void take_file(const std::shared_ptr<Client>&, std::string) override {}
    void leave(Client& client) override;

    std::size_t request_count() const { return exchanges_.size(); }
    std::size_t state_count() const { return states_.size(); }

 private:
    struct Message {
        std::chrono::nanoseconds delay;  // after the request
        std::string text;
        bool is_for_all;
    };
    struct Exchange {
        std::int64_t unix_ns;
        std::string client;
        Request request;
        std::vector<Message> messages;
        bool is_answered = false;
    };
    struct Guest {
        std::shared_ptr<Client> client;
        std::map<std::string, std::size_t> played;  // how many of each request, and of each command
    };

    void add(const LogRecord& frame);
    void add_message(Exchange* exchange, const LogRecord& frame);
    Exchange* asked_by(const LogRecord& frame);
    Exchange* last_change(const LogRecord& frame);
    const Exchange* next(Guest& guest, const Request& request);
    void answer(const std::shared_ptr<Client>& client, const Exchange& exchange);
    void send(const std::weak_ptr<Client>& client, const Message& message, std::size_t file_size);
    void push_next();

    asio::io_context& io_;
    PushShare& push_;
    FaultDesk& faults_;
    std::vector<Exchange> exchanges_;
    std::optional<LogRecord> unasked_;                        // the frame before, when it answers none
    std::map<std::string, std::vector<std::size_t>> places_;  // of exchanges, by request and by command
    std::vector<PushRecord> states_;
    std::list<Guest> guests_;
    std::set<std::string> unknown_;
    asio::steady_timer timer_;
    std::size_t next_state_ = 0;
    std::chrono::steady_clock::time_point begin_;
};

}  // namespace tool
