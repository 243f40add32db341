#pragma once

#include "motion/arm.h"
#include "wire/command_table.h"

namespace sim {

// What all commands that move the arm share.

// "v": percent of the speed limits.
int percent_of(const Call& call);

// Queues a move and returns true. Throws BadRequest if the arm may not move, NoPath if the move has no path.
bool order(Arm& arm, const Call& call, Move move);

// Reports to a client that waits for the arrival that there is none.
void report_refusal(const Call& call);

}  // namespace sim
