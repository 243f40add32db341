#include "state_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace sim {
namespace {

constexpr const char* kVersionKey = "zk_simulator_state";
constexpr int kVersion = 1;

bool write_all(int file, const std::string& text) {
    for (size_t written = 0; written < text.size();) {
        const ssize_t count = ::write(file, text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR) return false;
        if (count > 0) written += static_cast<size_t>(count);
    }
    return ::fsync(file) == 0;
}

// The same text for all names of a file.
std::string only_name(const std::string& path) {
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::weakly_canonical(path, error);
    return error ? path : std::filesystem::absolute(whole).string();
}

bool is_same_file(int file, const std::string& path) {
    struct stat opened {
    }, named{};
    return ::fstat(file, &opened) == 0 && ::stat(path.c_str(), &named) == 0 && opened.st_ino == named.st_ino;
}

}  // namespace

FileLock::FileLock(std::string path) : path_(std::move(path)) {
    while (!is_held_) {
        file_ = ::open(path_.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC, 0644);
        if (file_ < 0) return;
        is_of_another_ = ::flock(file_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (is_of_another_) return;
        is_held_ = is_same_file(file_, path_);  // its last holder may have removed it meanwhile
        if (!is_held_) ::close(file_);
    }
}

FileLock::~FileLock() {
    if (is_held_) ::unlink(path_.c_str());
    if (file_ >= 0) ::close(file_);
}

StateFile::StateFile(const std::string& path, std::string model)
    : path_(only_name(path)), model_(std::move(model)), lock_(path_ + ".lock") {
    std::error_code ignored;
    const auto refuse = [&](const std::string& reason) {
        throw std::invalid_argument("--state: '" + path + "' " + reason);
    };
    if (lock_.is_of_another()) refuse("is in use by another simulated arm");
    if (std::filesystem::is_directory(path_, ignored)) refuse("is a directory");
    std::ifstream file(path_, std::ios::binary);
    if (!file) {
        if (::access(path_.c_str(), F_OK) == 0) refuse("cannot be read");
        return;
    }
    text_.assign(std::istreambuf_iterator<char>(file), {});
    const std::optional<Json> state = Json::parse(text_, true);
    const Json* version = state && state->is_object() ? state->find(kVersionKey) : nullptr;
    if (!version) refuse("holds no state of zk_simulator");
    if (!version->is_integer() || version->integer() != kVersion) refuse("has a version that this program cannot read");
    const Json* of = state->find("model");
    if (!of || !of->is_string() || of->text() != model_) refuse("is the state of another model than " + model_);
    const Json* sections = state->find("kept");
    if (!sections || !sections->is_object()) refuse("keeps nothing");
    sections_ = *sections;
}

bool StateFile::save(const Json& sections) {
    const std::string text = Json{{kVersionKey, kVersion}, {"model", model_}, {"kept", sections}}.dump() + "\n";
    if (text == text_) return true;
    if (!replace(text)) return false;
    text_ = text;
    return true;
}

// The rename leaves the old file or the new one, whenever the program ends.
bool StateFile::replace(const std::string& text) const {
    const std::string fresh = path_ + ".new";
    const int file = ::open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0) return false;
    const bool written = write_all(file, text);
    if (::close(file) == 0 && written && std::rename(fresh.c_str(), path_.c_str()) == 0) return true;
    ::unlink(fresh.c_str());
    return false;
}

}  // namespace sim
