// The parts of a route. A row of the table names the literals that identify a message, its code and its handler: mostly
// a parser fills the payload of a mailbox, and the mailbox's count rises.
#pragma once

#include <array>
#include <tuple>
#include <type_traits>

#include "connection/exchange.h"

namespace zk {

// Without a message a handler clears its mailbox: a new connection has taken the slot, and replies to the old one no
// longer count.
using Handler = void (*)(int slot, char* message);

struct Route {
    std::array<const char*, 4> literals;
    int code;
    Handler handle;
};

// No mailbox waits for the message, only perhaps the pending list, which it does not reach.
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

// A reply parsed into a copy of the slot's record, ready to be published there. Parsers of joint arrays take the socket
// first.
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

// What a reply does to the count of its mailbox: set it to 1, or raise it by 1. With ...First the count rises before
// the result is stored, so a caller that polls at that very moment may take the previous result.
enum class Counter { kSet, kAdd, kSetFirst, kAddFirst };

// `apply` gets the record of a good reply before any caller can take it from the mailbox.
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
