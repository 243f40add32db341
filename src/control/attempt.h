// An attempt to connect: its time limit, and why it failed.
#pragma once

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "connection/elapsed.h"

namespace zk {

class Attempt {
 public:
    explicit Attempt(int32_t limit) : start_(Get_Program_Runtime()), limit_(limit) {}

    int32_t limit() const { return limit_; }
    int32_t left() const { return std::max(0, limit_ - elapsed_since(start_)); }

    // Keeps the reason and returns the status.
    [[gnu::format(printf, 3, 4)]] int fail(int status, const char* format, ...) {
        va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(text_, sizeof text_, format, arguments);
        va_end(arguments);
        return status;
    }
    const char* text() const { return text_; }  // "" before a failure

 private:
    int32_t start_, limit_;
    char text_[256] = "";
};

}  // namespace zk
