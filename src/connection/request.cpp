#include "connection/request.h"

#include <cjson/cJSON.h>

#include <charconv>
#include <cmath>
#include <cstring>

#include "connection/die.h"
#include "connection/line.h"
#include "connection/slots.h"
#include "zk/status.h"

namespace zk {
namespace {

constexpr double kIntegerTolerance = 2.220446049250313e-16;
constexpr char kNotFinite[] = "null";

// Formats a number by the rules of the wire, independent of the installed printer: integers of 32 bits as such, larger
// whole numbers below 1e60 in full, others with six decimals, in exponent form when very small or very large.
cJSON* number_item(double value) {
    if (!std::isfinite(value)) return cJSON_CreateRaw(kNotFinite);
    if (std::fabs(value) <= kIntegerTolerance) return cJSON_CreateNumber(0);
    const double whole = std::trunc(value);
    const bool fits = value >= INT32_MIN && value <= INT32_MAX;
    if (fits && std::fabs(whole - value) <= kIntegerTolerance) return cJSON_CreateNumber(whole);

    char text[80];
    const double size = std::fabs(value);
    const bool is_whole = std::fabs(std::floor(value) - value) <= kIntegerTolerance && size < 1e60;
    const bool exponent = !is_whole && (size < 1e-6 || size > 1e9);
    const auto end =
        std::to_chars(text, text + sizeof text - 1, value,
                      exponent ? std::chars_format::scientific : std::chars_format::fixed, is_whole ? 0 : 6);
    *end.ptr = '\0';
    return cJSON_CreateRaw(text);
}

// Whether a text is UTF-8, without checks for overlong forms and surrogates.
bool is_utf8(const char* text) {
    int following = 0;
    for (; *text; ++text) {
        const auto byte = static_cast<unsigned char>(*text);
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

// Whether the wire carries every number: none that is not finite, nor the lowest integer, which stands for a float that
// no integer holds.
bool has_all_numbers(const cJSON* item) {
    const bool is_lost = cJSON_IsNumber(item) ? item->valuedouble == INT32_MIN
                                              : cJSON_IsRaw(item) && std::strcmp(item->valuestring, kNotFinite) == 0;
    if (is_lost) return false;
    for (const cJSON* child = item->child; child; child = child->next) {
        if (!has_all_numbers(child)) return false;
    }
    return true;
}

}  // namespace

int32_t truncated(float value) {
    if (!(value >= -2147483648.0f && value < 2147483648.0f)) return INT32_MIN;
    return static_cast<int32_t>(value);
}

template <class Self>
cJSON* Fields<Self>::put_array(const char* key) {
    cJSON* array = cJSON_CreateArray();
    cJSON_AddItemToObject(object_, key, array);
    return array;
}

template <class Self>
cJSON* Fields<Self>::put_object(const char* key) {
    cJSON* object = cJSON_CreateObject();
    cJSON_AddItemToObject(object_, key, object);
    return object;
}

template <class Self>
void Fields<Self>::append(cJSON* array, double value) {
    cJSON_AddItemToArray(array, number_item(value));
}

template <class Self>
cJSON* Fields<Self>::append_object(cJSON* array) {
    cJSON* object = cJSON_CreateObject();
    cJSON_AddItemToArray(array, object);
    return object;
}

template <class Self>
void Fields<Self>::put_number(const char* key, double value) {
    cJSON_AddItemToObject(object_, key, number_item(value));
}

template <class Self>
void Fields<Self>::put_boolean(const char* key, bool value) {
    cJSON_AddItemToObject(object_, key, cJSON_CreateBool(value));
}

template <class Self>
void Fields<Self>::put_text(const char* key, const char* value) {
    cJSON_AddItemToObject(object_, key, cJSON_CreateString(value ? value : ""));
}

template <class Self>
void Fields<Self>::put_numbers(const char* key, std::initializer_list<double> values) {
    cJSON* array = put_array(key);
    for (const double value : values) append(array, value);
}

template <class Self>
void Fields<Self>::put_pose(const char* key, const Pose& pose) {
    const Position& p = pose.position;
    const Euler& e = pose.euler;
    put_numbers(key, {double(millionths(p.x)), double(millionths(p.y)), double(millionths(p.z)),  //
                      double(thousandths(e.rx)), double(thousandths(e.ry)), double(thousandths(e.rz))});
}

template class Fields<Object>;
template class Fields<Request>;

Request::Request(ArmSocket socket, const char* command, int frame_size)
    : Fields(cJSON_CreateObject()),
      tree_(object_, cJSON_Delete),
      socket_(socket),
      command_(command ? command : ""),
      frame_size_(frame_size) {
    if (command) text("command", command);
}

Request& Request::joints(const char* key, const float* degrees) {
    cJSON* array = put_array(key);
    for (int i = 0; i < request_joint_count(socket_); ++i) append(array, thousandths(degrees[i]));
    return *this;
}

Frame Request::frame() const {
    const std::unique_ptr<char, decltype(&cJSON_free)> text(cJSON_Print(tree_.get()), cJSON_free);
    const bool is_refused = is_handle(socket_);  // where a socket's call ends the process
    if (!text) {
        if (is_refused) return Frame::refused(ZK_NO_MEMORY);
        die("no memory for the request \"%s\"", command_);
    }
    const size_t length = std::strlen(text.get());
    const bool fits = length + 3 <= static_cast<size_t>(frame_size_);
    if (is_refused && !(fits && is_utf8(text.get()) && has_all_numbers(tree_.get()))) {
        return Frame::refused(ZK_BAD_ARGUMENT);
    }
    if (!fits) {
        die("the request \"%s\" takes %zu bytes, its frame holds %d", command_, length + 2, frame_size_ - 1);
    }
    Frame frame;
    std::memcpy(frame.text, text.get(), length);
    std::memcpy(frame.text + length, "\r\n", 3);
    frame.length = static_cast<int>(length) + 2;
    return frame;
}

}  // namespace zk
