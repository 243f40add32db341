// Text fields of records in requests and replies.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "connection/reply.h"

namespace zk {

// A text of a record, which may lack its end mark.
template <size_t size>
std::string ended(const char (&field)[size]) {
    return std::string(field, strnlen(field, size));
}

// A required text of a reply, cut to its field.
template <size_t size>
void cut_text(Reply& reply, Item object, const char* key, char (&field)[size]) {
    if (const Item text = reply.text(object, key)) std::snprintf(field, size, "%s", text.text());
}

}  // namespace zk
