// Memory that the threads of the library and of the application share without a lock. The records keep the plain layout
// of the interface. Words are read and written atomically. Raising a counter publishes what was written before.
// Queueing a request publishes what its caller wrote before to the parser of its reply.
#pragma once

#include <sched.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <thread>

namespace zk {

template <class T>
T read(const T& word, std::memory_order order = std::memory_order_relaxed) {
    return std::atomic_ref<T>(const_cast<T&>(word)).load(order);
}

template <class T>
void write(T& word, T value, std::memory_order order = std::memory_order_relaxed) {
    std::atomic_ref<T>(word).store(value, order);
}

// A record is copied word by word: a reader may see words of two publications, never half a word.
using Word [[gnu::may_alias]] = std::uint32_t;

inline void read_words(void* to, const void* from, std::size_t bytes) {
    for (std::size_t at = 0; at < bytes; at += sizeof(Word)) {
        const Word word =
            __atomic_load_n(reinterpret_cast<const Word*>(static_cast<const char*>(from) + at), __ATOMIC_RELAXED);
        std::memcpy(static_cast<char*>(to) + at, &word, sizeof word);
    }
}

inline void write_words(void* to, const void* from, std::size_t bytes) {
    for (std::size_t at = 0; at < bytes; at += sizeof(Word)) {
        Word word;
        std::memcpy(&word, static_cast<const char*>(from) + at, sizeof word);
        __atomic_store_n(reinterpret_cast<Word*>(static_cast<char*>(to) + at), word, __ATOMIC_RELAXED);
    }
}

// Between the tries of a thread that waits for another one to leave a short section. It yields at first; then it
// sleeps, since a yield does not let a thread of lower real-time priority run.
class Pause {
 public:
    void next() {
        if (++tries_ < kYields) {
            sched_yield();
        } else {
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
    }

 private:
    static constexpr int kYields = 100;
    int tries_ = 0;
};

// Orders what a caller does before its request before what the parser does with the reply.
inline std::atomic<unsigned> requests_sent{0};
inline void release_request() { requests_sent.fetch_add(1, std::memory_order_release); }
inline void acquire_reply() { (void)requests_sent.load(std::memory_order_acquire); }

}  // namespace zk
