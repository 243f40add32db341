#pragma once

#include <climits>
#include <string>
#include <vector>

#include "wire/json.h"
#include "wire/refusal.h"

namespace sim {

// A request that lacks a key, or holds a wrong type or a value out of range. The text names command and key.
struct BadRequest : Refusal {
    using Refusal::Refusal;
};

// A view of one JSON object with a "command"; the object must outlive it. Every reader throws BadRequest when the key
// is not what it asks for.
class Request {
 public:
    explicit Request(const Json& body);
    // An object that is no request, under this name in the texts of refusals.
    Request(const Json& body, std::string name) : body_(body), command_(std::move(name)) {}

    const std::string& command() const { return command_; }
    bool has(const char* key) const { return body_.contains(key); }
    std::vector<std::string> keys() const;
    // Throws Refusal for a key that is not listed. "command" is always known.
    void demand_known_keys(const std::vector<std::string>& known) const;
    bool is_true(const char* key) const;
    bool is_text(const char* key) const { return has(key) && body_.at(key).is_string(); }

    bool flag(const char* key) const;
    std::string text(const char* key) const;
    std::string text(const char* key, size_t most) const;  // of up to so many bytes
    std::vector<std::string> texts(const char* key) const;
    double number(const char* key) const;
    std::vector<double> numbers(const char* key, size_t size) const;

    // Numbers with a fraction are truncated toward zero.
    int integer(const char* key, int low = INT_MIN, int high = INT_MAX) const;
    std::vector<int> integers(const char* key) const;
    std::vector<int> integers(const char* key, size_t size) const;

    // An object inside the request, or an array of them, read in the same way.
    Request object(const char* key) const;
    std::vector<Request> objects(const char* key) const;

 private:
    const Json& at(const char* key) const;
    [[noreturn]] void refuse(const std::string& key, const std::string& reason) const;

    const Json& body_;
    std::string command_;
};

}  // namespace sim
