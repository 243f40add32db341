// What the fuzzers share: the bytes of an input, and checks of what must hold for each.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace zk::fuzz {

// Ends the process: what `claim` says must hold for every input.
inline void expect(bool holds, const char* claim) {
    if (holds) return;
    std::fprintf(stderr, "this does not hold: %s\n", claim);
    std::abort();
}

// The bytes of an input, taken from the front. Behind the end they are 0.
class Input {
 public:
    explicit Input(std::string text = {}) : text_(std::move(text)) {}
    Input(const std::uint8_t* data, std::size_t size) : Input({reinterpret_cast<const char*>(data), size}) {}

    bool at_end() const { return at_ >= text_.size(); }
    std::uint8_t byte() { return at_end() ? std::uint8_t{0} : static_cast<std::uint8_t>(text_[at_++]); }
    // Up to the next of these bytes, which stays, or to the end.
    std::string up_to_any(std::string_view ends) {
        const std::size_t end = std::min(text_.find_first_of(ends, at_), text_.size());
        const std::string part = text_.substr(at_, end - at_);
        at_ = end;
        return part;
    }

 private:
    std::string text_;
    std::size_t at_ = 0;
};

}  // namespace zk::fuzz
