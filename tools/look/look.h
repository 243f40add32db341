// Commands that look at an arm.
#pragma once

#include "command.h"

namespace tool {

void add_info(CLI::App& zk);
void add_state(CLI::App& zk);
void add_list(CLI::App& zk);
void add_explain(CLI::App& zk);
void add_view(CLI::App& zk);
void add_watch(CLI::App& zk);
void add_doctor(CLI::App& zk);
void add_latency(CLI::App& zk);

// Where an arm is and how it does, by two queries.
Json state_of(const zk::Arm& arm);

}  // namespace tool
