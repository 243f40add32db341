#pragma once

#include <algorithm>

#include "wire/request.h"

namespace sim {

// The page of a list that a client requests: its number from 1, the entries per page, and a part of their names.
struct Page {
    int number;
    int size;
    std::string search;
};

// The default is the first page with as many entries as a reply holds.
inline Page page_of(const Request& request, int most) {
    return {request.has("page_num") ? request.integer("page_num", 1) : 1,
            request.has("page_size") ? std::min(request.integer("page_size", 1), most) : most,
            request.has("vague_search") ? request.text("vague_search") : ""};
}

// The reply: the entries of this page among all whose name contains the searched part.
inline Json page_reply(const Page& page, const std::vector<Json>& entries, const char* name_key) {
    Json list = Json::array();
    int64_t found = 0;
    const int64_t first = (page.number - int64_t{1}) * page.size;
    for (const Json& entry : entries) {
        if (entry.at(name_key).text().find(page.search) == std::string::npos) continue;
        if (found >= first && found < first + page.size) list.push_back(entry);
        ++found;
    }
    return {{"page_num", page.number},
            {"page_size", page.size},
            {"total_size", found},
            {"vague_search", page.search},
            {"list", list}};
}

}  // namespace sim
