#pragma once

#include "command_table.h"
#include "move.h"

namespace sim {

// What the commands that move the arm have in common.

// "v", a share of the speed limits.
int percent_of(const Call& call);

// Queues a move; always true. Throws BadRequest when the arm may not move, NoPath when there is no way for the move.
bool order(Call& call, Move move);

// A client that waits for the arrival learns that there will be none.
void report_refusal(Call& call);

}  // namespace sim
