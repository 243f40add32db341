#include "connection/json_writer.h"

#include <charconv>
#include <cmath>
#include <cstdint>

namespace zk {
namespace {

constexpr double kIntegerTolerance = 2.220446049250313e-16;
constexpr size_t kLongestNumber = 80;

char* format_fraction(char* to, double value) {
    const double size = std::fabs(value);
    const bool is_whole = std::fabs(std::floor(value) - value) <= kIntegerTolerance && size < 1e60;
    const bool exponent = !is_whole && (size < 1e-6 || size > 1e9);
    return std::to_chars(to, to + kLongestNumber, value,
                         exponent ? std::chars_format::scientific : std::chars_format::fixed, is_whole ? 0 : 6)
        .ptr;
}

bool is_plain(char byte) { return static_cast<unsigned char>(byte) >= ' ' && byte != '"' && byte != '\\'; }

}  // namespace

JsonWriter::JsonWriter(const JsonWriter& other)
    : length_(other.length_),
      depth_(other.depth_),
      is_first_(other.is_first_),
      carries_all_numbers_(other.carries_all_numbers_) {
    std::memcpy(text_, other.text_, other.written().size());
}

void JsonWriter::key(const char* key) {
    separate(",");
    put_line_begin();
    put("\"");
    put(key);
    put("\":\t");
}

void JsonWriter::number(double value) {
    if (!std::isfinite(value)) {
        carries_all_numbers_ = false;
        return put("null");
    }
    char text[kLongestNumber];
    char* end;
    const double whole = std::fabs(value) <= kIntegerTolerance ? 0 : std::trunc(value);
    if (value >= INT32_MIN && value <= INT32_MAX && std::fabs(whole - value) <= kIntegerTolerance) {
        if (whole == INT32_MIN) carries_all_numbers_ = false;
        end = std::to_chars(text, text + sizeof text, static_cast<int32_t>(whole)).ptr;
    } else {
        end = format_fraction(text, value);
    }
    put({text, static_cast<size_t>(end - text)});
}

void JsonWriter::text(const char* value) {
    put("\"");
    for (;; ++value) {
        const char* const plain = value;
        while (is_plain(*value)) ++value;
        put({plain, static_cast<size_t>(value - plain)});
        if (*value == '\0') break;
        put_escaped(*value);
    }
    put("\"");
}

void JsonWriter::put_escaped(char byte) {
    constexpr std::string_view kNamed = "\"\\\b\f\n\r\t", kNames = "\"\\bfnrt", kDigits = "0123456789abcdef";
    const size_t at = kNamed.find(byte);
    if (at != kNamed.npos) {
        const char escape[] = {'\\', kNames[at]};
        return put({escape, sizeof escape});
    }
    const auto code = static_cast<unsigned char>(byte);
    const char escape[] = {'\\', 'u', '0', '0', kDigits[code / 16], kDigits[code % 16]};
    put({escape, sizeof escape});
}

void JsonWriter::put_line_begin() {
    put("\n");
    for (int i = 0; i < depth_; ++i) put("\t");
}

void JsonWriter::separate(std::string_view separator) {
    if (!is_first_) put(separator);
    is_first_ = false;
}

void JsonWriter::open(std::string_view bracket) {
    put(bracket);
    ++depth_;
    is_first_ = true;
}

void JsonWriter::close_object() {
    --depth_;
    put_line_begin();
    put("}");
    is_first_ = false;
}

void JsonWriter::close_array() {
    --depth_;
    put("]");
    is_first_ = false;
}

}  // namespace zk
