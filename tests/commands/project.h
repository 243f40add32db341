// Projects to send.
#pragma once

#include <cstring>
#include <string>

#include "zk/file_transfer.h"

namespace zk::test {

inline ProjectSendParams project(const std::string& path, int32_t plan_speed = 100, int32_t project_type = 0) {
    ProjectSendParams params{};
    std::memcpy(params.project_path, path.data(), path.size());
    params.project_path_len = static_cast<int32_t>(path.size());
    params.plan_speed = plan_speed;
    params.project_type = project_type;
    return params;
}

// A program of at least so many bytes.
inline std::string program_of_size(size_t size) {
    std::string text;
    for (int i = 0; text.size() < size; ++i) {
        text += R"({"command":"movej","joint":[)" + std::to_string(i % 1000) +
                R"(,0,0,0,0,0],"v":20})"
                "\n";
    }
    return text;
}

}  // namespace zk::test
