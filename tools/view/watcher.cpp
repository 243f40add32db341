#include "view/watcher.h"

#include <array>
#include <chrono>
#include <thread>
#include <utility>

#include "look/push.h"
#include "remedy.h"
#include "report.h"
#include "view/queries.h"

namespace zk::view {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kBetweenQueries{60};
constexpr milliseconds kBetweenAttempts{1000};
constexpr milliseconds kBetweenLooks{2};
constexpr std::int32_t kPushIsLateMs = 600;

Json link(const std::string& state, const std::string& text, const std::string& advice) {
    return {{"state", state}, {"text", text}, {"advice", advice}};
}

// A record of the push. Values that few need are left out where they are 0.
Json state_event(std::size_t arm, const ZK_State& record) {
    const auto& s = record.status;
    const auto count = static_cast<std::size_t>(record.joint_count);
    const std::int64_t microseconds = record.host_ns / 1000;
    Json event{{"arm", arm},
               {"n", record.sequence},
               {"t", static_cast<double>(microseconds) / 1e3},
               {"q", numbers(s.joint_position, count)},
               {"dq", numbers(s.joint_speed, count, 3)},
               {"current", numbers(s.joint_current, count, 3)},
               {"celsius", numbers(s.joint_temperature, count, 1)},
               {"volt", numbers(s.joint_voltage, count, 1)},
               {"on", Json::array()},
               {"error", Json::array()},
               {"p", numbers(s.position, 3, 6)},
               {"quat", numbers(s.quat, 4, 6)},
               {"armError", s.arm_err},
               {"systemError", s.sys_err},
               {"doing", s.arm_current_status}};
    for (std::size_t i = 0; i < count; ++i) {
        event["on"].push_back(s.joint_en_flag[i]);
        event["error"].push_back(s.joint_err_code[i]);
    }
    event["force"] = numbers(s.force, 6, 3);
    event["zeroForce"] = numbers(s.zero_force, 6, 3);
    event["forceFrame"] = s.coordinate;
    return event;
}

// The error words of an arm, explained. Written anew when they change.
class Errors {
 public:
    Errors(std::size_t arm, Feed& feed) : arm_(arm), feed_(feed) {}

    void show(std::uint16_t arm_error, std::uint16_t system_error) {
        if (known_ == std::pair<int, int>(arm_error, system_error)) return;
        known_ = {arm_error, system_error};
        const Json errors = tool::json_of_errors(arm_error, system_error);
        feed_.set_fact(arm_, "errors", Json{{"arm", arm_}, {"list", errors}}.dump());
    }

 private:
    std::size_t arm_;
    Feed& feed_;
    std::pair<int, int> known_{-1, -1};
};

}  // namespace

Watcher::Watcher(std::size_t number, Address address, Feed& feed)
    : number_(number), address_(std::move(address)), feed_(feed) {
    if (address_.name.empty()) address_.name = address_.host + ":" + std::to_string(address_.port);
}

Watcher::~Watcher() {
    end();
    if (thread_.joinable()) thread_.join();
}

std::string Watcher::name() const { return address_.name; }

Result<void> Watcher::start() {
    Result<Arm> arm = connect();
    if (!arm) return Unexpected(arm.error());
    thread_ = std::thread([this, arm = *std::move(arm)]() mutable { run(std::move(arm)); });
    return {};
}

void Watcher::end() {
    const std::lock_guard<std::mutex> guard(lock_);
    ended_ = true;
    ends_.notify_all();
    if (const ArmSocket handle = handle_; handle != 0) ZK_Cancel(handle);
}

bool Watcher::pause(milliseconds time) {
    std::unique_lock<std::mutex> guard(lock_);
    return !ends_.wait_for(guard, time, [this] { return ended_; });
}

Result<Arm> Watcher::connect() {
    ConnectOptions options;
    options.keep_model = true;
    options.heartbeat = milliseconds(250);
    return Arm::connect(address_.host, address_.port, options);
}

void Watcher::say(const Json& link) {
    feed_.set_fact(number_, "link",
                   Json{{"arm", number_}, {"link", link}}.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void Watcher::run(Arm first) {
    Result<Arm> arm = std::move(first);
    do {
        if (!arm) arm = connect();
        if (arm) {
            handle_ = arm->handle();
            watch(*arm);
            arm = Unexpected(Error{});
        } else {
            say(link("lost", arm.error().text, tool::remedy_of(arm.error())));
        }
    } while (pause(kBetweenAttempts));
}

void Watcher::watch(const Arm& arm) {
    Queries queries(number_, arm, feed_);
    Errors errors(number_, feed_);
    const StateStream states = arm.states();
    // In a thread of its own: a question may take long. Each state counts, so it does not look at the last one alone.
    const std::jthread reader([&](const std::stop_token& ends) {
        for (StateStream all = arm.states(); !ends.stop_requested(); std::this_thread::sleep_for(kBetweenLooks)) {
            for (Result<State> state = all.next_in_order(); state; state = all.next_in_order()) {
                feed_.add_state(number_, state_event(number_, state->record).dump());
                errors.show(state->arm_error(), state->system_error());
            }
        }
    });
    tool::Finding silence{};
    say(link("up", "", ""));
    while (pause(kBetweenQueries)) {
        const Result<ZK_ConnectionRecord> record = arm.connection();
        if (!record || record->state != ZK_CONNECTION_UP) {
            say(link("lost", record ? "The connection is lost: " + std::string(record->cause) : record.error().text,
                     "It is tried again every second."));
            return;
        }
        queries.ask_next();
        const Result<State> latest = states.latest(milliseconds(kPushIsLateMs));
        if (latest) {
            say(link("up", "", ""));
        } else if (latest.error().status == ZK_NO_STATE) {
            if (silence.sentence.empty()) silence = tool::why_no_state(arm);
            say(link("silent", silence.sentence, silence.remedy));
        }
    }
}

}  // namespace zk::view
