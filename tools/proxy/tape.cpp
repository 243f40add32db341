#include "proxy/tape.h"

#include <chrono>

#include "wire/note.h"

namespace tool {
namespace {

std::int64_t unix_now() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

// On one line: blanks between the parts are one. Bytes that are no ASCII text are kept.
std::string on_one_line(const std::string& text) {
    std::string line;
    for (const char byte : text) {
        const bool is_blank = byte == ' ' || (byte >= '\t' && byte <= '\r') || byte == '\0';
        if (!is_blank) line += byte;
        if (is_blank && !line.empty() && line.back() != ' ') line += ' ';
    }
    if (!line.empty() && line.back() == ' ') line.pop_back();
    return line;
}

}  // namespace

Tape::Tape(const std::string& path, const std::string& controller) {
    if (path.empty()) return;
    if (!path.ends_with(".mcap")) throw Failure(kUsage, "'" + path + "' does not end in .mcap");
    file_ = std::make_unique<File>(path);
    file_->mcap.add_metadata("proxy", {{"controller", controller}});
}

// The arm is in use: it goes on without a recording.
template <class Write>
void Tape::write(const Write& write) {
    if (!file_) return;
    try {
        write(*file_);
    } catch (const Failure& failure) {
        failure_ = failure.what();
        file_.reset();
        sim::note(failure_ + "; nothing more is recorded");
    }
}

void Tape::frame(Way way, const std::string& text, const std::string& client) {
    write([&](File& file) {
        file.topics.add(
            LogRecord{unix_now(), true, (way == Way::kToController ? "> " : "< ") + on_one_line(text), client});
    });
}

void Tape::event(const std::string& text) {
    sim::note(text);
    write([&](File& file) { file.topics.add(LogRecord{unix_now(), false, text}); });
}

void Tape::state(const std::string& datagram) {
    write([&](File& file) {
        const std::int64_t now = unix_now();
        file.topics.add(PushRecord{now, datagram});
        if (const auto state = states_.read(datagram, now)) file.topics.add(*state);
    });
}

void Tape::flush() {
    write([](File& file) { file.mcap.flush(); });
}

void Tape::finish() {
    if (file_) file_->mcap.finish();
    if (!failure_.empty()) throw Failure(kFailed, failure_);
}

}  // namespace tool
