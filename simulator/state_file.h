#pragma once

#include <string>

#include "wire/json.h"

namespace sim {

// A file that stands for the right to change another one. The system ends the lock with its process, however that ends.
class FileLock {
 public:
    explicit FileLock(std::string path);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // False also where no such file can be made or locked.
    bool is_of_another() const { return is_of_another_; }

 private:
    std::string path_;
    int file_ = -1;
    bool is_held_ = false, is_of_another_ = false;
};

// The file in which an arm keeps the sections of its memory, for this arm alone.
class StateFile {
 public:
    // Throws std::invalid_argument when the file holds something else than the state of such an arm, or belongs to
    // another arm, of this process or of another.
    StateFile(const std::string& path, std::string model);

    // What the file holds; empty when there is none yet.
    const Json& sections() const { return sections_; }

    // Replaces the file as a whole, if it holds something else. False when that fails.
    bool save(const Json& sections);

 private:
    bool replace(const std::string& text) const;

    std::string path_, model_;
    Json sections_ = Json::object();
    std::string text_;  // of the file
    FileLock lock_;
};

}  // namespace sim
