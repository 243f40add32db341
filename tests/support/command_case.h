// A command as one row: its call, the request on the wire, the controller's reply, the status and the outputs.
#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/arm.h"
#include "support/outputs.h"
#include "zk/mailboxes.h"

namespace zk::test {

// A command of whatever parameters. What calls it knows them: that is one small function for each list of parameters,
// where a std::function is ten for each command.
using AnyCommand = void (*)();

// A call of the command with null for one of its pointers.
struct NullCall {
    int operator()(ArmSocket arm) const { return call(command, arm, null); }

    std::string name;
    AnyCommand command;
    int (*call)(AnyCommand command, ArmSocket arm, size_t null);
    size_t null = 0;
};

// A value for a parameter of a command; a pointer that is not to be null points to zeros.
template <class Parameter>
Parameter argument(bool null) {
    if constexpr (std::is_pointer_v<Parameter>) {
        alignas(8) static char zeros[4096];
        return null ? nullptr : reinterpret_cast<Parameter>(zeros);
    } else {
        return Parameter{};
    }
}

template <class... Parameters>
struct With {
    template <size_t... at>
    static int null_at(AnyCommand command, ArmSocket arm, size_t null, std::index_sequence<at...>) {
        return reinterpret_cast<int (*)(ArmSocket, Parameters...)>(command)(arm, argument<Parameters>(at == null)...);
    }
    static int null(AnyCommand command, ArmSocket arm, size_t null) {
        return null_at(command, arm, null, std::index_sequence_for<Parameters...>());
    }
};

// One call for each pointer of a command.
std::vector<NullCall> nulls(const NullCall& call, std::initializer_list<bool> pointers);
template <class... Parameters>
std::vector<NullCall> nulls(const char* name, int (*command)(ArmSocket, Parameters...)) {
    return nulls({name, reinterpret_cast<AnyCommand>(command), With<Parameters...>::null},
                 {std::is_pointer_v<Parameters>...});
}

// A call of a command, which may report what it wrote through its pointers.
class Call {
 public:
    using Plain = int (*)(ArmSocket);
    using Reporting = int (*)(ArmSocket, std::string& outputs);
    using Function = std::function<int(ArmSocket, std::string& outputs)>;

    Call(Plain function, std::vector<NullCall> null_calls = {});
    Call(Reporting function) : call_(function) {}
    Call(Function function, std::vector<NullCall> null_calls = {});
    template <class Lambda, std::enable_if_t<std::is_class_v<Lambda>, int> = 0>
    Call(Lambda lambda, std::vector<NullCall> null_calls = {}) : Call(erased(lambda), std::move(null_calls)) {}

    int operator()(ArmSocket arm, std::string& outputs) const { return call_(arm, outputs); }

    std::vector<NullCall> with_nulls;

 private:
    template <class Lambda>
    static auto erased(Lambda lambda) {
        if constexpr (std::is_convertible_v<Lambda, Plain>) {
            return Plain(lambda);
        } else if constexpr (std::is_convertible_v<Lambda, Reporting>) {
            return Function(Reporting(lambda));
        } else if constexpr (std::is_invocable_v<Lambda, ArmSocket>) {
            return Function([lambda](ArmSocket arm, std::string&) { return lambda(arm); });
        } else {
            return Function(std::move(lambda));
        }
    }

    Function call_;
};

// The mailbox record of the first connection, if the command has one: count, result, payload.
struct FirstRecord {
    FirstRecord() = default;
    template <class Record>
    FirstRecord(Record (&table)[ZK_SLOTS]) : words(&table[0].count), size(sizeof(Record) / sizeof(int32_t)) {}

    int count() const { return shared(words[0]); }
    int result() const { return shared(words[1]); }
    void put(int count, int result);
    void fill(int value);

