#include "connection/mailbox.h"

namespace zk {
namespace {

constexpr size_t kHead = 2 * sizeof(int32_t);  // count and result precede the payload
constexpr Word kNoWord = 0;

}  // namespace

int32_t& Mailbox::word(int slot, int index) const { return reinterpret_cast<int32_t*>(at(slot))[index]; }

int Mailbox::count(int slot) const { return read(word(slot, 0), std::memory_order_acquire); }
int Mailbox::result(int slot) const { return read(word(slot, 1)); }
void Mailbox::clear(int slot) { write(word(slot, 0), 0, std::memory_order_release); }

void Mailbox::lower(int slot) {
    const std::atomic_ref count(word(slot, 0));
    int32_t held = count.load(std::memory_order_relaxed);
    while (held > 0 && !count.compare_exchange_weak(held, held - 1, std::memory_order_acq_rel)) {
    }
}

void Mailbox::wipe(int slot) {
    // The count last: a reply that arrives now is lost as a whole.
    for (size_t end = size_; end > 0; end -= sizeof(Word))
        write_words(at(slot) + end - sizeof(Word), &kNoWord, sizeof kNoWord);
}

void Mailbox::copy(int slot, void* record) const { read_words(record, at(slot), size_); }

void Mailbox::fill(int slot, const void* record) {
    write_words(at(slot) + kHead, static_cast<const std::byte*>(record) + kHead, size_ - kHead);
}

void Mailbox::finish(int slot, int result) { write(word(slot, 1), static_cast<int32_t>(result)); }

void Mailbox::raise(int slot, bool add) {
    if (add) {
        std::atomic_ref(word(slot, 0)).fetch_add(1, std::memory_order_acq_rel);
    } else {
        write(word(slot, 0), 1, std::memory_order_release);
    }
}

}  // namespace zk
