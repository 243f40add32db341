// Requests: the socket, the command, then the keys in the order of the wire. All scales are defined here, as
// single-precision products truncated toward zero.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>

#include "zk/connection.h"
#include "zk/transform_types.h"

struct cJSON;

namespace zk {

// Truncates toward zero; a NaN or a value beyond 32 bits becomes the lowest integer, as the processor does it.
int32_t truncated(float value);

inline int32_t thousandths(float value) { return truncated(value * 1000.0f); }
inline int32_t millionths(float value) { return truncated(value * 1000000.0f); }

class Object;

// Each function appends one key to a JSON object and returns `Self` for the next call.
template <class Self>
class Fields {
 public:
    Self& number(const char* key, double value) { return put_number(key, value), self(); }
    Self& boolean(const char* key, bool value) { return put_boolean(key, value), self(); }
    Self& text(const char* key, const char* value) { return put_text(key, value), self(); }
    Self& numbers(const char* key, std::initializer_list<double> values) { return put_numbers(key, values), self(); }
    template <class Number>
    Self& numbers(const char* key, const Number* values, int count) {
        cJSON* array = put_array(key);
        for (int i = 0; i < count; ++i) append(array, static_cast<double>(values[i]));
        return self();
    }
    // Position in millionths of a metre, Euler angles in thousandths of a radian.
    Self& pose(const char* key, const Pose& pose) { return put_pose(key, pose), self(); }
    // A nested object, filled by `fill(Object&)`.
    template <class Fill>
    Self& object(const char* key, Fill fill);
    // An array of nested objects, each filled by `fill(Object&, index)`.
    template <class Fill>
    Self& objects(const char* key, int count, Fill fill);

 protected:
    explicit Fields(cJSON* object) : object_(object) {}
    cJSON* put_array(const char* key);
    cJSON* put_object(const char* key);
    static void append(cJSON* array, double value);
    static cJSON* append_object(cJSON* array);
    Self& self() { return static_cast<Self&>(*this); }

    cJSON* object_;

 private:
    void put_number(const char* key, double value);
    void put_boolean(const char* key, bool value);
    void put_text(const char* key, const char* value);
    void put_numbers(const char* key, std::initializer_list<double> values);
    void put_pose(const char* key, const Pose& pose);
};

class Object : public Fields<Object> {
 public:
    explicit Object(cJSON* object) : Fields(object) {}
};

template <class Self>
template <class Fill>
Self& Fields<Self>::object(const char* key, Fill fill) {
    Object nested(put_object(key));
    fill(nested);
    return self();
}

template <class Self>
template <class Fill>
Self& Fields<Self>::objects(const char* key, int count, Fill fill) {
    cJSON* array = put_array(key);
    for (int i = 0; i < count; ++i) {
        Object nested(append_object(array));
        fill(nested, i);
    }
    return self();
}

// The text of a request as it goes on the wire: formatted print and CRLF.
struct Frame {
    char text[1000];
    int length = 0;
    int refusal = 0;  // the status of a request that is not sent

    static Frame refused(int status) {
        Frame frame{};
        frame.refusal = status;
        return frame;
    }
};

class Request : public Fields<Request> {
 public:
    static constexpr int kUsualFrame = 300;

    // A null command leaves that key out.
    Request(ArmSocket socket, const char* command, int frame_size = kUsualFrame);

    // Six angles in thousandths of a degree, seven when the connection's arm mode has seven joints.
    Request& joints(const char* key, const float* degrees);

    ArmSocket socket() const { return socket_; }
    // Ends the process when the text does not fit the frame. For a handle the frame is refused then, when the text is
    // not UTF-8, and when a number is not finite or is a float beyond 32 bits of the wire's unit.
    Frame frame() const;

 private:
    std::shared_ptr<cJSON> tree_;
    ArmSocket socket_;
    const char* command_;
    int frame_size_;
};

}  // namespace zk
