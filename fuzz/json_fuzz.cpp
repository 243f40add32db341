// The library's own reader of JSON beside cJSON: the same nodes from every text, and the same answer for every key.
#include <cjson/cJSON.h>

#include <cstring>
#include <string>

#include "input.h"
#include "src/connection/json.h"

namespace {

using zk::Item;
using zk::fuzz::expect;
using Type = zk::JsonNode::Type;

Type type_of(const cJSON* item) {
    return cJSON_IsFalse(item)    ? Type::kFalse
           : cJSON_IsTrue(item)   ? Type::kTrue
           : cJSON_IsNumber(item) ? Type::kNumber
           : cJSON_IsString(item) ? Type::kText
           : cJSON_IsArray(item)  ? Type::kArray
           : cJSON_IsObject(item) ? Type::kObject
                                  : Type::kNull;
}

// Whether both find the same element by a key, the first of those that have it whatever their case.
void compare_key(const zk::JsonNode& node, const cJSON* item, std::string key) {
    for (char& c : key) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    const cJSON* expected = cJSON_GetObjectItem(item, key.c_str());
    const Item found = Item(&node).key(key.c_str());
    expect(bool(found) == (expected != nullptr), "a key is found or not");
    if (expected) expect(found.integer() == expected->valueint, "a key has the value of its first element");
}

// Returns the place after the nodes of the item.
const zk::JsonNode* compare(const zk::JsonNode* node, const cJSON* item) {
    expect(node->type == type_of(item), "the type");
    expect(node->integer == item->valueint, "the integer");
    expect(std::memcmp(&node->number, &item->valuedouble, sizeof node->number) == 0, "the number");
    expect((node->text == nullptr) == (item->valuestring == nullptr), "whether there is a text");
    if (node->text) expect(std::strcmp(node->text, item->valuestring) == 0, "the text");
    expect((node->name == nullptr) == (item->string == nullptr), "whether there is a name");
    if (node->name) expect(std::string(node->name, node->name_length) == item->string, "the name");
    expect(node->children == static_cast<unsigned>(cJSON_GetArraySize(item)), "the number of elements");
    const zk::JsonNode* next = node + 1;
    int index = 0;
    for (const cJSON* child = item->child; child; child = child->next, ++index) {
        if (child->string) compare_key(*node, item, child->string);
        const Item element = Item(node)[index];
        expect(element && element.integer() == child->valueint, "an element by its index");
        next = compare(next, child);
    }
    expect(next == node + node->size, "the place of the next sibling");
    return next;
}

void compare(const std::string& text) {
    cJSON* const tree = cJSON_Parse(text.c_str());
    const zk::Json json(text.c_str());
    expect((json.root() != nullptr) == (tree != nullptr), "whether it is JSON");
    if (tree) compare(json.root(), tree);
    cJSON_Delete(tree);
}

// A text of the pieces that JSON and its mistakes are made of, which bytes alone come upon rarely.
std::string of_pieces(zk::fuzz::Input input) {
    static constexpr const char* kPieces[] = {"{",
                                              "}",
                                              "[",
                                              "]",
                                              ",",
                                              ":",
                                              "\"a\":",
                                              "\"A\":",
                                              "\"joint\":",
                                              "\"",
                                              "1",
                                              "-0",
                                              "0",
                                              "12345",
                                              "1.5",
                                              "-.5",
                                              "1.",
                                              "e5",
                                              "E-3",
                                              "+",
                                              "1e400",
                                              ".",
                                              "01",
                                              "0.001",
                                              " ",
                                              "\t",
                                              "\r\n",
                                              "true",
                                              "nul",
                                              "null",
                                              "false",
                                              "\"x\"",
                                              "\"\\n\"",
                                              "\\u0041",
                                              "\"\\/\"",
                                              "\\",
                                              "[{",
                                              "}]",
                                              "{\"b\":",
                                              "},",
                                              "],",
                                              "\"k\":[",
                                              "\xEF\xBB\xBF",
                                              "\xC3\xA4",
                                              "2147483647",
                                              "2147483648",
                                              "-2147483649",
                                              "999999999999999",
                                              "1234567890123456",
                                              "0.1234567890123456",
                                              "/"};
    std::string text = "{";
    while (!input.at_end()) text += kPieces[input.byte() % std::size(kPieces)];
    return text + "}";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    compare(std::string(reinterpret_cast<const char*>(data), size));
    compare(of_pieces({data, size}));
    return 0;
}
