/*
 * Functions that the library calls: at changes of connections, for its log, with the reports of streamed motion. C++17,
 * header only.
 *
 *     zk::Subscription log = zk::on_log(ZK_LOG_EVENTS, [](const zk::LogLine& line) { std::clog << line.text << '\n';
 * });
 *
 * A function is called until its Subscription ends; any number may be subscribed. One call of a function runs at a
 * time. An exception does not leave it: the Subscription keeps the first. docs/threads.md says on which thread each
 * runs and what it may call. These functions take the place of callbacks that were set in C.
 */
#ifndef ZK_CALLBACKS_HPP
#define ZK_CALLBACKS_HPP

#include <algorithm>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "zk/control.h"

namespace zk {

/* A line of the log; the text is valid during the call. arm: 0 for what concerns no connection. */
struct LogLine {
    ZK_LogLevel level;
    ArmSocket arm;
    const char* text;
};

/* A change of a connection; the cause is valid during the call. */
struct ConnectionChange {
    ArmSocket arm;
    ZK_ConnectionState state;
    const char* cause;
};

namespace listening {

/* A function that is subscribed. */
class Listener {
 public:
    virtual ~Listener() = default;
    virtual void end() = 0;

    std::exception_ptr failure() {
        const std::lock_guard<std::recursive_mutex> guard(busy_);
        return failure_;
    }

 protected:
    std::recursive_mutex busy_; /* held by the call, which may end its own subscription */
    std::exception_ptr failure_;
};

/* How many callbacks run on this thread. */
inline int& depth() {
    thread_local int depth = 0;
    return depth;
}

/* The functions for one kind of event. Source::install(levels) sets the callback of the C interface; `finest` is the
 * finest level asked for, 0 without a function. */
template <class Event, class Source>
class Listeners {
 public:
    static std::shared_ptr<Listener> add(std::function<void(const Event&)> function, int level = 1) {
        auto entry = std::make_shared<Entry>(std::move(function), level);
        {
            const std::lock_guard<std::mutex> guard(shared().lock);
            shared().entries.push_back(entry);
        }
        install();
        return entry;
    }

    static void tell(const Event& event, int level = 1) noexcept {
        ++depth();
        try {
            std::vector<std::shared_ptr<Entry>> entries;
            {
                const std::lock_guard<std::mutex> guard(shared().lock);
                entries = shared().entries;
            }
            for (const auto& entry : entries) entry->tell(event, level);
        } catch (...) { /* no memory for the list: the event is lost */
        }
        --depth();
    }

 private:
    class Entry : public Listener {
     public:
        Entry(std::function<void(const Event&)> function, int level) : function_(std::move(function)), level_(level) {}

        void tell(const Event& event, int level) {
            const std::lock_guard<std::recursive_mutex> guard(busy_);
            if (ended_ || level > level_) return;
            try {
                function_(event);
            } catch (...) {
                if (!failure_) failure_ = std::current_exception();
            }
        }
        void end() override {
            {
                const std::lock_guard<std::mutex> guard(shared().lock);
                auto& entries = shared().entries;
                entries.erase(std::remove_if(entries.begin(), entries.end(),
                                             [this](const auto& entry) { return entry.get() == this; }),
                              entries.end());
            }
            {
                const std::lock_guard<std::recursive_mutex> guard(busy_);
                ended_ = true;
            }
            install();
        }
        int level() const { return level_; }

     private:
        std::function<void(const Event&)> function_;
        int level_;
        bool ended_ = false;
    };

    struct Shared {
        std::mutex lock, installing;
        std::vector<std::shared_ptr<Entry>> entries;
    };
    /* Never destroyed: the library's threads run until the process ends. */
    static Shared& shared() {
        static Shared& shared = *new Shared;
        return shared;
    }

    /* The C interface waits for running callbacks, so a callback itself leaves its settings alone. */
    static void install() {
        if (depth() > 0) return;
        const std::lock_guard<std::mutex> one_at_a_time(shared().installing);
        int finest = 0;
        {
            const std::lock_guard<std::mutex> guard(shared().lock);
            for (const auto& entry : shared().entries) finest = std::max(finest, entry->level());
        }
        Source::install(finest);
    }
};

struct LogSource;
using LogListeners = Listeners<LogLine, LogSource>;
struct LogSource {
    static void install(int finest) {
        ZK_Set_Log(finest > 0 ? take : nullptr, nullptr, static_cast<ZK_LogLevel>(std::max(finest, 1)));
    }
    static void take(void*, ZK_LogLevel level, ArmSocket arm, const char* text) {
        LogListeners::tell({level, arm, text}, level);
    }
};

struct ConnectionSource;
using ConnectionListeners = Listeners<ConnectionChange, ConnectionSource>;
struct ConnectionSource {
    static void install(int finest) { ZK_Set_Connection_Callback(finest > 0 ? take : nullptr, nullptr); }
    static void take(void*, ArmSocket arm, ZK_ConnectionState state, const char* cause) {
        ConnectionListeners::tell({arm, state, cause});
    }
};

/* The library reads this callback without a lock, and has no call that changes it alone. */
struct ReportSource;
using ReportListeners = Listeners<ArmMotionReport, ReportSource>;
struct ReportSource {
    static void install(int finest) {
        __atomic_store_n(&callback1, finest > 0 ? take : MotionReportCallback(), __ATOMIC_RELEASE);
    }
    static void take(ArmMotionReport report) { ReportListeners::tell(report); }
};

}  // namespace listening

/* Keeps a function subscribed as long as it lives. When it has ended the function does not run any more, unless it ends
 * inside the function. Do not end it under a lock that the function takes. */
class [[nodiscard]] Subscription {
 public:
    Subscription() = default;
    explicit Subscription(std::shared_ptr<listening::Listener> subscribed) : listener_(std::move(subscribed)) {}
    Subscription(Subscription&&) = default;
    Subscription& operator=(Subscription&& other) {
        end();
        listener_ = std::move(other.listener_);
        return *this;
    }
    ~Subscription() { end(); }

    void end() {
        if (const auto listener = std::move(listener_)) listener->end();
    }

    /* The first exception of the function; null for none. */
    std::exception_ptr failure() const { return listener_ ? listener_->failure() : nullptr; }

 private:
    std::shared_ptr<listening::Listener> listener_;
};

/* The lines of the library's log, up to a level. */
inline Subscription on_log(ZK_LogLevel level, std::function<void(const LogLine&)> function) {
    return Subscription(listening::LogListeners::add(std::move(function), level));
}

/* Changes of connections of ZK_Connect: up, lost, closed. */
inline Subscription on_connection(std::function<void(const ConnectionChange&)> function) {
    return Subscription(listening::ConnectionListeners::add(std::move(function)));
}

/* What became of streamed set-points, of all arms. */
inline Subscription on_motion_report(std::function<void(const ArmMotionReport&)> function) {
    return Subscription(listening::ReportListeners::add(std::move(function)));
}

}  // namespace zk

#endif
