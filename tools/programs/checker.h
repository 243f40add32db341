// A program on a model, before an arm is near.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "programs/program.h"

namespace tool {

// What a motion or a pause came to.
struct Checked {
    int line;
    std::string command;
    double seconds = 0;
    double to_limit_deg = 0;    // the least distance of a joint from its limit on the way, below 0 beyond it
    double manipulability = 0;  // the least on the way, in percent of the model's best
    std::string fault;          // empty: none
};

struct Verdict {
    std::vector<Checked> lines;
    double seconds = 0;  // with all rounds of the loops
    zk::Joints end;
    const Checked* first_fault() const;
};

// Runs through a program from these joints, at a percentage of its speeds. A loop is run through twice: its first round
// comes from elsewhere, the others from its own end.
//
// Times are between rests, with ramps that rise and fall by a raised sine, at the speed and acceleration limits of the
// slowest joint, or of the tool along a path: 250 mm/s and 1.6 m/s2, 600 mrad/s and 4 rad/s2, the settings of a new
// controller. Motions that are joined take less; a path at full speed along which the joints bend takes longer, on the
// simulated arm up to 1.6 times as long.
Verdict check(const Program& program, const zk::Model& model, const zk::Joints& from, double speed_percent);

}  // namespace tool
