// What a route is made of. A row of the table names the literals that a message is known by, its code, and what becomes
// of it: a parser fills the payload of a mailbox, and the mailbox's count rises.
#pragma once

#include <array>
#include <type_traits>

#include "connection/exchange.h"

namespace zk {

// Without a message a handler forgets: a new connection has taken the slot, and what the last one left counts no
// longer.
using Handler = void (*)(int slot, char* message);

struct Route {
    std::array<const char*, 4> literals;
    int code;
    Handler handle;
};

// Nobody waits for the message, or only on the pending list, which it does not reach.
inline void dropped(int, char*) {}

template <class T>
T* address(T& value) {
    return &value;
}
template <class T, size_t size>
T* address(T (&values)[size]) {
    return values;
}

// A reply taken apart into a copy of the slot's record, ready to be published there. Parsers of joint arrays take the
// socket first.
template <auto& table, auto parse, auto... fields>
class Parsed {
 public:
    Parsed(int slot, const char* message) : slot_(slot) {
        mailbox_.copy(slot, &record_);
        if constexpr (std::is_invocable_v<decltype(parse), const char*, decltype(address(record_.*fields))...>) {
            status_ = parse(message, address(record_.*fields)...);
        } else {
            status_ = parse(read(SockInfo[slot].socket), message, address(record_.*fields)...);
        }
    }
    int publish() {
        mailbox_.fill(slot_, &record_);
        mailbox_.finish(slot_, status_);
        return status_;
    }
    const auto& record() const { return record_; }

 private:
    Mailbox mailbox_{table};
    std::remove_reference_t<decltype(table[0])> record_;
    int slot_;
    int status_;
};

// The rules of the counter: `set` makes it 1, `add` raises it by 1; with `first` it rises before the result is there,
// so that a caller polling at that very moment may take the former one.
template <auto& table, auto parse, auto... fields>
void set(int slot, char* message) {
    if (!message) return Mailbox(table).clear(slot);
    Parsed<table, parse, fields...>(slot, message).publish();
    Mailbox(table).raise(slot, false);
}

template <auto& table, auto parse, auto... fields>
void add(int slot, char* message) {
    if (!message) return Mailbox(table).clear(slot);
    Parsed<table, parse, fields...>(slot, message).publish();
    Mailbox(table).raise(slot, true);
}

// What a good reply tells goes elsewhere too, before anybody finds it in the mailbox.
template <auto& table, auto parse, auto... fields>
void add_and_apply(int slot, char* message, auto apply) {
    if (!message) return Mailbox(table).clear(slot);
    Parsed<table, parse, fields...> reply(slot, message);
    if (reply.publish() == ZK_OK) apply(reply.record());
    Mailbox(table).raise(slot, true);
}

template <auto& table, auto parse, auto... fields>
void set_first(int slot, char* message) {
    if (!message) return Mailbox(table).clear(slot);
    Parsed<table, parse, fields...> reply(slot, message);
    Mailbox(table).raise(slot, false);
    reply.publish();
}

template <auto& table, auto parse, auto... fields>
void add_first(int slot, char* message) {
    if (!message) return Mailbox(table).clear(slot);
    Parsed<table, parse, fields...> reply(slot, message);
    Mailbox(table).raise(slot, true);
    reply.publish();
}

}  // namespace zk
