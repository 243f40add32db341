// Lists that the controller keeps, page by page.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "connection/reply.h"
#include "connection/request.h"
#include "zk/programs.h"

namespace zk {

// The parsers of lists, told also how many entries a reply held.
int read_program_list(const char* text, int32_t* received, ProgramList* list);
int read_waypoint_list(ArmSocket socket, const char* text, int32_t* received, GlobalWaypointList* list);

// A text of a record, which need not be ended.
template <size_t size>
std::string ended(const char (&field)[size]) {
    return std::string(field, strnlen(field, size));
}

// A required text of a reply, cut to its field.
template <size_t size>
void cut_text(Reply& reply, Item object, const char* key, char (&field)[size]) {
    if (const Item text = reply.text(object, key)) std::snprintf(field, size, "%s", text.text());
}

// What the caller asks of a list; what it does not say is not sent.
template <class List>
Request page_request(ArmSocket socket, const char* command, const List& list) {
    Request request(socket, command);
    if (list.page_num > 0) request.number("page_num", list.page_num);
    if (list.page_size > 0) request.number("page_size", list.page_size);
    if (list.vague_search[0]) request.text("vague_search", ended(list.vague_search).c_str());
    return request;
}

}  // namespace zk
