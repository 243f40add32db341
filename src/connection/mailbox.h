// A table of reply records, whatever their payload: count, result, then the payload's words.
#pragma once

#include <cstddef>
#include <cstdint>

#include "connection/shared_memory.h"
#include "zk/export.h"

namespace zk {

class Mailbox {
 public:
    template <class Record>
    Mailbox(Record (&table)[ZK_SLOTS]) : base_(reinterpret_cast<std::byte*>(table)), size_(sizeof(Record)) {
        static_assert(offsetof(Record, count) == 0 && offsetof(Record, result) == 4 &&
                      sizeof(Record) % sizeof(Word) == 0);
    }

    int count(int slot) const;  // payload and result of a reply are visible once this is above 0
    int result(int slot) const;
    void clear(int slot);  // takes all replies
    void lower(int slot);  // takes one reply
    void wipe(int slot);   // zeroes the whole record
    void copy(int slot, void* record) const;

    // The receive thread's side.
    void fill(int slot, const void* record);  // the payload alone
    void finish(int slot, int result);
    void raise(int slot, bool add);  // by one, or to one

    friend bool operator==(const Mailbox& a, const Mailbox& b) { return a.base_ == b.base_; }

 private:
    int32_t& word(int slot, int index) const;
    std::byte* at(int slot) const { return base_ + static_cast<size_t>(slot) * size_; }

    std::byte* base_;
    size_t size_;
};

}  // namespace zk
