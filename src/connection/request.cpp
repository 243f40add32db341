#include "connection/request.h"

#include <cstring>
#include <string_view>

#include "connection/die.h"
#include "connection/line.h"
#include "connection/slots.h"
#include "zk/status.h"

namespace zk {
namespace {

// Whether a text is UTF-8, without checks for overlong forms and surrogates.
bool is_utf8(std::string_view text) {
    int following = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool continues = (byte & 0xc0) == 0x80;
        if (continues != (following > 0)) return false;
        if (continues) {
            --following;
        } else {
            following = byte < 0x80 ? 0 : byte < 0xe0 ? 1 : byte < 0xf0 ? 2 : byte < 0xf8 ? 3 : -1;
        }
        if (following < 0) return false;
    }
    return following == 0;
}

}  // namespace

int32_t truncated(float value) {
    if (!(value >= -2147483648.0f && value < 2147483648.0f)) return INT32_MIN;
    return static_cast<int32_t>(value);
}

Request::Request(ArmSocket socket, const char* command, int frame_size)
    : socket_(socket), command_(command ? command : ""), frame_size_(frame_size) {
    json_.open_object();
    if (command) text("command", command);
}

Request& Request::joints(const char* key, const float* degrees) {
    return array(key, request_joint_count(socket_),
                 [&](JsonWriter& json, int i) { json.number(thousandths(degrees[i])); });
}

Frame Request::frame() const {
    constexpr std::string_view kEnd = "\n}\r\n";
    const std::string_view text = json_.written();
    const size_t length = json_.length() + kEnd.size();
    const bool fits = length < static_cast<size_t>(frame_size_);
    if (is_handle(socket_) && !(fits && is_utf8(text) && json_.carries_all_numbers())) {
        return Frame::refused(ZK_BAD_ARGUMENT);
    }
    if (!fits) die("the request \"%s\" takes %zu bytes, its frame holds %d", command_, length, frame_size_ - 1);
    Frame frame;
    std::memcpy(frame.text, text.data(), text.size());
    std::memcpy(frame.text + text.size(), kEnd.data(), kEnd.size() + 1);
    frame.length = static_cast<int>(length);
    return frame;
}

}  // namespace zk
