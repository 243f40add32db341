// Memory that the library's threads and the application's share without a lock. The records keep the plain layout of
// the interface; what orders them is here: words are read and written atomically, a counter's rise publishes what was
// written before it, and a request's way into the queue publishes to its reply's parser what the caller wrote before
// asking.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zk {

template <class T>
T read(const T& word, std::memory_order order = std::memory_order_relaxed) {
    return std::atomic_ref<T>(const_cast<T&>(word)).load(order);
}

template <class T>
void write(T& word, T value, std::memory_order order = std::memory_order_relaxed) {
    std::atomic_ref<T>(word).store(value, order);
}

// A record is taken word by word: a reader may see a mixture of two publications, never half a word.
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

// The order of the wire: nothing that a parser does with a reply comes before what the caller did ahead of its request.
inline std::atomic<unsigned> requests_sent{0};
inline void release_request() { requests_sent.fetch_add(1, std::memory_order_release); }
inline void acquire_reply() { (void)requests_sent.load(std::memory_order_acquire); }

}  // namespace zk
