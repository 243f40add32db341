#pragma once

#include <nlohmann/json.hpp>

namespace sim {

// Keys keep the order in which a reply adds them, so that "command" or "state" is first on the wire.
using Json = nlohmann::ordered_json;

}  // namespace sim
