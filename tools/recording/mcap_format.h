// The bytes of an MCAP file: records of an opcode, a length and a content, whose numbers are little endian.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tool {

inline const std::string kMcapMagic = "\x89MCAP0\r\n";

enum class Opcode : std::uint8_t {
    kHeader = 1,
    kFooter,
    kSchema,
    kChannel,
    kMessage,
    kChunk,
    kMessageIndex,
    kChunkIndex,
    kStatistics = 11,
    kMetadata,
    kMetadataIndex,
    kDataEnd = 15
};

// Puts the content of a record together.
struct Bytes {
    template <class Number>
    Bytes& number(Number value) {
        text.append(reinterpret_cast<const char*>(&value), sizeof value);
        return *this;
    }
    // A length and that many bytes.
    template <class Length = std::uint32_t>
    Bytes& blob(std::string_view bytes) {
        number(static_cast<Length>(bytes.size()));
        text.append(bytes);
        return *this;
    }
    std::string text;
};

}  // namespace tool
