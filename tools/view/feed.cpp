#include "view/feed.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>

namespace zk::view {
namespace {

void append(std::string& stream, std::string_view name, const std::string& text, Feed::Number number) {
    stream.append("event: ").append(name).append("\nid: ").append(std::to_string(number));
    stream.append("\ndata: ").append(text).append("\n\n");
}

}  // namespace

void Feed::set_fact(std::size_t arm, std::string_view name, std::string text) {
    const std::lock_guard<std::mutex> guard(lock_);
    Event& fact = facts_[{arm, std::string(name)}];
    if (fact.text == text) return;
    fact = {++newest_, std::move(text)};
    news_.notify_all();
}

void Feed::add_state(std::size_t arm, std::string text) {
    const std::lock_guard<std::mutex> guard(lock_);
    States& states = states_[arm];
    states.ring[states.next++ % states.ring.size()] = {++newest_, std::move(text)};
    news_.notify_all();
}

void Feed::end() {
    const std::lock_guard<std::mutex> guard(lock_);
    ended_ = true;
    news_.notify_all();
}

bool Feed::ended() const {
    const std::lock_guard<std::mutex> guard(lock_);
    return ended_;
}

std::string Feed::next(Number& last, bool with_states) {
    std::unique_lock<std::mutex> guard(lock_);
    news_.wait_for(guard, std::chrono::seconds(1), [&] { return ended_ || newest_ != last; });
    std::string stream;
    for (const auto& [key, fact] : facts_) {
        if (fact.number > last) append(stream, key.second, fact.text, fact.number);
    }
    for (const States& states : states_) {
        for (std::size_t i = 0; with_states && i < states.ring.size(); ++i) {
            const Event& event = states.ring[(states.next + i) % states.ring.size()];
            if (event.number > last) append(stream, "state", event.text, event.number);
        }
    }
    last = newest_;
    return stream;
}

}  // namespace zk::view
