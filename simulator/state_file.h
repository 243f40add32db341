#pragma once

#include <string>

#include "wire/json.h"

namespace sim {

// The file in which an arm keeps the sections of its memory.
class StateFile {
 public:
    // Throws std::invalid_argument when the file holds something else than the state of such an arm.
    StateFile(std::string path, std::string model);

    // What the file holds; empty when there is none yet.
    const Json& sections() const { return sections_; }

    // Replaces the file as a whole, if it holds something else. False when that fails.
    bool save(const Json& sections);

 private:
    bool replace(const std::string& text) const;

    std::string path_, model_;
    Json sections_ = Json::object();
    std::string text_;  // of the file
};

}  // namespace sim
