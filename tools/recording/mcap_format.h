// The bytes of an MCAP file: records of an opcode, a length and a content, whose numbers are little endian.
#pragma once

#include <zlib.h>
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

// CRC-32, as the format asks for.
inline std::uint32_t checksum_of(std::string_view bytes) {
    return static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size())));
}

}  // namespace tool
