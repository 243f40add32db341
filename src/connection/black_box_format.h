// The file of the black box. A page with the header, then the start of each connection, which is kept, then a ring of
// what came last. Its writer may end at any moment: a reader passes over a record that is not whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zk::black_box {

constexpr char kMagic[8] = {'Z', 'K', 'B', 'O', 'X', '1', '\r', '\n'};
constexpr size_t kPage = 4096;

enum class Kind : uint32_t { kEvent = 1, kSent, kReceived, kPush };

struct Header {
    char magic[8];
    uint64_t start_size, ring_size;  // multiples of 8
    uint64_t start_end, ring_end;    // bytes so far; in the ring, all that were ever written
    int64_t process;
    int64_t unix_ns;  // of the last record
};
static_assert(sizeof(Header) <= kPage);

// Before the text of a record. A record begins at a multiple of 8, and the ring goes on at its beginning.
struct Record {
    uint64_t
        at;  // its place among all bytes of its part, from 8: a place that was overwritten or never written differs
    int64_t unix_ns;
    int32_t arm;
    Kind kind;
    uint32_t size;
    uint32_t check;  // of the text
};
constexpr size_t size_in_file(size_t text) { return sizeof(Record) + (text + 7) / 8 * 8; }

inline uint32_t check_of(const char* text, size_t size) {
    uint64_t sum = 0x9e3779b97f4a7c15u + size;
    for (; size > 0;) {
        uint64_t word = 0;
        const size_t part = size < sizeof word ? size : sizeof word;
        std::memcpy(&word, text, part);
        sum = (sum ^ word) * 0xff51afd7ed558ccdu;
        sum ^= sum >> 32;
        text += part;
        size -= part;
    }
    return static_cast<uint32_t>(sum);
}

}  // namespace zk::black_box
