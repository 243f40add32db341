// Which arm a recording is of, as the file's metadata say.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "zk/arm.hpp"

namespace tool {

using ArmDescription = std::map<std::string, std::string>;

ArmDescription describe(const zk::Arm& arm);

// The arm's model with its frames and its mounting; none when the description names no model that is known.
std::optional<zk::Model> model_of(const ArmDescription& description);

}  // namespace tool
