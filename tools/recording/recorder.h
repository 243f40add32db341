// Records an arm while it does what others tell it.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

#include "command.h"

namespace tool {

struct RecordOptions {
    std::string path;                   // .mcap or .csv
    bool wire = false;                  // every frame both ways too; MCAP alone
    std::chrono::milliseconds time{0};  // 0: until `ended`
};

struct RecordSummary {
    std::uint64_t states = 0, lost = 0, bytes = 0;
    double seconds = 0;
};

// Records the stream of states until its time is over, `ended` is set, or the arm is lost. progress, which may be
// empty, is called about ten times a second. Throws Failure when the file cannot be written or no state comes.
RecordSummary record(const ArmOption& where, const RecordOptions& options, const std::atomic<bool>& ended,
                     const std::function<void(const RecordSummary&)>& progress);

// A table of the states, with a heading.
void write_csv_heading(std::ostream& out, std::size_t joints);
void write_csv(std::ostream& out, const struct ArmRecord& record, std::int64_t begin_ns);

}  // namespace tool
