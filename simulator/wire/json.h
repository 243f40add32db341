#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace sim {

// A JSON value. It is parsed and printed by a library that only its source includes: the templates of that library take
// longer to compile than all else.
class Json {
 public:
    struct Member;

    // What copies and destroys is not inline: commands make many values.
    Json();  // null
    ~Json();
    Json(const Json& other);
    Json(Json&& other) noexcept;
    Json& operator=(const Json& other);
    Json& operator=(Json&& other) noexcept;

    Json(bool value);
    Json(int number);
    Json(int64_t number);
    Json(uint64_t number);
    Json(double number);
    Json(const char* text);
    Json(std::string text);
    template <class List>
    requires requires(const List& list) { list.begin() != list.end(); }
    Json(const List& list) : Json(array()) {
        for (const auto& item : list) push_back(item);
    }

    // An object if every item is an array of a text and one more value, otherwise an array.
    Json(std::initializer_list<Json> items);
    static Json array();
    static Json object();

    // Nothing if the text is no JSON. What is nested deeper than any message is left out; if the text has to be taken
    // `whole`, it is refused.
    static std::optional<Json> parse(std::string_view text, bool whole = false);
    // Without blanks and line ends. Bytes that are no UTF-8 are replaced.
    std::string dump() const;

    bool is_boolean() const { return std::holds_alternative<bool>(value_); }
    bool is_integer() const { return std::holds_alternative<int64_t>(value_); }
    bool is_number() const { return is_integer() || std::holds_alternative<double>(value_); }
    bool is_string() const { return std::holds_alternative<std::string>(value_); }
    bool is_array() const { return std::holds_alternative<std::vector<Json>>(value_); }
    bool is_object() const { return std::holds_alternative<std::vector<Member>>(value_); }

    // These throw when the value is of another type.
    bool boolean() const { return std::get<bool>(value_); }
    int64_t integer() const { return std::get<int64_t>(value_); }
    double number() const { return is_integer() ? static_cast<double>(integer()) : std::get<double>(value_); }
    const std::string& text() const { return std::get<std::string>(value_); }
    const std::vector<Json>& items() const { return std::get<std::vector<Json>>(value_); }
    const std::vector<Member>& members() const { return std::get<std::vector<Member>>(value_); }

    // The member of an object; null if there is none.
    const Json* find(std::string_view key) const;
    bool contains(std::string_view key) const { return find(key) != nullptr; }
    const Json& at(std::string_view key) const;  // throws if there is none

    // Adds the member if there is none. Null becomes an object, and an array by `push_back`.
    Json& operator[](std::string_view key);
    void push_back(Json item);
    void update(const Json& object);
    bool erase(std::string_view key);  // false if there is none

 private:
    friend class JsonReader;

    // The members of an object are in the order in which they were added, so that "command" or "state" comes first.
    std::variant<std::monostate, bool, int64_t, double, std::string, std::vector<Json>, std::vector<Member>> value_;
};

struct Json::Member {
    std::string key;
    Json value;
};

}  // namespace sim
