// What the library reports to the application: the log, and the changes of connections. No lock is held during a call
// into the application. Of a connection that is closed nothing but its end is reported.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>

#include "zk/control.h"

namespace zk {

// A callback that several threads may call at once. After `set`, the one before does not run any more, unless `set` is
// called inside it.
template <class Function>
class Callback {
 public:
    void set(Function function, void* context) {
        std::unique_lock guard(lock_);
        const std::shared_ptr<Entry> before = std::exchange(entry_, std::make_shared<Entry>(Entry{function, context}));
        if (depth == 0) left_.wait(guard, [&] { return before->running == 0; });
    }

    template <class... Arguments>
    void call(Arguments... arguments) {
        std::unique_lock guard(lock_);
        const std::shared_ptr<Entry> entry = entry_;
        if (!entry->function) return;
        ++entry->running;
        guard.unlock();
        ++depth;
        entry->function(entry->context, arguments...);
        --depth;
        guard.lock();
        if (--entry->running == 0) left_.notify_all();
    }

    bool is_inside() const { return depth > 0; }

 private:
    struct Entry {
        Function function = nullptr;
        void* context = nullptr;
        int running = 0;
    };
    static inline thread_local int depth = 0;  // calls of this kind of callback that this thread is in

    std::mutex lock_;
    std::condition_variable left_;
    std::shared_ptr<Entry> entry_ = std::make_shared<Entry>();
};

void set_log(ZK_LogCallback callback, void* context, ZK_LogLevel level);
bool is_logged(ZK_LogLevel level);
// One line; formatted only when the level is logged.
[[gnu::format(printf, 3, 4)]] void log(ZK_LogLevel level, ArmSocket arm, const char* format, ...);
// A frame or a message, its line ends and indentation as blanks. arm: 0 during a start-up, which has no handle yet.
enum class Way { kSent, kReceived };
void log_frame(ArmSocket arm, Way way, const char* bytes, size_t size);

void set_connection_callback(ZK_ConnectionCallback callback, void* context);
// Also logs the change.
void report_change(ArmSocket arm, ZK_ConnectionState state, const char* cause);

// Whether this thread is inside one of these callbacks.
bool is_reporting();

}  // namespace zk
