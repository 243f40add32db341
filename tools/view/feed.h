// What the viewers get: facts, of which the last is kept, and states, of which the latest are kept. A viewer that does
// not keep up misses states; nothing waits for it, and nothing grows.
#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zk::view {

class Feed {
 public:
    using Number = std::uint64_t;

    explicit Feed(std::size_t arms) : states_(arms) {}

    // Replaces the fact of this name; one that has not changed is not sent again. text: JSON.
    void set_fact(std::size_t arm, std::string_view name, std::string text);
    void add_state(std::size_t arm, std::string text);

    // Ends the waits of all viewers, for good.
    void end();
    bool ended() const;

    // The events after `last`, as text of the stream of events, and the number of the newest. Waits for one, at most a
    // second. with_states false leaves states out, which are then missed.
    std::string next(Number& last, bool with_states);

 private:
    struct Event {
        Number number = 0;
        std::string text;
    };
    using Ring = std::array<Event, 64>;
    struct States {
        Ring ring;
        std::size_t next = 0;
    };

    mutable std::mutex lock_;
    std::condition_variable news_;
    Number newest_ = 0;
    bool ended_ = false;
    std::map<std::pair<std::size_t, std::string>, Event, std::less<>> facts_;
    std::vector<States> states_;
};

}  // namespace zk::view
