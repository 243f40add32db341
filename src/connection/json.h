// A JSON text, read into nodes that stand in the order of the text, as cJSON reads it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

struct cJSON;

namespace zk {

struct JsonNode {
    enum class Type : uint8_t { kNull, kFalse, kTrue, kNumber, kText, kArray, kObject };

    Type type = Type::kNull;
    uint32_t children = 0;
    uint32_t size = 0;           // nodes, with all that are in it: the next sibling stands at `this + size`
    int32_t integer = 0;         // of a number, cut to 32 bits; 1 for true
    double number = 0;           // 0 for anything but a number
    const char* text = nullptr;  // null for anything but a text
    const char* name = nullptr;  // not terminated; null without one
    size_t name_length = 0;
};

// An item of a text, or none. Reads of none return 0, "" or none.
class Item {
 public:
    Item() = default;
    explicit Item(const JsonNode* node) : node_(node) {}
    explicit operator bool() const { return node_ != nullptr; }

    bool is_true() const { return is(JsonNode::Type::kTrue); }
    bool is_false() const { return is(JsonNode::Type::kFalse); }
    bool is_number() const { return is(JsonNode::Type::kNumber); }
    bool is_text() const { return is(JsonNode::Type::kText); }
    bool is_array() const { return is(JsonNode::Type::kArray); }
    bool is_object() const { return is(JsonNode::Type::kObject); }

    int32_t integer() const { return node_ ? node_->integer : 0; }              // 1 for true, 0 for all but numbers
    double number() const { return is_number() ? node_->number : 0; }           // 0 for anything else
    const char* text() const { return is_text() ? node_->text : ""; }           // "" for anything else
    int size() const { return node_ ? static_cast<int>(node_->children) : 0; }  // elements
    Item key(const char* name) const;                                           // the first, whatever its case
    Item operator[](int index) const;

    // Elements in turn; those of a list of objects are walked to once.
    class Iterator;
    Iterator begin() const;
    Iterator end() const;

 private:
    bool is(JsonNode::Type type) const { return node_ && node_->type == type; }

    const JsonNode* node_ = nullptr;
};

class Item::Iterator {
 public:
    explicit Iterator(const JsonNode* element) : element_(element) {}
    Item operator*() const { return Item(element_); }
    Iterator& operator++() { return element_ += element_->size, *this; }
    bool operator!=(const Iterator& other) const { return element_ != other.element_; }

 private:
    const JsonNode* element_;
};

inline Item::Iterator Item::begin() const { return Iterator(node_ ? node_ + 1 : nullptr); }
inline Item::Iterator Item::end() const { return Iterator(node_ ? node_ + node_->size : nullptr); }

// The usual text is read in one pass and without an allocation into memory that is kept for it. cJSON reads the others:
// texts with exponents or \u in them, with many nodes or levels, and all that are no JSON. Names point into the text,
// which must outlive this.
class Json {
 public:
    explicit Json(const char* text);
    ~Json();
    Json(const Json&) = delete;
    Json& operator=(const Json&) = delete;

    const JsonNode* root() const { return root_; }  // null when the text is not JSON, or null

 private:
    void read_by_cjson(const char* text);

    struct Memory;
    Memory* memory_ = nullptr;
    cJSON* tree_ = nullptr;
    std::unique_ptr<JsonNode[]> nodes_;
    const JsonNode* root_ = nullptr;
};

}  // namespace zk
