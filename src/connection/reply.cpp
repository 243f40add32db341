#include "connection/reply.h"

#include <algorithm>
#include <cstring>

#include "connection/die.h"
#include "connection/slots.h"

namespace zk {

bool Reply::require(bool holds, int status) {
    if (good() && !holds) status_ = status;
    return good();
}

Item Reply::required(Item object, const char* key, bool (Item::*is)() const, int wrong) {
    if (!good()) return {};
    const Item item = object.key(key);
    return require(bool(item), ZK_BAD_REPLY) && require((item.*is)(), wrong) ? item : Item();
}

Item Reply::number(Item object, const char* key, int wrong) { return required(object, key, &Item::is_number, wrong); }
Item Reply::text(Item object, const char* key, int wrong) { return required(object, key, &Item::is_text, wrong); }
Item Reply::object(Item object, const char* key, int wrong) { return required(object, key, &Item::is_object, wrong); }

Item Reply::boolean(Item object, const char* key, int wrong) {
    if (!good()) return {};
    const Item item = object.key(key);
    return require(bool(item), ZK_BAD_REPLY) && require(item.is_true() || item.is_false(), wrong) ? item : Item();
}

Item Reply::array(Item object, const char* key, int size, int wrong_size, int wrong) {
    const Item item = required(object, key, &Item::is_array, wrong);
    return good() && require(size < 0 || item.size() == size, wrong_size) ? item : Item();
}

int Reply::acknowledgement(const char* key, int other, int refused) {
    const Item item = find(key);
    require(bool(item), ZK_BAD_REPLY);
    require(!item.is_false(), refused);
    require(item.is_true(), other);
    return status_;
}

int acknowledgement(const char* text, const char* key, int other, int refused) {
    return Reply(text).acknowledgement(key, other, refused);
}

int joint_array_of(int joints, const char* text, const JointArray& form, float* values) {
    Reply reply(text);
    const Item array = reply.array(reply.root(), form.key, joints, form.wrong_size, form.not_array);
    for (int i = 0; reply.good() && i < joints; ++i) {
        values[i] = static_cast<float>(array[i].integer()) * form.factor / form.divisor;
    }
    return reply.status();
}

int joint_array(int32_t socket, const char* text, const JointArray& form, float* values) {
    return joint_array_of(joint_count(socket), text, form, values);
}

int joint_array(int32_t socket, const char* text, const char* key, int32_t* values) {
    Reply reply(text);
    const int joints = joint_count(socket);
    const Item array = reply.array(reply.root(), key, joints);
    for (int i = 0; reply.good() && i < joints; ++i) values[i] = array[i].integer();
    return reply.status();
}

int integer_value(const char* text, const char* key, int32_t* value, int wrong) {
    Reply reply(text);
    if (const Item number = reply.number(reply.root(), key, wrong)) *value = number.integer();
    return reply.status();
}

int float_value(const char* text, const char* key, float divisor, float* value, int wrong) {
    Reply reply(text);
    if (const Item number = reply.number(reply.root(), key, wrong))
        *value = static_cast<float>(number.integer()) / divisor;
    return reply.status();
}

void scaled(Item array, int count, float divisor, float* values) {
    for (int i = 0; array && i < count; ++i) values[i] = static_cast<float>(array[i].integer()) / divisor;
}

void wire_pose(Item array, Position& position, Euler& euler) {
    if (!array) return;
    const auto value = [&](int i, float divisor) { return static_cast<float>(array[i].integer()) / divisor; };
    position = {value(0, 1000000.0f), value(1, 1000000.0f), value(2, 1000000.0f)};
    euler = {value(3, 1000.0f), value(4, 1000.0f), value(5, 1000.0f)};
}

void copy_text(Item text, const char* key, char* field, size_t size) {
    if (!text) return;
    size_t length = std::strlen(text.text());
    if (length >= size && !cuts_texts)
        die("the text of \"%s\" takes %zu bytes, its field holds %zu", key, length, size - 1);
    length = std::min(length, size - 1);
    std::memcpy(field, text.text(), length);
    field[length] = '\0';
}

void copy_name(const char* name, char* field, size_t size) {
    const size_t length = strnlen(name, size);
    std::memcpy(field, name, length);
    if (length < size) field[length] = '\0';
}

}  // namespace zk
