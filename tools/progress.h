// A bar on standard error that shows how far a command is, if that is a terminal.
#pragma once

#include <string>

namespace tool {

class Progress {
 public:
    explicit Progress(std::string what);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // 0 to 1.
    void show(double share);

 private:
    std::string what_;
    bool terminal_;
    int percent_ = -1;
};

}  // namespace tool
