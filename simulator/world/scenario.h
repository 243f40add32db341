#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "wire/json.h"

namespace sim {

class Arm;
class Client;
class Dispatcher;
struct Ports;

// What happens to the arm and around it without a client: events, each with requests that it makes.
class Scenario {
 public:
    // How far it has come.
    struct Progress {
        struct Event {
            double at = 0;  // seconds, when its time comes next
            bool was_true = false;
            bool is_spent = false;
            std::vector<double> due = {};
        };
        int64_t milliseconds = 0;
        std::vector<Event> events = {};  // empty: at the start
    };

    struct Parts {
        const Arm& arm;
        const Ports& ports;
        const Dispatcher& dispatcher;
    };
    // The "events" of a scenario, or nothing, from where it was before. Throws std::invalid_argument that names the
    // event that is wrong.
    Scenario(const Json& events, const Parts& parts, Progress progress);

    // Passes time, and makes the requests whose time has come.
    void step(int milliseconds);

    const Progress& progress() const { return progress_; }

    // True while requests wait for the time after their cause.
    bool waits() const;

 private:
    enum class Cause { kTime, kJoint, kOutput };

    struct Event {
        Cause cause = Cause::kTime;
        double at = 0;     // seconds
        double every = 0;  // seconds, 0: once
        size_t number = 0;
        double low = 0, high = 0;  // the range in which a joint or an output is
        double after = 0;          // seconds between the cause and the requests
        bool again = false;        // each time that the cause comes anew
        std::vector<std::string> requests = {};
    };

    Event event_of(const Json& json) const;
    void read_condition(const Json& when, Event& event) const;
    void read_requests(const Json& requests, Event& event) const;
    bool holds(const Event& event) const;
    void note_cause(const Event& event, Progress::Event& progress, double now) const;

    Parts parts_;
    std::vector<Event> events_;
    Progress progress_;
    std::shared_ptr<Client> client_;
};

}  // namespace sim
