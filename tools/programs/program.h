// A program as a controller takes it: a text with one JSON object a line.
#pragma once

#include <string>
#include <vector>

#include "command.h"

namespace tool {

struct Instruction {
    enum class Kind { kJoints, kPose, kLine, kSpline, kCircle, kTimer, kLoop, kEndLoop };

    int line;             // from 1
    std::string command;  // as the file names it
    Kind kind;
    zk::Joints joints;         // the target of kJoints
    zk::Pose via, target;      // of the other motions
    double speed_percent = 0;  // of the limits
    int count = 0;             // rounds of a loop or whole turns of a circle; milliseconds of a timer
};

struct Program {
    std::string path, text;
    std::vector<Instruction> instructions;
};

// Throws Failure when the file cannot be read, is no program or only the beginning of one, or has numbers out of range.
Program read_program(const std::string& path);

}  // namespace tool
