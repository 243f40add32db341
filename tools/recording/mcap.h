// Files of recorded messages in the MCAP format (mcap.dev/spec): each topic describes its own messages, so that viewers
// need nothing else. Written in chunks with an index, not compressed.
#pragma once

#include <cstdint>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tool {

// What the messages of a topic look like.
struct Topic {
    const char* name;
    const char* type;        // "sensor_msgs/msg/JointState"
    const char* definition;  // the type as ROS 2 writes it
};

using McapMetadata = std::map<std::string, std::string>;

// One thread at a time writes. Throws Failure when the file cannot be written.
class McapWriter {
 public:
    explicit McapWriter(const std::string& path);
    McapWriter(const McapWriter&) = delete;
    McapWriter& operator=(const McapWriter&) = delete;
    ~McapWriter();  // finishes the file, without a word when that fails

    // Adds a topic; returns its channel.
    std::uint16_t add(const Topic& topic);
    // Adds what describes the whole recording. Before the first message.
    void add_metadata(const std::string& name, const McapMetadata& values);
    void write(std::uint16_t channel, std::int64_t unix_ns, const std::string& message);
    // Ends the chunk, so that a crash does not lose it.
    void flush() { end_chunk(); }
    // Writes what is left, and the index.
    void finish();

 private:
    struct Chunk {
        std::string records;
        std::int64_t first_ns = 0, last_ns = 0;
        std::map<std::uint16_t, std::string> index;  // of each channel: times and places
    };
    void put(const std::string& bytes);
    void end_chunk();

    std::string path_;
    std::ofstream file_;
    std::uint64_t position_ = 0;
    bool finished_ = false;
    std::string descriptions_, chunk_indexes_, metadata_indexes_;
    Chunk chunk_;
    std::uint16_t topics_ = 0;
    std::uint32_t chunks_ = 0, metadata_ = 0;
    std::uint64_t messages_ = 0;
    std::map<std::uint16_t, std::uint64_t> counts_;
    std::int64_t first_ns_ = 0, last_ns_ = 0;
};

struct McapMessage {
    std::string topic, type;
    std::int64_t unix_ns = 0;
    std::string bytes;
};

// Reads the messages of a file in their order, and what describes the whole recording. Returns false when the file ends
// before its end: a recorder that was killed leaves such a one. Throws Failure when it is no MCAP file, or its chunks
// are compressed.
bool read_mcap(const std::string& path, const std::function<void(const McapMessage&)>& on_message,
               const std::function<void(const std::string& name, const McapMetadata&)>& on_metadata);

}  // namespace tool
