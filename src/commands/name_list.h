// Lists of names in replies.
#pragma once

#include <algorithm>
#include <cstring>

#include "connection/reply.h"

namespace zk {

constexpr size_t kNameBytes = 10;

// Reads names up to the first "NULL", cut to ten bytes and ended, at most as many as the record holds.
template <class Name>
int name_list(const char* text, const char* key, Name* names, int capacity, int32_t* count) {
    Reply reply(text);
    const Item array = reply.array(reply.root(), key);
    if (!reply.good()) return reply.status();
    *count = 0;
    for (int i = 0; i < std::min(array.size(), capacity); ++i) {
        if (std::strcmp(array[i].text(), "NULL") == 0) break;
        names[i] = {};
        copy_name(array[i].text(), names[i].text, kNameBytes);
        *count = i + 1;
    }
    return reply.status();
}

}  // namespace zk
