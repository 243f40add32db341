#include "recording/black_box.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <map>

#include "../src/connection/black_box_format.h"
#include "recording/state_reader.h"

namespace tool {
namespace {

namespace box = zk::black_box;

struct Entry {
    std::int64_t unix_ns;
    std::int32_t arm;
    box::Kind kind;
    std::string text;
};

constexpr std::int64_t kLatest = std::int64_t{1} << 62;  // in the next century: a difference of times stays a number

// A part of the file, which its writer may have left at any moment.
class Part {
 public:
    Part(std::string_view bytes, std::uint64_t end) : bytes_(bytes), end_(end) {}

    void read_into(std::vector<Entry>& entries) const {
        if (bytes_.empty()) return;
        for (std::uint64_t at = end_ > bytes_.size() ? end_ - bytes_.size() : 0; at + sizeof(box::Record) <= end_;) {
            box::Record record;
            const std::string head = take(at, sizeof record);
            std::memcpy(&record, head.data(), sizeof record);
            const bool fits = record.at == at + 8 && record.size <= end_ - at - sizeof record;
            std::string text = fits ? take(at + sizeof record, record.size) : std::string();
            const bool is_whole = fits && record.check == box::check_of(text.data(), text.size()) &&
                                  record.unix_ns >= 0 && record.unix_ns <= kLatest &&
                                  record.kind >= box::Kind::kEvent && record.kind <= box::Kind::kPush;
            if (is_whole) entries.push_back({record.unix_ns, record.arm, record.kind, std::move(text)});
            at += is_whole ? box::size_in_file(record.size) : 8;
        }
    }

 private:
    std::string take(std::uint64_t at, std::size_t size) const {
        const std::size_t place = at % bytes_.size(), first = std::min(size, bytes_.size() - place);
        return std::string(bytes_.substr(place, first)) + std::string(bytes_.substr(0, size - first));
    }
    std::string_view bytes_;
    std::uint64_t end_;
};

std::vector<Entry> entries_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (bytes.size() < box::kPage) throw Failure(kUsage, path + " is cut short before its first record");
    box::Header header;
    std::memcpy(&header, bytes.data(), sizeof header);
    const std::uint64_t rest = bytes.size() - box::kPage;
    constexpr std::uint64_t kLargest = std::uint64_t{1} << 28;
    constexpr std::uint64_t kMostWritten = std::uint64_t{1} << 62;
    if (header.start_size > rest || header.ring_size > kLargest || (header.start_size | header.ring_size) % 8 != 0 ||
        header.start_end > kMostWritten || header.ring_end > kMostWritten)
        throw Failure(kUsage, path + " is a damaged black box");
    const std::string_view parts = std::string_view(bytes).substr(box::kPage);
    std::vector<Entry> entries;
    Part(parts.substr(0, header.start_size), header.start_end).read_into(entries);
    // A copy has no more of the ring than was used.
    std::string ring(parts.substr(header.start_size));
    ring.resize(header.ring_size);
    Part(ring, header.ring_end).read_into(entries);
    return entries;
}

std::int32_t busiest_arm(const std::vector<Entry>& entries, const std::string& path) {
    std::map<std::int32_t, std::size_t> counts;
    for (const Entry& entry : entries) {
        if (entry.arm != 0) ++counts[entry.arm];
    }
    if (counts.size() > 1)
        std::cerr << "zk: " << path << " holds " << counts.size() << " connections; the one with the most is read\n";
    const auto most = std::max_element(counts.begin(), counts.end(),
                                       [](const auto& one, const auto& other) { return one.second < other.second; });
    return most == counts.end() ? 0 : most->first;
}

}  // namespace

bool is_black_box(const std::string& path) {
    char magic[sizeof box::kMagic] = {};
    std::ifstream(path, std::ios::binary).read(magic, sizeof magic);
    return std::memcmp(magic, box::kMagic, sizeof magic) == 0;
}

Recording load_black_box(const std::string& path) {
    std::vector<Entry> entries = entries_of(path);
    const std::int32_t arm = busiest_arm(entries, path);
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& one, const Entry& other) { return one.unix_ns < other.unix_ns; });
    Recording recording;
    StateReader states;
    for (const Entry& entry : entries) {
        if (entry.arm != 0 && entry.arm != arm) continue;
        if (entry.kind == box::Kind::kPush) {
            recording.push.push_back({entry.unix_ns, entry.text});
            if (const auto state = states.read(entry.text, entry.unix_ns)) recording.states.push_back(*state);
        } else {
            const bool is_frame = entry.kind != box::Kind::kEvent;
            const std::string way = !is_frame ? "" : entry.kind == box::Kind::kSent ? "> " : "< ";
            recording.log.push_back({entry.unix_ns, is_frame, way + entry.text});
        }
    }
    return recording;
}

}  // namespace tool
