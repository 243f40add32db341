#include <algorithm>
#include <cerrno>
#include <cstring>

#include "command.h"
#include "recording/mcap.h"
#include "recording/mcap_format.h"

namespace tool {
namespace {

std::string record(Opcode opcode, const std::string& content) {
    return Bytes().number(opcode).blob<std::uint64_t>(content).text;
}

std::string map_of(const std::map<std::string, std::string>& values) {
    Bytes pairs;
    for (const auto& [key, value] : values) pairs.blob(key).blob(value);
    return pairs.text;
}

template <class Value>
std::string map_of(const std::map<std::uint16_t, Value>& values) {
    Bytes pairs;
    for (const auto& [key, value] : values) pairs.number(key).number(value);
    return pairs.text;
}

}  // namespace

McapWriter::McapWriter(const std::string& path) : path_(path), file_(path, std::ios::binary | std::ios::trunc) {
    put(kMcapMagic);
    put(record(Opcode::kHeader, Bytes().blob("ros2").blob("zk").text));
}

McapWriter::~McapWriter() {
    try {
        finish();
    } catch (const Failure&) {
    }
}

void McapWriter::put(const std::string& bytes) {
    if (!file_.write(bytes.data(), static_cast<std::streamsize>(bytes.size())))
        throw Failure(kFailed, path_ + " cannot be written: " + std::strerror(errno));
    position_ += bytes.size();
}

std::uint16_t McapWriter::add(const Topic& topic) {
    const std::uint16_t id = ++topics_;
    const std::string description =
        record(Opcode::kSchema, Bytes().number(id).blob(topic.type).blob("ros2msg").blob(topic.definition).text) +
        record(Opcode::kChannel, Bytes().number(id).number(id).blob(topic.name).blob("cdr").blob("").text);
    put(description);
    descriptions_ += description;
    return id;
}

void McapWriter::add_metadata(const std::string& name, const McapMetadata& values) {
    const std::uint64_t begin = position_;
    put(record(Opcode::kMetadata, Bytes().blob(name).blob(map_of(values)).text));
    metadata_indexes_ +=
        record(Opcode::kMetadataIndex, Bytes().number(begin).number(position_ - begin).blob(name).text);
    ++metadata_;
}

void McapWriter::write(std::uint16_t channel, std::int64_t unix_ns, const std::string& message) {
    constexpr std::size_t kChunk = 1 << 18;  // a second or two: what a crash loses
    if (chunk_.records.empty()) chunk_.first_ns = chunk_.last_ns = unix_ns;
    if (messages_++ == 0) first_ns_ = last_ns_ = unix_ns;
    chunk_.first_ns = std::min(chunk_.first_ns, unix_ns);
    chunk_.last_ns = std::max(chunk_.last_ns, unix_ns);
    first_ns_ = std::min(first_ns_, unix_ns);
    last_ns_ = std::max(last_ns_, unix_ns);
    const auto sequence = static_cast<std::uint32_t>(++counts_[channel]);
    chunk_.index[channel] += Bytes().number(unix_ns).number(std::uint64_t{chunk_.records.size()}).text;
    chunk_.records += record(Opcode::kMessage,
                             Bytes().number(channel).number(sequence).number(unix_ns).number(unix_ns).text + message);
    if (chunk_.records.size() >= kChunk) end_chunk();
}

void McapWriter::end_chunk() {
    if (chunk_.records.empty()) return;
    const Chunk chunk = std::exchange(chunk_, {});
    const std::uint64_t begin = position_, size = chunk.records.size();
    put(record(Opcode::kChunk, Bytes()
                                   .number(chunk.first_ns)
                                   .number(chunk.last_ns)
                                   .number(size)
                                   .number(checksum_of(chunk.records))
                                   .blob("")  // no compression
                                   .blob<std::uint64_t>(chunk.records)
                                   .text));
    const std::uint64_t length = position_ - begin;
    std::map<std::uint16_t, std::uint64_t> indexes;
    for (const auto& [channel, places] : chunk.index) {
        indexes[channel] = position_;
        put(record(Opcode::kMessageIndex, Bytes().number(channel).blob(places).text));
    }
    chunk_indexes_ += record(Opcode::kChunkIndex, Bytes()
                                                      .number(chunk.first_ns)
                                                      .number(chunk.last_ns)
                                                      .number(begin)
                                                      .number(length)
                                                      .blob(map_of(indexes))
                                                      .number(position_ - begin - length)
                                                      .blob("")
                                                      .number(size)
                                                      .number(size)
                                                      .text);
    ++chunks_;
    file_.flush();
}

void McapWriter::finish() {
    if (std::exchange(finished_, true)) return;
    end_chunk();
    put(record(Opcode::kDataEnd, Bytes().number(std::uint32_t{0}).text));
    const std::uint64_t summary = position_;
    put(descriptions_);
    put(record(Opcode::kStatistics, Bytes()
                                        .number(messages_)
                                        .number(topics_)
                                        .number(std::uint32_t{topics_})
                                        .number(std::uint32_t{0})
                                        .number(metadata_)
                                        .number(chunks_)
                                        .number(first_ns_)
                                        .number(last_ns_)
                                        .blob(map_of(counts_))
                                        .text));
    put(chunk_indexes_);
    put(metadata_indexes_);
    put(record(Opcode::kFooter, Bytes().number(summary).number(std::uint64_t{0}).number(std::uint32_t{0}).text));
    put(kMcapMagic);
    file_.close();
    if (!file_) throw Failure(kFailed, path_ + " cannot be written: " + std::strerror(errno));
}

}  // namespace tool
