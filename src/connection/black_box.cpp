#include "connection/black_box.h"

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "connection/own_thread.h"
#include "connection/shared_memory.h"

namespace zk::black_box {

std::atomic<bool> detail::is_on{false};

namespace {

constexpr uint64_t kStartSize = 256 * 1024;
constexpr uint64_t kRingSize = 16 * 1024 * 1024;  // 30 s of two arms that push and are streamed at 5 ms
constexpr size_t kFileSize = kPage + kStartSize + kRingSize;
constexpr int64_t kBetweenCopies = 10'000'000'000;
constexpr int kMostCopies = 20;
constexpr size_t kMostLeft = 5;  // files of processes that were killed
constexpr mode_t kMode = 0600;   // frames hold passwords of networks

int64_t now(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

// A part of the mapped file. The ring begins again at its end.
struct Part {
    char* bytes = nullptr;
    uint64_t size = 0;
    uint64_t* end = nullptr;

    bool has_room(size_t text) const { return *end + size_in_file(text) <= size; }
    void put(uint64_t at, const void* data, size_t count) const {
        const size_t place = at % size, first = std::min<size_t>(count, size - place);
        std::memcpy(bytes + place, data, first);
        std::memcpy(bytes, static_cast<const char*>(data) + first, count - first);
    }
    void add(Record record, const char* text) const {
        const uint64_t at = *end;
        record.at = at + 8;
        put(at + sizeof record, text, record.size);
        put(at, &record, sizeof record);
        *end = at + size_in_file(record.size);
    }
};

// Never destroyed: the library's threads run to the end of the process.
struct Box {
    std::string stem;  // of all its files
    std::string path;
    pid_t process = 0;
    char* bytes = nullptr;
    std::mutex lock;  // of the file
    Part start, ring;
    sem_t wanted{};
    std::atomic<int64_t> last_copy{-kBetweenCopies};
    std::atomic<int> copies{0};
    std::atomic<const char*> why{nullptr};
    std::mutex copying;  // taken before `lock`

    Header& header() const { return *reinterpret_cast<Header*>(bytes); }
};
Box& box() {
    static auto& only = *new Box;
    return only;
}

void complain(const std::string& what, int error) {
    const std::string reason = std::generic_category().message(error);
    std::fprintf(stderr, "ZK_Base: no black box: %s: %s\n", what.c_str(), reason.c_str());
}

// In slices, so that no frame waits for a disk. What is overwritten meanwhile, a reader passes over. Leaves errno.
bool write_box(int file) {
    constexpr size_t kSlice = 64 * 1024;
    static char slice[kSlice];  // under the lock of copying
    size_t size = kPage;
    for (size_t at = 0; at < size;) {
        size_t count = 0;
        {
            const std::lock_guard guard(box().lock);
            size = kPage + kStartSize + static_cast<size_t>(std::min(kRingSize, box().header().ring_end));
            count = std::min(kSlice, size - at);
            std::memcpy(slice, box().bytes + at, count);
        }
        const ssize_t written = ::write(file, slice, count);
        if (written == 0 || (written < 0 && errno != EINTR)) return false;
        at += static_cast<size_t>(std::max<ssize_t>(written, 0));
    }
    return true;
}

void copy() {
    const std::lock_guard guard(box().copying);
    const char* why = box().why.exchange(nullptr);
    if (!why) return;
    const std::string path = box().stem + "-" + std::to_string(box().copies) + "-" + why + ".box";
    const std::string unfinished = path + ".part";
    const int file = ::open(unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode);
    const bool done = file >= 0 && write_box(file) && std::rename(unfinished.c_str(), path.c_str()) == 0;
    const int error = errno;
    if (file >= 0) ::close(file);
    if (done) return;
    ::unlink(unfinished.c_str());
    complain(path, error);
}

// A process that ends as it should leaves its copies alone.
void end() {
    if (!is_on() || getpid() != box().process) return;
    copy();
    ::unlink(box().path.c_str());
}

void leave_to_parent() { detail::is_on.store(false, std::memory_order_relaxed); }

// A file of a process that was killed, whose lock is free. Returns when it was written last; -1 for any other file.
int64_t time_of_left(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (file < 0) return -1;
    struct stat found {};
    Header header{};
    const bool is_own = fstat(file, &found) == 0 && S_ISREG(found.st_mode) && found.st_uid == geteuid() &&
                        pread(file, &header, sizeof header, 0) == ssize_t{sizeof header} &&
                        std::memcmp(header.magic, kMagic, sizeof kMagic) == 0;
    const bool is_left = is_own && flock(file, LOCK_EX | LOCK_NB) == 0;
    ::close(file);
    return is_left ? header.unix_ns : -1;
}

// A killed process removes nothing. Its file tells how it ended: the last ones stay, and all copies.
void remove_left(const std::string& directory) {
    DIR* const entries = opendir(directory.c_str());
    if (!entries) return;
    std::vector<std::pair<int64_t, std::string>> left;
    while (const dirent* entry = readdir(entries)) {
        int end = 0;
        (void)std::sscanf(entry->d_name, "zk-%*8[0-9]T%*6[0-9]Z-%*[0-9].box%n", &end);
        if (end == 0 || entry->d_name[end] != '\0') continue;
        const std::string path = directory + "/" + entry->d_name;
        if (const int64_t time = time_of_left(path); time >= 0) left.emplace_back(time, path);
    }
    closedir(entries);
    std::sort(left.begin(), left.end(), std::greater<>());
    for (size_t i = kMostLeft; i < left.size(); ++i) ::unlink(left[i].second.c_str());
}

// A file of its own, which is as large as it will be: a disk that fills up cannot end the program. Returns 0 or errno.
int create(const std::string& directory) {
    char moment[32] = "";
    const std::time_t time = std::time(nullptr);
    tm parts{};
    if (gmtime_r(&time, &parts)) std::strftime(moment, sizeof moment, "%Y%m%dT%H%M%SZ", &parts);
    box().stem = directory + "/zk-" + moment + "-" + std::to_string(getpid());
    box().path = box().stem + ".box";
    const int file = ::open(box().path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kMode);
    if (file < 0) return errno;
    (void)flock(file, LOCK_EX);  // for as long as this process lives, or a child that it forked
    int error = posix_fallocate(file, 0, kFileSize);
    if (error == 0) {
        void* mapped = mmap(nullptr, kFileSize, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        if (mapped == MAP_FAILED) error = errno;
        if (error == 0) box().bytes = static_cast<char*>(mapped);
    }
    if (error) {
        ::close(file);
        ::unlink(box().path.c_str());
    }
    return error;
}

void start(const std::string& directory) {
    remove_left(directory);
    if (const int error = create(directory)) return complain(directory, error);
    box().process = getpid();
    Header& header = box().header();
    header.start_size = kStartSize;
    header.ring_size = kRingSize;
    header.process = getpid();
    header.unix_ns = now(CLOCK_REALTIME);
    std::memcpy(header.magic, kMagic, sizeof kMagic);
    box().start = {box().bytes + kPage, kStartSize, &header.start_end};
    box().ring = {box().bytes + kPage + kStartSize, kRingSize, &header.ring_end};
    sem_init(&box().wanted, 0, 0);
    const int error = start_own_thread([] {
        for (;;) {
            while (sem_wait(&box().wanted) != 0) continue;
            copy();
        }
    });
    if (error) {
        ::unlink(box().path.c_str());
        return complain("no thread can be made", error);
    }
    pthread_atfork(nullptr, nullptr, leave_to_parent);
    std::atexit(end);
    detail::is_on.store(true, std::memory_order_release);
}

}  // namespace

void open() {
    static std::atomic<pid_t> starter{0};
    static std::atomic<bool> is_over{false};
    pid_t nobody = 0;
    if (starter.compare_exchange_strong(nobody, getpid())) {
        const char* directory = std::getenv("ZK_BLACK_BOX");
        if (directory && *directory) start(directory);
        is_over = true;
    }
    // A child that was forked meanwhile does not have the thread that would end this.
    for (Pause pause; !is_over && starter == getpid();) pause.next();
}

static void add(Kind kind, ArmSocket arm, const char* text, size_t count, bool is_start) {
    if (!detail::is_on.load(std::memory_order_acquire)) return;
    const size_t size = std::min<size_t>(count, kStartSize);
    const Record record{0, now(CLOCK_REALTIME), arm, kind, static_cast<uint32_t>(size), check_of(text, size)};
    const std::lock_guard guard(box().lock);
    box().header().unix_ns = record.unix_ns;
    (is_start && box().start.has_room(size) ? box().start : box().ring).add(record, text);
}

void add(Kind kind, ArmSocket arm, const char* text, size_t size) { add(kind, arm, text, size, false); }

void add_start(Kind kind, const char* text, size_t size) { add(kind, 0, text, size, true); }

void keep(const char* why) {
    if (!detail::is_on.load(std::memory_order_acquire)) return;
    const int64_t time = now(CLOCK_MONOTONIC);
    int64_t last = box().last_copy.load();
    if (time - last < kBetweenCopies || !box().last_copy.compare_exchange_strong(last, time)) return;
    if (box().copies.fetch_add(1) >= kMostCopies) return;
    box().why.store(why);
    sem_post(&box().wanted);
}

}  // namespace zk::black_box
