#include "commands/drag_recording.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <deque>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>

#include "connection/journal.h"
#include "connection/shared_memory.h"
#include "zk/replies/file_transfer.h"

FILE* F_SaveDragTeach = nullptr;
int32_t drag_teach_count = 0;

namespace zk {
namespace {

constexpr size_t kMostWaiting = 100000;  // half an hour of points

struct Point {
    std::string text;
    int32_t announced;
};

// The writer alone closes the file; null in F_SaveDragTeach means that it is complete.
class Writer {
 public:
    bool open(const char* path) {
        if (!close()) return false;
        FILE* const file = std::fopen(path, "w+");
        const std::lock_guard guard(lock_);
        failed_ = false;
        write(F_SaveDragTeach, file);
        return file != nullptr;
    }

    bool close() {
        std::unique_lock guard(lock_);
        if (!read(F_SaveDragTeach)) return true;
        if (!start()) return false;
        closing_ = true;
        changed_.notify_all();
        return changed_.wait_for(guard, std::chrono::milliseconds(read(m_nOutTime)), [this] { return !closing_; });
    }

    void add(const char* text, int32_t announced) {
        if (!keep(text, announced)) report("the disk does not write, or no thread can be started; points are lost");
    }

 private:
    bool keep(const char* text, int32_t announced) {
        const std::lock_guard guard(lock_);
        if (!read(F_SaveDragTeach) || closing_) return true;
        if (waiting_.size() == kMostWaiting) return false;
        if (!start()) return false;
        waiting_.push_back({text, announced});
        changed_.notify_all();
        return true;
    }

    bool start() try {
        if (!started_) std::thread([this] { run(); }).detach();
        return started_ = true;
    } catch (const std::system_error&) {
        return false;
    }

    void run() {
        std::unique_lock guard(lock_);
        for (;;) {
            changed_.wait(guard, [this] { return closing_ || !waiting_.empty(); });
            FILE* file = read(F_SaveDragTeach);
            std::optional<Point> point;
            if (!waiting_.empty()) {
                point = std::move(waiting_.front());
                waiting_.pop_front();
            }
            guard.unlock();
            const bool is_last = point ? append(file, *point) : true;
            if (is_last && std::fclose(file) != 0) report(std::strerror(errno));
            guard.lock();
            if (!is_last) continue;
            waiting_.clear();
            closing_ = false;
            write<FILE*>(F_SaveDragTeach, nullptr, std::memory_order_release);
            changed_.notify_all();
        }
    }

    // Returns whether the point is the last one.
    bool append(FILE* file, const Point& point) {
        if (std::fprintf(file, "%s\n", point.text.c_str()) < 0 || std::fflush(file) != 0) report(std::strerror(errno));
        write(drag_teach_count, read(drag_teach_count) + 1);
        if (read(drag_teach_count) != point.announced) return false;
        write(drag_teach_count, 0);
        return true;
    }

    // Once a file.
    void report(const char* cause) {
        if (!failed_.exchange(true)) log(ZK_LOG_EVENTS, 0, "the drag recording is not complete: %s", cause);
    }

    std::mutex lock_;
    std::condition_variable changed_;
    std::deque<Point> waiting_;
    bool started_ = false, closing_ = false;
    std::atomic<bool> failed_{false};
};

// Never destroyed: its thread runs to the end of the process.
Writer& writer() {
    static auto& only = *new Writer;
    return only;
}

}  // namespace

bool open_recording(const char* path) { return writer().open(path); }
void close_recording() { (void)writer().close(); }
bool is_recording() { return read(F_SaveDragTeach, std::memory_order_acquire) != nullptr; }
void record(const char* line, int32_t announced) { writer().add(line, announced); }

}  // namespace zk
