// Replies. The status is sticky: the first key that is missing or of the wrong type sets it, and later reads do
// nothing. Values stored before a failure stay.
#pragma once

#include <cstddef>
#include <cstdint>

#include "connection/json.h"
#include "zk/status.h"
#include "zk/transform_types.h"

namespace zk {

class Reply {
 public:
    explicit Reply(const char* text) : json_(text), status_(json_.root() ? ZK_OK : ZK_BAD_REPLY) {}  // 9: no JSON

    int status() const { return status_; }
    bool good() const { return status_ == ZK_OK; }
    // Sets the status when `holds` is false and nothing has failed before. Returns whether nothing has failed.
    bool require(bool holds, int status);

    Item root() const { return Item(json_.root()); }
    Item find(const char* key) const { return root().key(key); }  // optional keys

    // A required key of the reply or of an object in it: 9 without it, `wrong` for another type.
    Item number(Item object, const char* key, int wrong = ZK_WRONG_TYPE);
    Item text(Item object, const char* key, int wrong = ZK_WRONG_TYPE);
    Item object(Item object, const char* key, int wrong = ZK_WRONG_TYPE);
    Item boolean(Item object, const char* key, int wrong = ZK_WRONG_TYPE);
    // A required array: `wrong_size` for another size than `size`, unless that is negative.
    Item array(Item object, const char* key, int size = -1, int wrong_size = ZK_WRONG_SIZE, int wrong = ZK_WRONG_TYPE);

    // Stores a required integer in a field; without one the field keeps its value.
    template <class Field>
    void take(Item object, const char* key, Field& field) {
        if (const Item integer = number(object, key)) field = static_cast<Field>(integer.integer());
    }
    template <class Field>
    void take(const char* key, Field& field) {
        take(root(), key, field);
    }

    // An acknowledgement: true is 0, false `refused`, another type `other`.
    int acknowledgement(const char* key, int other = ZK_WRONG_TYPE, int refused = ZK_REFUSED);

 private:
    Item required(Item object, const char* key, bool (Item::*is)() const, int wrong);

    Json json_;
    int status_;
};

// The whole parser of an acknowledgement.
int acknowledgement(const char* text, const char* key, int other = ZK_WRONG_TYPE, int refused = ZK_REFUSED);

// The whole parser of a joint array: 9 without it, `not_array` for another type, `wrong_size` for another size than the
// joint count, which is that of the socket where there is one.
struct JointArray {
    const char* key;
    float factor = 1.0f;
    float divisor = 1000.0f;
    int not_array = ZK_WRONG_TYPE;
    int wrong_size = ZK_WRONG_SIZE;
};
int joint_array_of(int joints, const char* text, const JointArray& form, float* values);
int joint_array(int32_t socket, const char* text, const JointArray& form, float* values);
int joint_array(int32_t socket, const char* text, const char* key, int32_t* values);

// The whole parser of a single number: 9 without it, `wrong` for another type.
int integer_value(const char* text, const char* key, int32_t* value, int wrong = ZK_WRONG_TYPE);
int float_value(const char* text, const char* key, float divisor, float* value, int wrong = ZK_WRONG_TYPE);

// Integers of an array as floats, each divided.
void scaled(Item array, int count, float divisor, float* values);

// Six integers: millionths of a metre, thousandths of a radian.
void wire_pose(Item array, Position& position, Euler& euler);

// Copies a text and its terminating zero into a fixed field; a text that does not fit ends the process, or is cut on a
// connection of ZK_Connect.
inline thread_local bool cuts_texts = false;  // set while replies of such a connection are read
void copy_text(Item text, const char* key, char* field, size_t size);

// Copies at most `size` bytes, and a terminating zero only when the name is shorter.
void copy_name(const char* name, char* field, size_t size);

}  // namespace zk
