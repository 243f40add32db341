// Lists in the controller, read page by page.
#pragma once

#include <cstdint>

#include "commands/fields.h"
#include "connection/request.h"
#include "zk/replies/programs.h"

namespace zk {

// The parsers of lists, which also return the number of entries in the reply.
int read_program_list(const char* text, int32_t* received, ProgramList* list);
int read_waypoint_list(ArmSocket socket, const char* text, int32_t* received, GlobalWaypointList* list);

// The page and the search of a request; 0 and "" are not sent.
template <class List>
Request page_request(ArmSocket socket, const char* command, const List& list) {
    Request request(socket, command);
    if (list.page_num > 0) request.number("page_num", list.page_num);
    if (list.page_size > 0) request.number("page_size", list.page_size);
    if (list.vague_search[0]) request.text("vague_search", ended(list.vague_search).c_str());
    return request;
}

}  // namespace zk
