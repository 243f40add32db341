#include "wire/request.h"

#include <algorithm>
#include <cmath>

namespace sim {

Request::Request(const Json& body) : body_(body) {
    if (!body_.is_object()) throw BadRequest("a request that is no JSON object");
    const Json* command = body_.find("command");
    if (!command || !command->is_string()) throw BadRequest("a request without a \"command\"");
    command_ = command->text();
}

bool Request::is_true(const char* key) const {
    const Json* item = body_.find(key);
    return item && item->is_boolean() && item->boolean();
}

bool Request::flag(const char* key) const {
    const Json& item = at(key);
    if (!item.is_boolean()) refuse(key, "is no boolean");
    return item.boolean();
}

std::string Request::text(const char* key) const {
    const Json& item = at(key);
    if (!item.is_string()) refuse(key, "is no string");
    return item.text();
}

std::string Request::text(const char* key, size_t most) const {
    std::string value = text(key);
    if (value.size() > most) refuse(key, "is too long");
    return value;
}

std::vector<std::string> Request::texts(const char* key) const {
    const Json& item = at(key);
    if (!item.is_array()) refuse(key, "is no array");
    std::vector<std::string> values;
    for (const Json& element : item.items()) {
        if (!element.is_string()) refuse(key, "holds something else than strings");
        values.push_back(element.text());
    }
    return values;
}

double Request::number(const char* key) const {
    const Json& item = at(key);
    if (!item.is_number()) refuse(key, "is no number");
    const double value = item.number();
    if (!std::isfinite(value)) refuse(key, "is not finite");
    return value;
}

std::vector<double> Request::numbers(const char* key, size_t size) const {
    const Json& item = at(key);
    if (!item.is_array() || item.items().size() != size) refuse(key, "is no array of " + std::to_string(size));
    std::vector<double> values;
    for (const Json& element : item.items()) {
        if (!element.is_number() || !std::isfinite(element.number())) refuse(key, "holds something else than numbers");
        values.push_back(element.number());
    }
    return values;
}

int Request::integer(const char* key, int low, int high) const {
    const double value = std::trunc(number(key));
    if (value < low || value > high) refuse(key, "is out of range");
    return static_cast<int>(value);
}

std::vector<int> Request::integers(const char* key) const {
    const Json& item = at(key);
    if (!item.is_array()) refuse(key, "is no array");
    return integers(key, item.items().size());
}

std::vector<int> Request::integers(const char* key, size_t size) const {
    std::vector<int> values;
    for (const double value : numbers(key, size)) {
        if (std::trunc(value) < INT_MIN || std::trunc(value) > INT_MAX) refuse(key, "holds a number out of range");
        values.push_back(static_cast<int>(value));
    }
    return values;
}

Request Request::object(const char* key) const {
    const Json& item = at(key);
    if (!item.is_object()) refuse(key, "is no object");
    return {item, command_ + "." + key};
}

std::vector<Request> Request::objects(const char* key) const {
    const Json& item = at(key);
    if (!item.is_array()) refuse(key, "is no array");
    std::vector<Request> objects;
    for (const Json& element : item.items()) {
        if (!element.is_object()) refuse(key, "holds something else than objects");
        objects.push_back(Request(element, command_ + "." + key));
    }
    return objects;
}

std::vector<std::string> Request::keys() const {
    std::vector<std::string> keys;
    for (const Json::Member& member : body_.members()) keys.push_back(member.key);
    return keys;
}

void Request::demand_known_keys(const std::vector<std::string>& known) const {
    for (const std::string& key : keys()) {
        if (key != "command" && std::find(known.begin(), known.end(), key) == known.end())
            throw Refusal("there is no key '" + key + "'");
    }
}

const Json& Request::at(const char* key) const {
    const Json* item = body_.find(key);
    if (!item) refuse(key, "is missing");
    return *item;
}

void Request::refuse(const std::string& key, const std::string& reason) const {
    throw BadRequest(command_ + ": \"" + key + "\" " + reason);
}

}  // namespace sim
