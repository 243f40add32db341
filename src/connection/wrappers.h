// The guards that stand before a command's forms, by name. The first that hits decides, and nothing is sent then.
#pragma once

#include <type_traits>

#include "connection/slots.h"
#include "zk/status.h"

namespace zk {

constexpr int32_t kPauseMs = 20;  // a pause before some commands, a transmit period long

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

// The same, and no pointer may be null.
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

// Checked, then a pause, then the blocking form with SuspendQueue raised, or the other without.
template <class Block, class NonBlock, class... Arguments>
int after_20_ms(bool block, Block block_form, NonBlock nonblock_form, Arguments... arguments) {
    if (sending_file()) return ZK_SENDING_FILE;
    if (any_null(arguments...)) return ZK_BAD_ARGUMENT;
    sleep_cp(kPauseMs);
    return block ? suspended(block_form, arguments...) : nonblock_form(arguments...);
}

template <class Form, class... Arguments>
int query_after_20_ms(Form form, Arguments... arguments) {
    return after_20_ms(true, form, form, arguments...);
}

// Checked, then a pause of two milliseconds and the blocking form with SuspendQueue raised.
template <class Form, class... Arguments>
int after_2_ms(Form form, Arguments... arguments) {
    if (sending_file()) return ZK_SENDING_FILE;
    if (any_null(arguments...)) return ZK_BAD_ARGUMENT;
    sleep_cp(2);
    return suspended(form, arguments...);
}

// A live connection, in the calls that ask for one.
inline int needs_connection(ArmSocket socket) {
    if (socket < 1) return ZK_NOT_CONNECTED;
    return read(m_nThreadIsRun) < 1 ? int(ZK_NOT_RUNNING) : int(ZK_OK);
}

}  // namespace zk
