#include "proxy/sharing.h"

#include <algorithm>
#include <utility>

#include "wire/note.h"

namespace tool {
namespace {

constexpr std::chrono::milliseconds kTick{100};
constexpr std::chrono::seconds kAnswered{1};    // so long others wait for an answer of the same kind
constexpr std::chrono::seconds kForgotten{60};  // so long a late answer finds its client
constexpr std::chrono::seconds kFileAnswered{5};
constexpr std::size_t kMostWaiting = 64;  // requests of a client

const char* kPushQuery = "{\"command\":\"get_realtime_push\"}\r\n";

bool is_about_push(const std::string& command) {
    return command == "get_realtime_push" || command == "set_realtime_push";
}

}  // namespace

Sharing::Sharing(asio::io_context& io, SharingOptions options, PushShare& push, FaultDesk& faults, Tape& tape)
    : io_(io), options_(std::move(options)), push_(push), faults_(faults), tape_(tape), timer_(io) {}

void Sharing::begin() {
    open_readers_line();
    while (!readers_->is_connected()) io_.run_one();
    has_begun_ = true;
    tick();
}

Sharing::~Sharing() {
    for (const auto& line : {readers_, writers_}) {
        if (line) line->close();
    }
}

void Sharing::tick() {
    timer_.expires_after(kTick);
    timer_.async_wait([this](const asio::error_code& error) {
        if (error) return;
        const Time now = std::chrono::steady_clock::now();
        for (Asked& asked : asked_) {
            if (asked.is_given_up || now - asked.since < kAnswered) continue;
            asked.is_given_up = true;
            if (asked.is_own) push_.configure({});
        }
        asked_.remove_if([&](const Asked& asked) { return now - asked.since > kForgotten; });
        if (file_announced_ > 0 && now - file_since_ > kFileAnswered) file_announced_ = 0;
        pump();
        tick();
    });
}

void Sharing::open_readers_line() {
    readers_ = Line::open(io_, options_.endpoint,
                          {[this](const std::string& text) { take_answer(text); },
                           [this](const std::string& why) { close_all(why); }, [] {}});
    readers_->send(kPushQuery);
    tape_.frame(Tape::Way::kToController, kPushQuery, "");
    asked_.push_back({{}, true, "get_realtime_push", std::chrono::steady_clock::now()});
}

void Sharing::join(const std::shared_ptr<Client>& client) {
    if (!readers_->is_open()) open_readers_line();
    guests_.push_back({client});
}

// They see what they would see without the proxy. The next one that comes brings the connection back.
void Sharing::close_all(const std::string& why) {
    if (!has_begun_) throw Failure(kNoArm, options_.controller + " cannot be reached: " + why);
    tape_.event(options_.controller + ": " + why);
    asked_.clear();
    for (Guest& guest : guests_) guest.client->drop(false);
    if (writers_) writers_->close();
    writers_.reset();
    file_announced_ = 0;
    pump();
}

Sharing::Guest* Sharing::guest_of(const Client& client) {
    const auto found =
        std::find_if(guests_.begin(), guests_.end(), [&](const Guest& one) { return one.client.get() == &client; });
    return found == guests_.end() ? nullptr : &*found;
}

Sharing::Guest* Sharing::writer() {
    const auto found = std::find_if(guests_.begin(), guests_.end(), [](const Guest& one) { return one.is_writer; });
    return found == guests_.end() ? nullptr : &*found;
}

void Sharing::take(const std::shared_ptr<Client>& client, Request request) {
    Guest* guest = guest_of(*client);
    if (!guest || faults_.serve(*client, request) || faults_.silent_on.count(request.command) > 0) return;
    if (faults_.refuse_on.count(request.command) > 0) return refuse(*guest, request, "as --refuse-on says");
    if (guest->is_writer && !is_about_push(request.command)) return write(*guest, request);
    if (request.command.empty()) return sim::note(client->name() + ": a request that is no JSON of a command");
    if (request.is_stop()) return ask(*guest, request);
    guest->waiting.push_back(std::move(request));
    if (guest->waiting.size() >= kMostWaiting) client->pause();
    pump(*guest);
}

void Sharing::take_file(const std::shared_ptr<Client>& client, std::string bytes) {
    if (!writers_ || !writers_->is_open()) return;
    writers_->send(bytes);
    if (writers_->is_full()) client->pause();
}

// What it asked before is still carried out, as a controller does.
void Sharing::leave(Client& client) {
    Guest* guest = guest_of(client);
    if (!guest) return;
    guest->is_leaving = true;
    if (guest->is_writer && writers_) writers_->finish();
    pump();
}

void Sharing::pump() {
    for (Guest& guest : guests_) pump(guest);
    guests_.remove_if([&](const Guest& guest) {
        const bool asks = std::any_of(asked_.begin(), asked_.end(), [&](const Asked& asked) {
            return !asked.is_given_up && asked.client.lock() == guest.client;
        });
        const bool is_done = guest.is_leaving && guest.waiting.empty() && !asks && !guest.is_writer;
        if (!is_done && !guest.client->is_gone()) return false;
        if (guest.is_writer) end_writing();
        push_.forget(*guest.client);
        guest.client->finish();
        return true;
    });
}

void Sharing::pump(Guest& guest) {
    while (!guest.waiting.empty() && !guest.client->is_gone() && may_go(guest, guest.waiting.front())) {
        const Request request = std::move(guest.waiting.front());
        guest.waiting.pop_front();
        go(guest, request);
    }
    const bool is_held = guest.is_writer && (file_announced_ > 0 || (writers_ && writers_->is_full()));
    if (guest.waiting.size() < kMostWaiting && !is_held) guest.client->go_on();
}

// Replies carry no number: two of a kind would be taken for each other.
bool Sharing::may_go(const Guest& guest, const Request& request) const {
    if (is_about_push(request.command)) return push_.is_configured();
    const bool is_query = request.is_query();
    return std::none_of(asked_.begin(), asked_.end(),
                        [&](const Asked& asked) {
                            if (asked.is_given_up) return false;
                            const bool is_its_own = asked.client.lock() == guest.client;
                            return is_query ? !is_its_own && asked.command == request.command : is_its_own;
                        }) &&
           (is_query || std::none_of(guests_.begin(), guests_.end(),
                                     [&](const Guest& other) { return other.is_writer && other.is_leaving; }));
}

void Sharing::go(Guest& guest, const Request& request) {
    if (is_about_push(request.command)) {
        const std::string reply = push_.answer(guest.client, request);
        if (!reply.empty()) guest.client->send_text(reply + "\r\n");
    } else if (guest.is_writer) {
        write(guest, request);
    } else if (request.is_query()) {
        ask(guest, request);
    } else if (const std::string why = refusal_to_write(guest); !why.empty()) {
        refuse(guest, request, why);
    } else {
        begin_writing(guest);
        write(guest, request);
    }
}

void Sharing::ask(Guest& guest, const Request& request) {
    asked_.push_back({guest.client, false, request.command, std::chrono::steady_clock::now()});
    tape_.frame(Tape::Way::kToController, request.text, guest.client->name());
    readers_->send(request.text);
}

void Sharing::refuse(const Guest& guest, const Request& request, const std::string& why) {
    tape_.event(guest.client->name() + ": " + request.command + " is refused: " + why);
    for (const std::string& message : refusal_of(request.command)) guest.client->send_text(message + "\r\n");
}

std::string Sharing::refusal_to_write(const Guest& guest) {
    if (const Guest* other = writer()) return other->client->name() + " is the writer";
    if (options_.writer.empty() || options_.writer == guest.client->address().to_string()) return {};
    return "the writer is " + options_.writer;
}

void Sharing::begin_writing(Guest& guest) {
    guest.is_writer = true;
    tape_.event(guest.client->name() + ": is the writer");
    writers_ = Line::open(io_, options_.endpoint,
                          {[this](const std::string& text) { take_writers(text); },
                           [this](const std::string& why) {
                               Guest* one = writer();
                               if (!one) return;
                               if (!one->is_leaving) tape_.event("the writer's connection: " + why);
                               one->client->finish();
                               end_writing();
                               pump();
                           },
                           [this] { pump(); }});
}

void Sharing::end_writing() {
    if (writers_) writers_->close();
    writers_.reset();
    file_announced_ = 0;
    Guest* guest = writer();
    if (!guest) return;
    guest->is_writer = false;
    guest->is_leaving = true;
    guest->waiting.clear();
}

void Sharing::write(Guest& guest, const Request& request) {
    tape_.frame(Tape::Way::kToController, request.text, guest.client->name());
    writers_->send(request.text);
    if (request.command == "run_project" || request.command == "update_software") {
        const auto size = request.body.find("file_size");
        if (size == request.body.end() || !size->is_number_unsigned()) return;
        file_announced_ = size->get<std::size_t>();
        file_since_ = std::chrono::steady_clock::now();
    }
    if (file_announced_ > 0 || writers_->is_full()) guest.client->pause();
}

void Sharing::take_writers(const std::string& text) {
    Guest* guest = writer();
    if (!guest) return;
    const std::string name = name_of_message(text);
    const bool is_for_all = is_report(name);
    tape_.frame(Tape::Way::kFromController, text, is_for_all ? "" : guest->client->name());
    guest->client->send_text(text);
    for (const Guest& other : guests_) {
        if (is_for_all && !other.is_writer) other.client->send_text(text);
    }
    if (file_announced_ == 0 || !(answers(name, "run_project") || answers(name, "update_software"))) return;
    const bool is_accepted = text.find("true") != text.npos;
    if (is_accepted) guest->client->expect_file(file_announced_);
    file_announced_ = 0;
    pump();
}

void Sharing::take_answer(const std::string& text) {
    const std::string name = name_of_message(text);
    const auto is_asked = [&](bool given_up) {
        return std::find_if(asked_.begin(), asked_.end(), [&](const Asked& asked) {
            return asked.is_given_up == given_up && answers(name, asked.command);
        });
    };
    auto asked = is_asked(false);
    if (asked == asked_.end()) asked = is_asked(true);
    if (asked == asked_.end()) {  // nobody asked
        tape_.frame(Tape::Way::kFromController, text, "");
        for (const Guest& guest : guests_) guest.client->send_text(text);
        return;
    }
    const auto client = asked->client.lock();
    const bool is_own = asked->is_own;
    asked_.erase(asked);
    tape_.frame(Tape::Way::kFromController, text, client ? client->name() : "");
    if (is_own) learn_push(text);
    if (client) client->send_text(text);
    pump();
}

void Sharing::learn_push(const std::string& text) {
    Json settings = Json::parse(text);
    try {
        if (options_.subscribe) subscribe(settings);
        const asio::ip::address to = asio::ip::make_address(settings.at("ip").get<std::string>());
        const asio::ip::address local = readers_->local_address();
        if (!settings.at("enable").get<bool>() || (to != local && !(to.is_loopback() && local.is_loopback()))) {
            settings["enable"] = false;
            tape_.event("the controller pushes no states to this host; with --subscribe it is made to");
        } else {
            push_.receive(options_.endpoint.address(), settings.at("port").get<int>(),
                          [this](const std::string& datagram) { tape_.state(datagram); });
        }
    } catch (const asio::system_error& error) {
        settings["enable"] = false;
        tape_.event("no states: port " + settings["port"].dump() + ": " + error.code().message());
    } catch (const Json::exception&) {
        settings = {};
    }
    push_.configure(settings);
}

void Sharing::subscribe(Json& settings) {
    settings["enable"] = true;
    settings["ip"] = readers_->local_address().to_string();
    const Request request = Request::of(Json{{"command", "set_realtime_push"},
                                             {"cycle", settings.at("cycle")},
                                             {"enable", true},
                                             {"port", settings.at("port")},
                                             {"ip", settings.at("ip")}}
                                            .dump() +
                                        "\r\n");
    tape_.frame(Tape::Way::kToController, request.text, "");
    readers_->send(request.text);
    asked_.push_back({{}, false, request.command, std::chrono::steady_clock::now()});
}

}  // namespace tool
