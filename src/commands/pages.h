// Lists that the controller keeps, page by page.
#pragma once

#include <cstdint>

#include "commands/fields.h"
#include "connection/request.h"
#include "zk/replies/programs.h"

namespace zk {

// The parsers of lists, told also how many entries a reply held.
int read_program_list(const char* text, int32_t* received, ProgramList* list);
int read_waypoint_list(ArmSocket socket, const char* text, int32_t* received, GlobalWaypointList* list);

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
