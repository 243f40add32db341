#include "world/scenario.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

#include "motion/arm.h"
#include "wire/dispatcher.h"
#include "wire/note.h"
#include "world/ports.h"

namespace sim {
namespace {

constexpr double kEver = std::numeric_limits<double>::infinity();

// Notes what is refused.
class Director : public Client {
 public:
    void send(const Json& reply) override {
        for (const Json::Member& member : reply.members()) {
            if (member.value.is_boolean() && !member.value.boolean()) note("scenario: refused: " + reply.dump());
        }
    }
    std::string name() const override { return "scenario"; }
};

double number(const Json& object, std::string_view key, double otherwise, double low) {
    const Json* found = object.find(key);
    if (!found) return otherwise;
    if (!found->is_number() || !(found->number() >= low))
        throw std::invalid_argument("\"" + std::string(key) + "\" is no number that makes sense");
    return found->number();
}

using Keys = std::vector<std::string_view>;

void allow_keys(const Json& object, const Keys& keys) {
    if (!object.is_object()) throw std::invalid_argument("is no object");
    for (const Json::Member& member : object.members()) {
        if (std::find(keys.begin(), keys.end(), member.key) != keys.end()) continue;
        std::string known;
        for (const std::string_view key : keys) known += (known.empty() ? "" : ", ") + std::string(key);
        throw std::invalid_argument("unknown key \"" + member.key + "\"; there are " + known);
    }
}

}  // namespace

Scenario::Scenario(const Json& events, const Parts& parts, Progress progress)
    : parts_(parts), progress_(std::move(progress)), client_(std::make_shared<Director>()) {
    if (!events.is_array()) return;
    for (const Json& event : events.items()) {
        try {
            events_.push_back(event_of(event));
        } catch (const std::invalid_argument& error) {
            throw std::invalid_argument("scenario: event " + std::to_string(events_.size() + 1) + ": " + error.what());
        }
    }
    if (!progress_.events.empty()) return;
    for (const Event& event : events_) progress_.events.push_back({.at = event.at});
}

Scenario::Event Scenario::event_of(const Json& json) const {
    allow_keys(json, {"at", "every", "when", "after", "again", "do"});
    if (json.contains("again") && !json.contains("when")) throw std::invalid_argument("\"again\" is for \"when\"");
    if (json.contains("at") + json.contains("every") + json.contains("when") != 1)
        throw std::invalid_argument("needs one of \"at\", \"every\" and \"when\"");
    Event event;
    event.every = number(json, "every", 0, 0.005);
    event.at = number(json, "at", event.every, 0);
    event.after = number(json, "after", 0, 0);
    if (const Json* when = json.find("when")) read_condition(*when, event);
    if (const Json* again = json.find("again")) {
        if (!again->is_boolean()) throw std::invalid_argument("\"again\" is neither true nor false");
        event.again = again->boolean();
    }
    if (!json.contains("do")) throw std::invalid_argument("needs \"do\", a list of requests");
    read_requests(json.at("do"), event);
    return event;
}

// {"joint": 1, "above": 45}, {"joint": 2, "below": 0}, {"output": 3, "is": 1}
void Scenario::read_condition(const Json& when, Event& event) const {
    const bool of_joint = when.is_object() && when.contains("joint");
    allow_keys(when, of_joint ? Keys{"joint", "above", "below"} : Keys{"output", "is"});
    event.cause = of_joint ? Cause::kJoint : Cause::kOutput;
    const double which = number(when, of_joint ? "joint" : "output", 0, 1);
    event.number = static_cast<size_t>(which);
    const size_t count = of_joint ? parts_.arm.joint_count() : parts_.ports.digital.size();
    if (event.number < 1 || !(which <= static_cast<double>(count)) || which != std::floor(which))
        throw std::invalid_argument("\"when\" names no joint and no output of this arm");
    event.low = of_joint ? number(when, "above", -kEver, -kEver) : number(when, "is", 1, 0);
    event.high = of_joint ? number(when, "below", kEver, -kEver) : event.low;
    if (of_joint && !when.contains("above") && !when.contains("below"))
        throw std::invalid_argument("\"joint\" needs \"above\" or \"below\"");
    if (event.low > event.high) throw std::invalid_argument("no angle is above \"above\" and below \"below\"");
    if (!of_joint && event.low != 0 && event.low != 1) throw std::invalid_argument("\"is\" is 0 or 1");
}

void Scenario::read_requests(const Json& requests, Event& event) const {
    if (!requests.is_array()) throw std::invalid_argument("\"do\" is no list of requests");
    for (const Json& request : requests.items()) {
        const Json* command = request.is_object() ? request.find("command") : nullptr;
        if (!command || !command->is_string() || !parts_.dispatcher.commands.find(command->text()))
            throw std::invalid_argument("unknown request " + request.dump());
        event.requests.push_back(request.dump());
    }
}

bool Scenario::holds(const Event& event) const {
    const double value = event.cause == Cause::kJoint ? parts_.arm.joints()[event.number - 1]
                                                      : parts_.ports.digital[event.number - 1].state;
    return value >= event.low && value <= event.high;
}

void Scenario::note_cause(const Event& event, Progress::Event& progress, double now) const {
    if (event.cause == Cause::kTime) {
        if (progress.is_spent || now < progress.at) return;
        progress.is_spent = event.every == 0;
        progress.at += event.every;
    } else {
        const bool was_true = std::exchange(progress.was_true, holds(event));
        if (progress.is_spent || was_true || !progress.was_true) return;
        progress.is_spent = !event.again;
    }
    progress.due.push_back(now + event.after);
}

bool Scenario::waits() const {
    return std::any_of(progress_.events.begin(), progress_.events.end(),
                       [](const Progress::Event& event) { return !event.due.empty(); });
}

void Scenario::step(int milliseconds) {
    progress_.milliseconds += milliseconds;
    const double now = static_cast<double>(progress_.milliseconds) / 1000;
    for (size_t i = 0; i < events_.size(); ++i) {
        std::vector<double>& due = progress_.events[i].due;
        note_cause(events_[i], progress_.events[i], now);
        while (!due.empty() && due.front() <= now) {
            due.erase(due.begin());
            for (const std::string& request : events_[i].requests) parts_.dispatcher.handle(request, client_);
        }
    }
}

}  // namespace sim
