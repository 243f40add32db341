// Replies. The status is sticky: the first key that is missing or of the wrong type decides it, and every read after
// that does nothing, so a parser reads top to bottom like the message it takes apart. What was stored before a failure
// stays.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zk/status.h"
#include "zk/transform_types.h"

struct cJSON;

namespace zk {

// An item of a reply, or none. Reads of none give nothing.
class Item {
 public:
    Item() = default;
    explicit Item(const cJSON* item) : item_(item) {}
    explicit operator bool() const { return item_ != nullptr; }

    bool is_true() const;
    bool is_false() const;
    bool is_number() const;
    bool is_text() const;
    bool is_array() const;
    bool is_object() const;

    int32_t integer() const;   // the integer that the parser holds: 1 for true, 0 for any other than a number
    double number() const;     // 0 for anything else
    const char* text() const;  // "" for anything else
    int size() const;          // elements
    Item key(const char* name) const;
    Item operator[](int index) const;

 private:
    const cJSON* item_ = nullptr;
};

class Reply {
 public:
    explicit Reply(const char* text);  // status 9 when it is not JSON
    ~Reply();
    Reply(const Reply&) = delete;
    Reply& operator=(const Reply&) = delete;

    int status() const { return status_; }
    bool good() const { return status_ == ZK_OK; }
    // Sets the status, if nothing failed before, when `holds` is false. Returns whether all is well so far.
    bool require(bool holds, int status);

    Item root() const { return root_; }
    Item find(const char* key) const { return root_.key(key); }  // optional keys

    // A required key of the reply or of an object in it: none gives `missing`, another type `wrong`.
    Item number(Item object, const char* key, int wrong = ZK_WRONG_TYPE);
    Item text(Item object, const char* key, int wrong = ZK_WRONG_TYPE);
    Item object(Item object, const char* key, int wrong = ZK_WRONG_TYPE);
    Item boolean(Item object, const char* key, int wrong = ZK_WRONG_TYPE);
    // An array; of another size than `size` (unless that is negative) gives `wrong_size`.
    Item array(Item object, const char* key, int size = -1, int wrong_size = ZK_WRONG_SIZE, int wrong = ZK_WRONG_TYPE);

    // A required integer into a field, which keeps its value when none is there.
    template <class Field>
    void take(Item object, const char* key, Field& field) {
        if (const Item integer = number(object, key)) field = static_cast<Field>(integer.integer());
    }
    template <class Field>
    void take(const char* key, Field& field) {
        take(root_, key, field);
    }

    // An acknowledgement: true is 0, false `refused`, another type `other`.
    int acknowledgement(const char* key, int other = ZK_WRONG_TYPE, int refused = ZK_REFUSED);

 private:
    Item required(Item object, const char* key, bool (Item::*is)() const, int wrong);

    cJSON* tree_;
    Item root_;
    int status_;
};

// The parser of an acknowledgement, whole.
int acknowledgement(const char* text, const char* key, int other = ZK_WRONG_TYPE, int refused = ZK_REFUSED);

// A joint array, whole: missing 9, not an array `not_array`, of another size than the joints of the socket
// `wrong_size`.
struct JointArray {
    const char* key;
    float factor = 1.0f;
    float divisor = 1000.0f;
    int not_array = ZK_WRONG_TYPE;
    int wrong_size = ZK_WRONG_SIZE;
};
int joint_array(int32_t socket, const char* text, const JointArray& form, float* values);
int joint_array(int32_t socket, const char* text, const char* key, int32_t* values);

// A single number, whole: missing 9, another type `wrong`.
int integer_value(const char* text, const char* key, int32_t* value, int wrong = ZK_WRONG_TYPE);
int float_value(const char* text, const char* key, float divisor, float* value, int wrong = ZK_WRONG_TYPE);

// Integers of an array as floats, each divided.
void scaled(Item array, int count, float divisor, float* values);

// Six integers: millionths of a metre, thousandths of a radian.
void wire_pose(Item array, Position& position, Euler& euler);

// Copies a text into a fixed field, its end mark included; one that does not fit ends the process.
void copy_text(Item text, const char* key, char* field, size_t size);

// Copies at most `size` bytes, and ends the text only when it is shorter.
void copy_name(const char* name, char* field, size_t size);

}  // namespace zk
