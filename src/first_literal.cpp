#include "first_literal.h"

#include <climits>
#include <cstring>
#include <map>

namespace zk {
namespace {

uint32_t four_bytes(const char* text) {
    uint32_t bytes;
    std::memcpy(&bytes, text, sizeof bytes);
    return bytes;
}

}  // namespace

FirstLiteral::FirstLiteral(const std::vector<Ranked>& literals) {
    std::map<Four, int> occurrences;
    const auto occurrences_at = [&](std::string_view text, size_t offset) -> int& {
        return occurrences[four_bytes(text.data() + offset)];
    };
    for (const auto& [text, rank] : literals) {
        for (size_t offset = 0; offset + sizeof(Four) <= text.size(); ++offset) ++occurrences_at(text, offset);
    }
    for (const auto& [text, rank] : literals) {
        for (const size_t parity : {0, 1}) {
            size_t rarest = parity;
            for (size_t offset = parity; offset + sizeof(Four) <= text.size(); offset += 2) {
                if (occurrences_at(text, offset) < occurrences_at(text, rarest)) rarest = offset;
            }
            const Four bytes = four_bytes(text.data() + rarest);
            uint16_t& first = first_[bucket(bytes)];
            candidates_.push_back({bytes, rank, text, rarest, first});
            first = static_cast<uint16_t>(candidates_.size() - 1);
        }
    }
}

int FirstLiteral::find(std::string_view text) const {
    int best = INT_MAX;
    for (size_t at = 0; at + sizeof(Four) <= text.size(); at += 2) {
        const Four bytes = four_bytes(text.data() + at);
        for (uint16_t i = first_[bucket(bytes)]; i; i = candidates_[i].after) {
            const Candidate& candidate = candidates_[i];
            if (candidate.bytes != bytes || candidate.rank >= best || candidate.offset > at) continue;
            if (text.compare(at - candidate.offset, candidate.literal.size(), candidate.literal) == 0)
                best = candidate.rank;
        }
    }
    return best == INT_MAX ? kNone : best;
}

}  // namespace zk
