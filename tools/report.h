// Reports: what a command found, as JSON whose keys end in their unit (joints_deg, age_ms), and as lines for people.
#pragma once

#include <ostream>

#include "command.h"

namespace tool {

// Prints a report: a line for each value, a table for each list of objects.
void print(const Json& report, std::ostream& out);

// Values of a report. Angles in degrees and lengths in metres, rounded to what a controller resolves.
double rounded(double value, int decimals = 4);
Json json_of(const zk::Joints& joints);
Json json_of(const zk::Pose& pose);
// The error words of arm and system, or of a joint: cause and remedy of each that is not 0.
Json json_of_errors(std::uint16_t arm, std::uint16_t system);
std::string hexadecimal(std::uint16_t word);

}  // namespace tool
