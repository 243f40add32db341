// What both ways to connect have in common: the process-wide model, and a slot without old replies.
#pragma once

#include <mutex>

#include "connection/slots.h"

namespace zk {

// Held while a connection's data go into the process-wide model, and over the start-up of Arm_Socket_Start: the process
// has one model and one listener, and a close frees the slots after its own.
std::mutex& start_lock();

// Drops the replies to the slot's last connection. The receive thread may still dispatch one of them, and calls the
// application while it does. Returns 0, 5 or 7.
int start_afresh(const Connection& connection);

void select_model();  // by Curr_Robot_Type and Curr_Senser_Type
void put_tool(FrameRec& tool);
void put_work_frame(FrameRec& work);

}  // namespace zk
