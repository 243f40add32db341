// Requests: the socket, the command, then the keys in the order of the wire. All scales are defined here, as
// single-precision products truncated toward zero.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "connection/json_writer.h"
#include "zk/connection.h"
#include "zk/transform_types.h"

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
    Self& number(const char* key, double value) { return at(key).number(value), self(); }
    Self& boolean(const char* key, bool value) { return at(key).boolean(value), self(); }
    Self& text(const char* key, const char* value) { return at(key).text(value ? value : ""), self(); }
    Self& numbers(const char* key, std::initializer_list<double> values) {
        return numbers(key, values.begin(), static_cast<int>(values.size()));
    }
    template <class Number>
    Self& numbers(const char* key, const Number* values, int count) {
        return array(key, count, [&](JsonWriter& json, int i) { json.number(static_cast<double>(values[i])); });
    }
    // Position in millionths of a metre, Euler angles in thousandths of a radian.
    Self& pose(const char* key, const Pose& pose);
    // A nested object, filled by `fill(Object&)`.
    template <class Fill>
    Self& object(const char* key, Fill fill);
    // An array of nested objects, each filled by `fill(Object&, index)`.
    template <class Fill>
    Self& objects(const char* key, int count, Fill fill);

 protected:
    // An array whose elements `put(JsonWriter&, index)` writes.
    template <class Put>
    Self& array(const char* key, int count, Put put);

 private:
    JsonWriter& at(const char* key) {
        JsonWriter& json = self().json();
        json.key(key);
        return json;
    }
    Self& self() { return static_cast<Self&>(*this); }
};

class Object : public Fields<Object> {
 public:
    // Opens the object, and closes it.
    explicit Object(JsonWriter& json) : json_(json) { json_.open_object(); }
    ~Object() { json_.close_object(); }
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    JsonWriter& json() { return json_; }

 private:
    JsonWriter& json_;
};

template <class Self>
template <class Fill>
Self& Fields<Self>::object(const char* key, Fill fill) {
    Object nested(at(key));
    fill(nested);
    return self();
}

template <class Self>
template <class Put>
Self& Fields<Self>::array(const char* key, int count, Put put) {
    JsonWriter& json = at(key);
    json.open_array();
    for (int i = 0; i < count; ++i) {
        json.element();
        put(json, i);
    }
    json.close_array();
    return self();
}

template <class Self>
template <class Fill>
Self& Fields<Self>::objects(const char* key, int count, Fill fill) {
    return array(key, count, [&](JsonWriter& json, int i) {
        Object nested(json);
        fill(nested, i);
    });
}

template <class Self>
Self& Fields<Self>::pose(const char* key, const Pose& pose) {
    const Position& p = pose.position;
    const Euler& e = pose.euler;
    return numbers(key, {double(millionths(p.x)), double(millionths(p.y)), double(millionths(p.z)),  //
                         double(thousandths(e.rx)), double(thousandths(e.ry)), double(thousandths(e.rz))});
}

// The text of a request as it goes on the wire: formatted print and CRLF.
struct Frame {
    char text[JsonWriter::kRoom];
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
    JsonWriter& json() { return json_; }
    // Ends the process when the text does not fit the frame. For a handle the frame is refused then, when the text is
    // not UTF-8, and when a number is not finite or is a float beyond 32 bits of the wire's unit.
    Frame frame() const;

 private:
    JsonWriter json_;  // the object is open
    ArmSocket socket_;
    const char* command_;
    int frame_size_;
};

}  // namespace zk
