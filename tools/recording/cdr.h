// ROS 2's serialization of messages: CDR, little endian, each value aligned to its size after a header of four bytes.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace tool {

class CdrWriter {
 public:
    template <class Number>
    CdrWriter& operator<<(Number value) {
        static_assert(std::is_arithmetic_v<Number>);
        bytes_.resize(kHeader + (bytes_.size() - kHeader + sizeof value - 1) / sizeof value * sizeof value);
        const auto* raw = reinterpret_cast<const char*>(&value);
        bytes_.append(raw, sizeof value);
        return *this;
    }
    CdrWriter& operator<<(const std::string& text) {
        *this << static_cast<std::uint32_t>(text.size() + 1);
        bytes_.append(text.c_str(), text.size() + 1);
        return *this;
    }
    template <class Number, std::size_t size>
    CdrWriter& operator<<(const std::array<Number, size>& values) {
        for (const Number& value : values) *this << value;
        return *this;
    }
    template <class Value>
    CdrWriter& operator<<(const std::vector<Value>& values) {
        *this << static_cast<std::uint32_t>(values.size());
        for (const Value& value : values) *this << value;
        return *this;
    }
    const std::string& bytes() const { return bytes_; }

 private:
    static constexpr std::size_t kHeader = 4;
    std::string bytes_{'\0', '\1', '\0', '\0'};
};

// Throws std::out_of_range where the bytes end too early.
class CdrReader {
 public:
    explicit CdrReader(const std::string& bytes) : bytes_(bytes) {
        if (bytes.size() < kHeader || bytes[1] != 1) throw std::out_of_range("no little-endian CDR");
    }
    template <class Number>
    CdrReader& operator>>(Number& value) {
        static_assert(std::is_arithmetic_v<Number>);
        at_ = kHeader + (at_ - kHeader + sizeof value - 1) / sizeof value * sizeof value;
        std::memcpy(&value, take(sizeof value), sizeof value);
        return *this;
    }
    CdrReader& operator>>(std::string& text) {
        std::uint32_t size = 0;
        *this >> size;
        const char* begin = take(size);
        text.assign(begin, size > 0 ? size - 1 : 0);
        return *this;
    }
    template <class Number, std::size_t size>
    CdrReader& operator>>(std::array<Number, size>& values) {
        for (Number& value : values) *this >> value;
        return *this;
    }
    template <class Value>
    CdrReader& operator>>(std::vector<Value>& values) {
        std::uint32_t size = 0;
        *this >> size;
        if (size > bytes_.size()) throw std::out_of_range("a list is longer than its message");
        values.resize(size);
        for (Value& value : values) *this >> value;
        return *this;
    }

 private:
    static constexpr std::size_t kHeader = 4;
    const char* take(std::size_t size) {
        if (at_ > bytes_.size() || size > bytes_.size() - at_) throw std::out_of_range("a message is cut short");
        const char* begin = bytes_.data() + at_;
        at_ += size;
        return begin;
    }
    const std::string& bytes_;
    std::size_t at_ = kHeader;
};

}  // namespace tool
