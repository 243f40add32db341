// Commands that record, and that read recordings; and the recording that they read.
#pragma once

#include "command.h"
#include "recording/arm_description.h"
#include "recording/messages.h"

namespace tool {

void add_record(CLI::App& zk);
void add_plot(CLI::App& zk);
void add_replay(CLI::App& zk);
void add_export(CLI::App& zk);

struct Recording {
    std::vector<ArmRecord> states;
    std::vector<LogRecord> log;
    ArmDescription arm;
    std::vector<PushRecord> push;
    bool is_whole = true;  // false: its recorder was killed, or the file was cut
    bool has_controller_time = true;

    // When a state was: by the controller's clock if it tells its time, since the network delays one record more than
    // another.
    double seconds(const ArmRecord& state) const;
};

// Something that happened: an event of the connection, or a change of the error words.
struct Mark {
    double seconds;
    bool is_error;
    std::string text;
};
std::vector<Mark> marks_of(const Recording& recording);

// What a recording must hold.
enum class Contents { kStates, kStatesOrFrames };

// Reads an MCAP file of zk record or zk proxy. Throws Failure when it is none, or does not hold what it must.
Recording load_recording(const std::string& path, Contents must = Contents::kStates);

}  // namespace tool
