// A directory of a test's own, and files in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace zk::test {

class TemporaryDirectory {
 public:
    TemporaryDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "zk_XXXXXX").string();
        if (!mkdtemp(name.data())) throw std::runtime_error("mkdtemp");
        path_ = name;
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    std::string path() const { return path_.string(); }
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }

    // The path of a file with this content.
    std::string file(const std::string& name, const std::string& content) const {
        std::ofstream(path_ / name, std::ios::binary) << content;
        return *this / name;
    }

 private:
    std::filesystem::path path_;
};

inline std::string content_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace zk::test