    int32_t* words = nullptr;
    size_t size = 0;
    int not_boolean = 11;  // the status of an acknowledgement that is neither true nor false; 0: it is not tested
};
inline FirstRecord or_8(FirstRecord mailbox) {
    mailbox.not_boolean = 8;
    return mailbox;
}
inline FirstRecord of_any_type(FirstRecord mailbox) {
    mailbox.not_boolean = 0;
    return mailbox;
}

// A request without its CRLF and the reply to it, "" for none. The request is written as on the wire, or on one line as
// {"command": "a", "b": [1, 2]}, or as the name of a command without keys.
struct Exchange {
    std::string wire;
    std::string reply;
};

// The statuses of a query when its reply lacks a key, when the key is null, and when its array of six or seven numbers
// is shorter or longer; 0: the reply is taken all the same.
struct Strictness {
    int missing = 9, wrong = 11, shorter = 10, longer = shorter;
};
struct Reading {
    Strictness of_most = {};
    std::map<std::string, Strictness> of = {};  // by path, as in "/arm_state/pose"
};

struct CommandCase {
    std::string name;
    Call call;
    std::string wire;
    std::string reply;
    int status = 0;
    int arm_mode = 65;
    std::string outputs = {};  // what the call writes through its pointers
    FirstRecord mailbox = {};
    Exchange then = {};        // the next exchange after a good first reply
    bool refusable = false;    // the same reply with false for true ends the call in 1
    bool adds = false;         // a second reply makes the mailbox's count 2
    bool takes_old = false;    // a reply from before the request is taken for its own
    bool wipes = false;        // the first connection's record is wiped after a query on any connection
    bool status_lost = false;  // the call does not return the status of the mailbox
    int limit = 60000;         // of waiting for a reply, ms

    Reading reading = {};

