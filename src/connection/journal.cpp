#include "connection/journal.h"

#include <atomic>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include "connection/black_box.h"
#include "connection/line.h"

namespace zk {
namespace {

// Never destroyed: the library's threads run to the end of the process.
auto& log_callback = *new Callback<ZK_LogCallback>;
auto& connection_callback = *new Callback<ZK_ConnectionCallback>;
std::atomic<int> level_in_use{0};

// Calls a callback for a connection, whose close waits for its end.
template <class Callback, class... Arguments>
void report(Callback& callback, ArmSocket arm, Arguments... arguments) {
    if (!is_handle(arm)) return callback.call(arguments...);
    Line* line = Line::of(arm);
    if (!line) return;
    ++line->reports;
    if (line->handle() == arm) callback.call(arguments...);
    --line->reports;
}

const char* name_of(ZK_ConnectionState state) {
    return state == ZK_CONNECTION_UP ? "up" : state == ZK_CONNECTION_LOST ? "lost" : "closed";
}

}  // namespace

void set_log(ZK_LogCallback callback, void* context, ZK_LogLevel level) {
    level_in_use.store(callback ? level : 0, std::memory_order_relaxed);
    log_callback.set(callback, context);
}

bool is_logged(ZK_LogLevel level) { return level <= level_in_use.load(std::memory_order_relaxed); }

void log(ZK_LogLevel level, ArmSocket arm, const char* format, ...) {
    if (!is_logged(level) && !black_box::is_on()) return;
    char text[256];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    black_box::add(black_box::Kind::kEvent, arm, text, std::strlen(text));
    if (is_logged(level)) report(log_callback, arm, level, arm, static_cast<const char*>(text));
}

void log_frame(ArmSocket arm, Way way, const char* bytes, size_t size) {
    if (black_box::is_on()) {
        const auto kind = way == Way::kSent ? black_box::Kind::kSent : black_box::Kind::kReceived;
        arm == 0 ? black_box::add_start(kind, bytes, size) : black_box::add(kind, arm, bytes, size);
    }
    if (!is_logged(ZK_LOG_FRAMES)) return;
    std::string text = way == Way::kSent ? "> " : "< ";
    for (size_t i = 0; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (std::isprint(byte) && (byte != ' ' || text.back() != ' ')) text += bytes[i];
        if (std::isspace(byte) && text.back() != ' ') text += ' ';
    }
    if (text.back() == ' ' && text.size() > 2) text.pop_back();
    report(log_callback, arm, ZK_LOG_FRAMES, arm, text.c_str());
}

void set_connection_callback(ZK_ConnectionCallback callback, void* context) {
    connection_callback.set(callback, context);
}

void report_change(ArmSocket arm, ZK_ConnectionState state, const char* cause) {
    const ArmSocket open = state == ZK_CONNECTION_UP ? arm : 0;  // a close waits for a loss, or reports it
    if (is_logged(ZK_LOG_EVENTS) || black_box::is_on()) {
        const std::string text = std::string(name_of(state)) + (*cause ? ": " : "") + cause;
        black_box::add(black_box::Kind::kEvent, arm, text.c_str(), text.size());
        if (state == ZK_CONNECTION_LOST) black_box::keep("lost");
        if (is_logged(ZK_LOG_EVENTS)) report(log_callback, open, ZK_LOG_EVENTS, arm, text.c_str());
    }
    report(connection_callback, open, arm, state, cause);
}

bool is_reporting() { return log_callback.is_inside() || connection_callback.is_inside(); }

}  // namespace zk
