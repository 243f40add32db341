#include "wire/json.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace sim {

using Library = nlohmann::ordered_json;

// Receives the parts of a text from the library's parser.
class JsonReader {
 public:
    explicit JsonReader(bool whole) : whole_(whole) {}

    Json root;

    bool null() { return put({}); }
    bool boolean(bool value) { return put(value); }
    bool number_integer(int64_t value) { return put(value); }
    bool number_unsigned(uint64_t value) { return value <= INT64_MAX ? put(value) : put(static_cast<double>(value)); }
    bool number_float(double value, const std::string&) { return put(value); }
    bool string(std::string& value) { return put(std::move(value)); }
    bool binary(Library::binary_t&) { return false; }
    bool key(std::string& value) {
        if (depth_ <= kDeepest) key_ = std::move(value);
        return true;
    }
    bool start_object(size_t) { return start(Json::object()); }
    bool end_object() { return end(); }
    bool start_array(size_t) { return start(Json::array()); }
    bool end_array() { return end(); }
    static bool parse_error(size_t, const std::string&, const Library::exception&) { return false; }

 private:
    static constexpr size_t kDeepest = 16;  // printing and copying recurse once per level

    Json& place(Json value) {
        if (open_.empty()) return root = std::move(value);
        if (open_.back()->is_object()) return (*open_.back())[key_] = std::move(value);
        auto& items = std::get<std::vector<Json>>(open_.back()->value_);
        return items.emplace_back(std::move(value));
    }
    bool put(Json value) {
        if (depth_ <= kDeepest) place(std::move(value));
        return true;
    }
    bool start(Json empty) {
        if (++depth_ > kDeepest) return !whole_;
        open_.push_back(&place(std::move(empty)));
        return true;
    }
    bool end() {
        if (depth_-- <= kDeepest) open_.pop_back();
        return true;
    }

    bool whole_;
    size_t depth_ = 0;
    std::vector<Json*> open_;  // arrays and objects, the innermost last
    std::string key_;
};

namespace {

Library printable(const Json& json) {
    if (json.is_boolean()) return json.boolean();
    if (json.is_integer()) return json.integer();
    if (json.is_number()) return json.number();
    if (json.is_string()) return json.text();
    if (json.is_array()) {
        Library list = Library::array();
        for (const Json& item : json.items()) list.push_back(printable(item));
        return list;
    }
    if (!json.is_object()) return nullptr;
    Library object = Library::object();
    for (const auto& [key, value] : json.members()) object[key] = printable(value);
    return object;
}

}  // namespace

Json::Json() = default;
Json::~Json() = default;
Json::Json(const Json& other) = default;
Json::Json(Json&& other) noexcept = default;
Json& Json::operator=(const Json& other) = default;
Json& Json::operator=(Json&& other) noexcept = default;

Json::Json(bool value) : value_(value) {}
Json::Json(int number) : value_(int64_t{number}) {}
Json::Json(int64_t number) : value_(number) {}
Json::Json(uint64_t number) : value_(static_cast<int64_t>(number)) {}
Json::Json(double number) : value_(number) {}
Json::Json(const char* text) : value_(std::string(text)) {}
Json::Json(std::string text) : value_(std::move(text)) {}

Json::Json(std::initializer_list<Json> items) {
    const bool object = std::all_of(items.begin(), items.end(), [](const Json& item) {
        return item.is_array() && item.items().size() == 2 && item.items()[0].is_string();
    });
    if (!object) {
        value_ = std::vector<Json>(items);
        return;
    }
    *this = Json::object();
    for (const Json& item : items) (*this)[item.items()[0].text()] = item.items()[1];
}

Json Json::array() {
    Json json;
    json.value_ = std::vector<Json>();
    return json;
}

Json Json::object() {
    Json json;
    json.value_ = std::vector<Member>();
    return json;
}

std::optional<Json> Json::parse(std::string_view text, bool whole) {
    JsonReader reader(whole);
    if (!Library::sax_parse(text, &reader)) return std::nullopt;
    return std::move(reader.root);
}

std::string Json::dump() const { return printable(*this).dump(-1, ' ', false, Library::error_handler_t::replace); }

const Json* Json::find(std::string_view key) const {
    for (const Member& member : members()) {
        if (member.key == key) return &member.value;
    }
    return nullptr;
}

const Json& Json::at(std::string_view key) const {
    const Json* found = find(key);
    if (!found) throw std::out_of_range("no member " + std::string(key));
    return *found;
}

Json& Json::operator[](std::string_view key) {
    if (std::holds_alternative<std::monostate>(value_)) value_ = std::vector<Member>();
    auto& members = std::get<std::vector<Member>>(value_);
    const auto found = std::find_if(members.begin(), members.end(), [&](const Member& m) { return m.key == key; });
    return found != members.end() ? found->value : members.emplace_back(Member{std::string(key), {}}).value;
}

void Json::push_back(Json item) {
    if (std::holds_alternative<std::monostate>(value_)) value_ = std::vector<Json>();
    std::get<std::vector<Json>>(value_).push_back(std::move(item));
}

void Json::update(const Json& object) {
    for (const auto& [key, value] : object.members()) (*this)[key] = value;
}

bool Json::erase(std::string_view key) {
    auto& members = std::get<std::vector<Member>>(value_);
    return std::erase_if(members, [&](const Member& member) { return member.key == key; }) != 0;
}

}  // namespace sim
