// The parts of a route. A row of the table has the literals that identify a message, its code and its handler. Most
// handlers parse the message into the payload of a mailbox and raise its count.
#pragma once

#include <array>
#include <tuple>
#include <type_traits>

#include "connection/exchange.h"

namespace zk {

// A null message clears the mailbox: a new connection has the slot, and replies to the old one no longer count.
using Handler = void (*)(int slot, char* message);

struct Route {
    std::array<const char*, 4> literals;
    int code;
    Handler handle;
};

// Ignores the message: no mailbox waits for it, and replies do not reach the pending list.
inline void dropped(int, char*) {}

template <class T>
T* address(T& value) {
    return &value;
}
template <class T, size_t size>
T* address(T (&values)[size]) {
    return values;
}

// The fields of a record that the parser of its reply fills, in the order of the parser's parameters.
template <class Record>
constexpr std::tuple<> kPayload;

// A reply, parsed into a copy of the slot's record, which `publish` then stores. Parsers of joint arrays take the
// socket as first argument.
template <auto& table, auto parse>
class Parsed {
 public:
    using Record = std::remove_reference_t<decltype(table[0])>;

    Parsed(int slot, const char* message) : slot_(slot) {
        mailbox_.copy(slot, &record_);
        status_ =
            std::apply([&](auto... fields) { return run(message, address(record_.*fields)...); }, kPayload<Record>);
    }
    int publish() {
        mailbox_.fill(slot_, &record_);
        mailbox_.finish(slot_, status_);
        return status_;
    }
    const Record& record() const { return record_; }

 private:
    template <class... Outputs>
    int run(const char* message, Outputs*... outputs) const {
        if constexpr (std::is_invocable_v<decltype(parse), const char*, Outputs*...>) {
            return parse(message, outputs...);
        } else {
            return parse(read(SockInfo[slot_].socket), message, outputs...);
        }
    }

    Mailbox mailbox_{table};
    Record record_;
    int slot_;
    int status_;
};

// How a reply changes the count of its mailbox: kSet sets it to 1, kAdd adds 1. kSetFirst and kAddFirst do so before
// the result is stored, so a caller that polls in between takes the previous result.
enum class Counter { kSet, kAdd, kSetFirst, kAddFirst };

// `apply` gets the record of a good reply. Without ...First no caller can take it from the mailbox before.
template <Counter counter, auto& table, auto parse, class Apply>
void store_and_apply(int slot, char* message, Apply apply) {
    constexpr bool adds = counter == Counter::kAdd || counter == Counter::kAddFirst;
    constexpr bool first = counter == Counter::kSetFirst || counter == Counter::kAddFirst;
    Mailbox mailbox(table);
    if (!message) return mailbox.clear(slot);
    Parsed<table, parse> reply(slot, message);
    if (first) mailbox.raise(slot, adds);
    if (reply.publish() == ZK_OK) apply(reply.record());
    if (!first) mailbox.raise(slot, adds);
}

template <Counter counter, auto& table, auto parse>
void store(int slot, char* message) {
    store_and_apply<counter, table, parse>(slot, message, [](const auto&) {});
}

}  // namespace zk
