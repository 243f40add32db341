// Finds which of many literals decides a text: of those that occur anywhere in it, the first of their table.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

namespace zk {

// One pass with a filter of q-grams, after S. Wu, U. Manber, "A fast algorithm for multi-pattern searching" (1994).
// Every literal has four bytes at an even place and four at an odd one by which it is recognised, so every second place
// of a text is enough to look at. Those are the rarest four bytes that it has; where they occur, the literal is
// compared.
class FirstLiteral {
 public:
    static constexpr int kNone = -1;

    // A literal of at least five bytes, and what `find` returns for it; the smallest rank precedes.
    struct Ranked {
        std::string_view text;
        int rank;
    };
    explicit FirstLiteral(const std::vector<Ranked>& literals);

    // The smallest rank of the literals that occur in a text, or kNone.
    int find(std::string_view text) const;

 private:
    using Four = uint32_t;
    struct Candidate {
        Four bytes;
        int rank;
        std::string_view literal;
        size_t offset;   // of the bytes in the literal
        uint16_t after;  // the next candidate of the bucket, 0 for none
    };

    static size_t bucket(Four bytes) { return bytes * 2654435761u >> 20; }

    std::array<uint16_t, 4096> first_{};  // of each bucket, 0 for none
    std::vector<Candidate> candidates_{1};
};

}  // namespace zk
