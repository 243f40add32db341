#include <cerrno>
#include <cstring>
#include <optional>

#include "command.h"
#include "recording/mcap.h"
#include "recording/mcap_format.h"

namespace tool {
namespace {

// Thrown where a content ends before what it says it holds.
struct CutShort {};

// Takes the content of a record apart.
class Content {
 public:
    explicit Content(std::string_view bytes) : bytes_(bytes) {}

    template <class Number>
    Number number() {
        Number value;
        std::memcpy(&value, take(sizeof value).data(), sizeof value);
        return value;
    }
    template <class Length = std::uint32_t>
    std::string_view blob() {
        return take(number<Length>());
    }
    std::string_view rest() { return take(bytes_.size()); }
    bool empty() const { return bytes_.empty(); }

 private:
    std::string_view take(std::uint64_t size) {
        if (size > bytes_.size()) throw CutShort();
        const std::string_view taken = bytes_.substr(0, size);
        bytes_.remove_prefix(size);
        return taken;
    }
    std::string_view bytes_;
};

class Reader {
 public:
    using OnMessage = std::function<void(const McapMessage&)>;
    using OnMetadata = std::function<void(const std::string&, const McapMetadata&)>;

    Reader(std::string path, const OnMessage& on_message, const OnMetadata& on_metadata)
        : path_(std::move(path)), on_message_(on_message), on_metadata_(on_metadata) {}

    // Returns whether the data have come to their end.
    bool read(Opcode opcode, Content content) {
        switch (opcode) {
            case Opcode::kSchema: {
                const auto id = content.number<std::uint16_t>();
                types_[id] = content.blob();
                break;
            }
            case Opcode::kChannel: {
                const auto id = content.number<std::uint16_t>(), type = content.number<std::uint16_t>();
                channels_[id] = {std::string(content.blob()), types_[type], 0, {}};
                break;
            }
            case Opcode::kMessage:
                read_message(content);
                break;
            case Opcode::kChunk:
                read_chunk(content);
                break;
            case Opcode::kMetadata:
                read_metadata(content);
                break;
            case Opcode::kDataEnd:
            case Opcode::kFooter:
                return true;
            default:
                break;
        }
        return false;
    }

 private:
    void read_message(Content& content) {
        const auto channel = channels_.find(content.number<std::uint16_t>());
        if (channel == channels_.end()) throw Failure(kUsage, path_ + " has a message of an unknown topic");
        content.number<std::uint32_t>();
        channel->second.unix_ns = content.number<std::int64_t>();
        content.number<std::int64_t>();
        channel->second.bytes = content.rest();
        on_message_(channel->second);
    }

    void read_metadata(Content& content) {
        const std::string name(content.blob());
        McapMetadata values;
        for (Content pairs(content.blob()); !pairs.empty();) {
            const std::string key(pairs.blob());
            values[key] = pairs.blob();
        }
        on_metadata_(name, values);
    }

    void read_chunk(Content& content) {
        for (int i = 0; i < 3; ++i) content.number<std::uint64_t>();
        const auto checksum = content.number<std::uint32_t>();
        if (!content.blob().empty())
            throw Failure(
                kUsage,
                path_ + " is compressed: write it again without compression (mcap compress --compression none)");
        const std::string_view bytes = content.blob<std::uint64_t>();
        if (checksum != 0 && checksum != checksum_of(bytes))
            throw Failure(kUsage, path_ + " is damaged: a checksum is wrong");
        Content records(bytes);
        while (!records.empty()) {
            const auto opcode = records.number<Opcode>();
            read(opcode, Content(records.blob<std::uint64_t>()));
        }
    }

    std::string path_;
    const OnMessage& on_message_;
    const OnMetadata& on_metadata_;
    std::map<std::uint16_t, std::string> types_;
    std::map<std::uint16_t, McapMessage> channels_;
};

// The next record of a file; none when it ends before the record does.
std::optional<std::pair<Opcode, std::string>> next_record(std::ifstream& file, std::uint64_t size) {
    char head[9];
    if (!file.read(head, sizeof head)) return std::nullopt;
    std::uint64_t length = 0;
    std::memcpy(&length, head + 1, sizeof length);
    if (length > size - static_cast<std::uint64_t>(file.tellg())) return std::nullopt;
    std::string content(length, '\0');
    if (!file.read(content.data(), static_cast<std::streamsize>(length))) return std::nullopt;
    return std::pair(static_cast<Opcode>(head[0]), std::move(content));
}

}  // namespace

bool read_mcap(const std::string& path, const std::function<void(const McapMessage&)>& on_message,
               const std::function<void(const std::string& name, const McapMetadata&)>& on_metadata) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!file) throw Failure(kUsage, path + " cannot be read: " + std::strerror(errno));
    const auto size = static_cast<std::uint64_t>(file.tellg());
    file.seekg(0);
    std::string magic(kMcapMagic.size(), '\0');
    if (!file.read(magic.data(), static_cast<std::streamsize>(magic.size())) || magic != kMcapMagic)
        throw Failure(kUsage, path + " is no MCAP file");
    Reader reader(path, on_message, on_metadata);
    try {
        for (;;) {
            const auto record = next_record(file, size);
            if (!record) return false;
            if (reader.read(record->first, Content(record->second))) return true;
        }
    } catch (const CutShort&) {
        return false;
    }
}

}  // namespace tool
