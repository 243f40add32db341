// The guards of commands. The first one that fails sets the status, and nothing is sent.
#pragma once

#include <type_traits>

#include "connection/wait.h"
#include "zk/status.h"

namespace zk {

constexpr int32_t kPauseMs = 20;  // the pause before some commands: one transmit period

template <class... Arguments>
bool any_null(Arguments... arguments) {
    const auto is_null = [](auto argument) {
        if constexpr (std::is_pointer_v<decltype(argument)>) return argument == nullptr;
        return false;
    };
    return (is_null(arguments) || ...);
}

// Not during a file transfer.
template <class Form, class... Arguments>
int guarded(Form form, Arguments... arguments) {
    return sending_file() ? int(ZK_SENDING_FILE) : form(arguments...);
}

// Not during a file transfer, and not with a null pointer.
template <class Form, class... Arguments>
int checked(Form form, Arguments... arguments) {
    if (sending_file()) return ZK_SENDING_FILE;
    if (any_null(arguments...)) return ZK_BAD_ARGUMENT;
    return form(arguments...);
}

// Runs a blocking form with SuspendQueue raised.
template <class Form, class... Arguments>
int suspended(Form form, Arguments... arguments) {
    write(SuspendQueue, 1);
    const int status = form(arguments...);
    write(SuspendQueue, 0);
    return status;
}

// Sleeps as a part of the call. Returns what ends a call on a connection of ZK_Connect.
inline int sleep_before(const Wait& call, int32_t milliseconds) {
    pause(call, milliseconds);
    return is_handle(call.socket()) ? call.status() : int(ZK_OK);
}

template <class... Others>
ArmSocket first_of(ArmSocket socket, Others...) {
    return socket;
}

// Checks, sleeps, then runs the blocking form with SuspendQueue raised or the other form without.
template <class Block, class NonBlock, class... Arguments>
int after_20_ms(bool block, Block block_form, NonBlock nonblock_form, Arguments... arguments) {
    if (sending_file()) return ZK_SENDING_FILE;
    if (any_null(arguments...)) return ZK_BAD_ARGUMENT;
    const Wait call(first_of(arguments...));
    if (const int status = sleep_before(call, kPauseMs)) return status;
    return block ? suspended(block_form, arguments...) : nonblock_form(arguments...);
}

template <class Form, class... Arguments>
int query_after_20_ms(Form form, Arguments... arguments) {
    return after_20_ms(true, form, form, arguments...);
}

// Checks, sleeps two milliseconds, then runs the blocking form with SuspendQueue raised.
template <class Form, class... Arguments>
int after_2_ms(Form form, Arguments... arguments) {
    if (sending_file()) return ZK_SENDING_FILE;
    if (any_null(arguments...)) return ZK_BAD_ARGUMENT;
    const Wait call(first_of(arguments...));
    if (const int status = sleep_before(call, 2)) return status;
    return suspended(form, arguments...);
}

// For the calls that check the socket and the library first.
inline int needs_connection(ArmSocket socket) {
    if (socket < 1) return ZK_NOT_CONNECTED;
    return read(m_nThreadIsRun) < 1 ? int(ZK_NOT_RUNNING) : int(ZK_OK);
}

}  // namespace zk