    template <class Value>
    CommandCase with(Value CommandCase::*member, Value value) const {
        CommandCase row = *this;
        row.*member = std::move(value);
        return row;
    }
    CommandCase followed_by(const Exchange& exchange) const { return with(&CommandCase::then, exchange); }
    CommandCase adding() const { return with(&CommandCase::adds, true); }
    CommandCase setting_the_count() const { return with(&CommandCase::adds, false); }
    CommandCase taking_old_replies() const { return with(&CommandCase::takes_old, true); }
    CommandCase clearing_old_replies() const { return with(&CommandCase::takes_old, false); }
    CommandCase wiping() const { return with(&CommandCase::wipes, true); }
    CommandCase with_the_status_of_another() const { return with(&CommandCase::status_lost, true); }
    CommandCase on(int mode) const { return with(&CommandCase::arm_mode, mode); }
    CommandCase returning(int other_status) const { return with(&CommandCase::status, other_status); }
    CommandCase reads(const Reading& as) const { return with(&CommandCase::reading, as); }
};

// Rows of the usual kinds. A non-blocking form queues its request and returns 0.
CommandCase queued(const std::string& name, Call call, const std::string& wire, int arm_mode = 65);
// A blocking form of a setter returns the status of its acknowledgement: a whole reply, or its key alone.
CommandCase acknowledged(const std::string& name, Call call, FirstRecord mailbox, const std::string& wire,
                         const std::string& reply);
// A query writes the reply's values to its outputs.
CommandCase answered(const std::string& name, Call call, FirstRecord mailbox, const std::string& wire,
                     const std::string& reply, const std::string& outputs);
// A command whose reply does not reach it.
CommandCase no_reply(const std::string& name, Call call, const std::string& wire, const std::string& reply);

// A query whose parameters are the socket and its outputs.
template <class... Outs>
Call asking(int (*query)(ArmSocket, Outs*...), const char* name = "") {
    const auto call = [query](ArmSocket arm, std::string& outputs) {
        return with_outputs<Outs...>(outputs, query, arm);
    };
    return {call, *name ? nulls(name, query) : std::vector<NullCall>()};
}

// Name and call of a row: CALL(Set_Joint_Err_Clear, (s, 3, true)), ASK(Get_Joint_Speed). A text before it makes a name
// for a second row of the same command.
#define CALL(command, arguments) \
#command, zk::test::Call(    \
                  +[](ArmSocket s) { return command arguments; }, zk::test::nulls(#command, command))
#define ASK(command) #command, asking(command, #command)

// The rows of a command's forms, called with the same arguments. SETTER: the plain name with either flag, _Block and
// _NonBlock; WAITING: the plain name without a flag and _Block; QUERY: the same two forms with their outputs and the
// words that follow, such as .wiping(); QUERY_BY: with other arguments, through `call`; NO_REPLY: as SETTER, for a
// reply that does not reach the caller; FOLLOWED: as SETTER, but the forms that do not wait may send another text, and
// the plain name goes on with `next`. _WITH: with words that follow the rows of an acknowledgement.
#define ZK_FORM(form, ...) \
    zk::test::Call(        \
        +[](ArmSocket s) { return form(s __VA_OPT__(, ) __VA_ARGS__); }, zk::test::nulls(#form, form))
#define ZK_UNWAITED(command, wire, ...)                                                     \
    queued("Unwaited_" #command, ZK_FORM(command, __VA_ARGS__ __VA_OPT__(, ) false), wire), \
        queued(#command "_NonBlock", ZK_FORM(command##_NonBlock, __VA_ARGS__), wire)
#define SETTER_WITH(words, command, mailbox, wire, reply, ...)                                              \
    acknowledged(#command, ZK_FORM(command, __VA_ARGS__ __VA_OPT__(, ) true), mailbox, wire, reply) words,  \
        acknowledged(#command "_Block", ZK_FORM(command##_Block, __VA_ARGS__), mailbox, wire, reply) words, \
        ZK_UNWAITED(command, wire, __VA_ARGS__)
#define SETTER(...) SETTER_WITH(, __VA_ARGS__)
#define WAITING_WITH(words, command, mailbox, wire, reply, ...)                        \
    acknowledged(#command, ZK_FORM(command, __VA_ARGS__), mailbox, wire, reply) words, \
        acknowledged(#command "_Block", ZK_FORM(command##_Block, __VA_ARGS__), mailbox, wire, reply) words
#define WAITING(...) WAITING_WITH(, __VA_ARGS__)
#define QUERY(command, ...) QUERY_BY(asking, command, __VA_ARGS__)
#define QUERY_BY(call, command, mailbox, wire, reply, outputs, ...)                                               \
    answered(#command, Call(call(command), nulls(#command, command)), mailbox, wire, reply, outputs) __VA_ARGS__, \
        answered(#command "_Block", call(command##_Block), mailbox, wire, reply, outputs) __VA_ARGS__
#define NO_REPLY(command, wire, reply, ...)                                              \
    no_reply(#command, ZK_FORM(command, __VA_ARGS__ __VA_OPT__(, ) true), wire, reply),  \
        no_reply(#command "_Block", ZK_FORM(command##_Block, __VA_ARGS__), wire, reply), \
        ZK_UNWAITED(command, wire, __VA_ARGS__)
#define FOLLOWED(command, mailbox, waited, unwaited, reply, next, ...)                                     \
    acknowledged(#command, ZK_FORM(command, __VA_ARGS__, true), mailbox, waited, reply).followed_by(next), \
        acknowledged(#command "_Block", ZK_FORM(command##_Block, __VA_ARGS__), mailbox, waited, reply),    \
        queued("Unwaited_" #command, ZK_FORM(command, __VA_ARGS__, false), unwaited).followed_by(next),    \
        queued(#command "_NonBlock", ZK_FORM(command##_NonBlock, __VA_ARGS__), unwaited)

inline std::ostream& operator<<(std::ostream& out, const CommandCase& row) { return out << row.name; }

// A request of one line as it is on the wire.
std::string formatted(const std::string& request);

// The name of a request's command.
std::string command_name(const std::string& wire);

// Runs a row against a controller of its own.
void run(const CommandCase& row);

// The plain names among the rows return 18 during a file transfer and send nothing.
void expect_nothing_during_a_file_transfer(const std::vector<CommandCase>& rows);

// Calls that return 19, or another status, and send nothing.
struct BadCall {
    std::string name;
    Call call;
};
void expect_nothing_sent(const std::vector<BadCall>& calls, int status = 19);

// Every pointer of the plain names among the rows that the library tests returns 19 for null, and sends nothing.
void expect_nulls_refused(const std::vector<CommandCase>& rows);

// The commands that a header of include/zk declares and no row is named after. Parsers are no commands.
std::string commands_without_row(const std::string& header, const std::vector<CommandCase>& rows);

}  // namespace zk::test
