// Writes a JSON text into a fixed place, formatted over several lines as it goes on the wire. What does not fit is
// counted, not written.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

namespace zk {

class JsonWriter {
 public:
    static constexpr size_t kRoom = 1000;

    JsonWriter() = default;
    JsonWriter(const JsonWriter& other);
    JsonWriter& operator=(const JsonWriter&) = delete;

    // What precedes a value: its key within an object, its separator within an array. A key needs no escapes.
    void key(const char* key);
    void element() { separate(", "); }

    // Integers of 32 bits as such, larger whole numbers below 1e60 in full, others with six decimals, in exponent form
    // when very small or very large; null for a number that is not finite.
    void number(double value);
    void boolean(bool value) { put(value ? "true" : "false"); }
    void text(const char* value);
    void open_object() { open("{"); }
    void close_object();
    void open_array() { open("["); }
    void close_array();

    std::string_view written() const { return {text_, length_ <= kRoom ? length_ : 0}; }
    size_t length() const { return length_; }  // also of a text that does not fit
    // Whether the wire carries every number: none that is not finite, nor the lowest integer, which stands for a float
    // that no integer holds.
    bool carries_all_numbers() const { return carries_all_numbers_; }

 private:
    void put(std::string_view bytes) {
        if (bytes.size() <= kRoom && length_ <= kRoom - bytes.size())
            std::memcpy(text_ + length_, bytes.data(), bytes.size());
        length_ += bytes.size();
    }
    void put_escaped(char byte);
    void put_line_begin();
    void open(std::string_view bracket);
    void separate(std::string_view separator);

    char text_[kRoom];
    size_t length_ = 0;
    int depth_ = 0;         // brackets that are open
    bool is_first_ = true;  // nothing stands in the innermost bracket yet
    bool carries_all_numbers_ = true;
};

}  // namespace zk
