#include "proxy/player.h"

#include <algorithm>
#include <cmath>

#include "wire/note.h"
#include "zk/algorithm.h"

namespace tool {
namespace {

constexpr std::chrono::milliseconds kUsualCycle{5};
constexpr std::size_t kMostOpen = 1000;  // requests that may still be answered

template <class Value>
Json scaled(const std::vector<Value>& values, double factor) {
    Json numbers = Json::array();
    for (const Value value : values) numbers.push_back(std::llround(static_cast<double>(value) * factor));
    return numbers;
}

template <class Value, std::size_t size>
Json scaled(const std::array<Value, size>& values, double factor) {
    return scaled(std::vector<Value>(values.begin(), values.end()), factor);
}

// A datagram as a controller pushes it, of a state that was recorded without its datagram.
PushRecord datagram_of(const ArmRecord& state) {
    const auto& turn = state.tool_quaternion_wxyz;
    const Euler euler = Algo_Quaternion2Euler({turn[0], turn[1], turn[2], turn[3]});
    Json body{{"arm_err", state.arm_error},
              {"joint_status",
               {{"joint_current", scaled(state.current_a, 1e3)},
                {"joint_en_flag", std::vector<int>(state.position_deg.size(), 1)},
                {"joint_err_code", state.joint_error},
                {"joint_position", scaled(state.position_deg, 1e3)},
                {"joint_speed", scaled(state.speed_deg_s, 1e3 / 6)},
                {"joint_temperature", scaled(state.temperature_c, 1e3)},
                {"joint_voltage", scaled(state.voltage_v, 1e3)}}},
              {"sys_err", state.system_error},
              {"waypoint",
               {{"euler", scaled(std::array{euler.rx, euler.ry, euler.rz}, 1e3)},
                {"position", scaled(state.tool_position_m, 1e6)},
                {"quat", scaled(turn, 1e6)}}}};
    if (std::any_of(state.force.begin(), state.force.end(), [](float force) { return force != 0; })) {
        const Json force = scaled(state.force, 1e3);
        body["six_force_sensor"] = {{"coordinate", 0}, {"force", force}, {"zero_force", force}};
    }
    if (state.controller_ms >= 0) body["time"] = state.controller_ms;
    return {state.unix_ns, body.dump()};
}

// What a controller with these states says when nobody asked it before the recording began.
Json usual_push(bool has_states) {
    return {{"state", "get_realtime_push"},
            {"cycle", 1},
            {"enable", has_states},
            {"port", 8089},
            {"ip", "127.0.0.1"},
            {"custom",
             {{"joint_speed", false},
              {"lift_state", false},
              {"expand_state", false},
              {"arm_current_status", false},
              {"hand", false},
              {"aloha_state", false}}}};
}

}  // namespace

Player::Player(asio::io_context& io, const std::string& path, PushShare& push, FaultDesk& faults)
    : io_(io), push_(push), faults_(faults), timer_(io) {
    Recording recording = load_recording(path, Contents::kStatesOrFrames);
    for (const LogRecord& line : recording.log) {
        if (line.is_frame && line.text.size() > 2) add(line);
    }
    if (unasked_) add_message(last_change(*unasked_), *unasked_);
    if (exchanges_.empty())
        throw Failure(kUsage, path + " holds no frames: zk proxy -o and zk record --wire keep them");
    states_ = std::move(recording.push);
    if (states_.empty())
        std::transform(recording.states.begin(), recording.states.end(), std::back_inserter(states_), datagram_of);
    Json settings = usual_push(!states_.empty());
    for (const Exchange& exchange : exchanges_) {
        if (exchange.request.command != "get_realtime_push" || exchange.messages.empty()) continue;
        const Json recorded = Json::parse(exchange.messages.front().text, nullptr, false);
        if (recorded.is_object()) settings.update(recorded);
    }
    settings["enable"] = !states_.empty();
    push_.configure(settings);
    if (!recording.is_whole) sim::note(path + " is cut short; what it holds is played");
}

void Player::add(const LogRecord& frame) {
    const std::string text = frame.text.substr(2);
    const std::optional<LogRecord> unasked = std::exchange(unasked_, std::nullopt);
    const bool is_request = frame.text.front() == '>';
    Request request = is_request ? Request::of(text) : Request{};
    const bool is_early = is_request && unasked && unasked->client == frame.client &&
                          answers(name_of_message(unasked->text.substr(2)), request.command);
    if (unasked && !is_early) add_message(last_change(*unasked), *unasked);
    if (is_request) {
        for (const std::string& key : {request.body.dump(), request.command}) places_[key].push_back(exchanges_.size());
        exchanges_.push_back({frame.unix_ns, frame.client, std::move(request), {}});
        if (is_early) add_message(&exchanges_.back(), *unasked);
        return;
    }
    if (Exchange* exchange = asked_by(frame)) {
        add_message(exchange, frame);
    } else if (is_report(name_of_message(text))) {
        add_message(last_change(frame), frame);
    } else {
        // One thread of a program writes down what it sends, another what it receives: the request may stand next.
        unasked_ = frame;
    }
}

void Player::add_message(Exchange* exchange, const LogRecord& frame) {
    if (!exchange) return;
    const std::string text = frame.text.substr(2), name = name_of_message(text);
    exchange->is_answered = exchange->is_answered || answers(name, exchange->request.command);
    exchange->messages.push_back(
        {std::chrono::nanoseconds(std::max<std::int64_t>(0, frame.unix_ns - exchange->unix_ns)), text,
         is_report(name)});
}

// The first that waits for such an answer.
Player::Exchange* Player::asked_by(const LogRecord& frame) {
    const std::string name = name_of_message(frame.text.substr(2));
    const std::size_t oldest = exchanges_.size() - std::min(exchanges_.size(), kMostOpen);
    for (std::size_t i = oldest; i < exchanges_.size(); ++i) {
        Exchange& one = exchanges_[i];
        if (!one.is_answered && one.client == frame.client && answers(name, one.request.command)) return &one;
    }
    return nullptr;
}

// What nobody asked for is told after the last request that changed something.
Player::Exchange* Player::last_change(const LogRecord& frame) {
    const std::size_t oldest = exchanges_.size() - std::min(exchanges_.size(), kMostOpen);
    for (std::size_t i = exchanges_.size(); i > oldest; --i) {
        Exchange& one = exchanges_[i - 1];
        if (!one.request.is_query() && (frame.client.empty() || one.client == frame.client)) return &one;
    }
    return nullptr;
}

void Player::join(const std::shared_ptr<Client>& client) {
    const bool is_first = guests_.empty();
    guests_.push_back({client, {}});
    if (!is_first || states_.empty()) return;
    next_state_ = 0;
    begin_ = std::chrono::steady_clock::now();
    push_next();
}

// As they were recorded; then the last one again, as an arm at rest pushes it.
void Player::push_next() {
    const auto offset = [this](std::size_t i) {
        return std::chrono::nanoseconds(states_[i].unix_ns - states_.front().unix_ns);
    };
    const auto now = std::chrono::steady_clock::now();
    for (; next_state_ < states_.size() && begin_ + offset(next_state_) <= now; ++next_state_)
        push_.send(states_[next_state_].text);
    if (next_state_ < states_.size()) {
        timer_.expires_at(begin_ + offset(next_state_));
    } else {
        timer_.expires_after(kUsualCycle);
    }
    timer_.async_wait([this](const asio::error_code& error) {
        if (error || guests_.empty()) return;
        if (next_state_ == states_.size()) push_.send(states_.back().text);
        push_next();
    });
}

void Player::take(const std::shared_ptr<Client>& client, Request request) {
    if (faults_.serve(*client, request) || faults_.silent_on.count(request.command) > 0) return;
    if (faults_.refuse_on.count(request.command) > 0) {
        for (const std::string& message : refusal_of(request.command)) client->send_text(message + "\r\n");
        return;
    }
    if (request.command == "get_realtime_push" || request.command == "set_realtime_push")
        return client->send_text(push_.answer(client, request) + "\r\n");
    const auto guest =
        std::find_if(guests_.begin(), guests_.end(), [&](const Guest& one) { return one.client == client; });
    const Exchange* exchange = guest == guests_.end() ? nullptr : next(*guest, request);
    if (exchange) return answer(client, *exchange);
    if (unknown_.insert(request.command).second)
        sim::note(client->name() + ": '" + request.command + "' was never recorded: it is not answered");
}

// The same request if it was recorded, otherwise the same command; each in its order, and the last again and again.
const Player::Exchange* Player::next(Guest& guest, const Request& request) {
    for (const std::string& key : {request.body.dump(), request.command}) {
        const auto found = places_.find(key);
        if (found == places_.end()) continue;
        std::size_t& played = guest.played[key];
        const std::size_t place = found->second[played];
        if (played + 1 < found->second.size()) ++played;
        return &exchanges_[place];
    }
    return nullptr;
}

void Player::answer(const std::shared_ptr<Client>& client, const Exchange& exchange) {
    const Json& body = exchange.request.body;
    const bool is_file = exchange.request.command == "run_project" || exchange.request.command == "update_software";
    std::size_t file_size = is_file && body.contains("file_size") && body["file_size"].is_number_unsigned()
                                ? body["file_size"].get<std::size_t>()
                                : 0;
    for (const Message& message : exchange.messages) {
        const auto timer = std::make_shared<asio::steady_timer>(io_, message.delay);
        timer->async_wait([this, timer, to = std::weak_ptr(client), &message,
                           file_size = std::exchange(file_size, 0)](const asio::error_code& error) {
            if (!error) send(to, message, file_size);
        });
    }
}

void Player::send(const std::weak_ptr<Client>& client, const Message& message, std::size_t file_size) {
    for (const Guest& guest : guests_) {
        const bool is_asker = guest.client == client.lock();
        if (!is_asker && !message.is_for_all) continue;
        guest.client->send_text(message.text + "\r\n");
        if (is_asker && message.text.find("true") != message.text.npos) guest.client->expect_file(file_size);
    }
}

void Player::leave(Client& client) {
    push_.forget(client);
    client.finish();
    guests_.remove_if([&](const Guest& guest) { return guest.client.get() == &client; });
    if (guests_.empty()) timer_.cancel();
}

}  // namespace tool
