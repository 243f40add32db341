#include "connection/json.h"

#include <cjson/cJSON.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cctype>
#include <cstring>
#include <new>

namespace zk {
namespace {

using Type = JsonNode::Type;

constexpr size_t kNodes = 1024;
constexpr size_t kTextBytes = 10240;
constexpr int kLevels = 16;
constexpr int kExactDigits = 15;  // a double holds each such integer, and each power of ten below 10^23
constexpr std::array<double, kExactDigits + 1> kPowersOfTen{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                            1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

int32_t cut_to_32_bits(double number) {
    if (number >= INT32_MAX) return INT32_MAX;
    if (number <= INT32_MIN) return INT32_MIN;
    return static_cast<int32_t>(number);
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Reads the usual text. Whatever it does not take is left to cJSON, also to be refused.
class Reader {
 public:
    Reader(const char* text, JsonNode* nodes, char* texts) : at_(text), nodes_(nodes), texts_(texts) {}

    bool read() { return *at_ == '{' && value(nullptr, 0, kLevels); }

 private:
    void skip_space() {
        while (*at_ != '\0' && static_cast<unsigned char>(*at_) <= ' ') ++at_;
    }
    bool skip(char c) {
        if (*at_ != c) return false;
        ++at_;
        return true;
    }
    bool skip(const char* word) {
        const size_t length = std::strlen(word);
        if (std::strncmp(at_, word, length) != 0) return false;
        at_ += length;
        return true;
    }

    bool value(const char* name, size_t name_length, int levels) {
        if (count_ == kNodes || levels == 0) return false;
        const size_t index = count_++;
        JsonNode& node = nodes_[index] = JsonNode{};
        node.name = name;
        node.name_length = name_length;
        if (!contents(node, levels)) return false;
        node.size = static_cast<uint32_t>(count_ - index);
        return true;
    }

    bool contents(JsonNode& node, int levels) {
        switch (*at_) {
            case '{':
                return node.type = Type::kObject, children(node, '}', levels);
            case '[':
                return node.type = Type::kArray, children(node, ']', levels);
            case '"':
                return node.type = Type::kText, text(node);
            case 't':
                return node.type = Type::kTrue, node.integer = 1, skip("true");
            case 'f':
                return node.type = Type::kFalse, skip("false");
            case 'n':
                return node.type = Type::kNull, skip("null");
            default:
                return node.type = Type::kNumber, number(node);
        }
    }

    bool children(JsonNode& node, char end, int levels) {
        ++at_;
        skip_space();
        if (skip(end)) return true;
        do {
            skip_space();
            const char* name = nullptr;
            size_t name_length = 0;
            if (end == '}' && !this->name(name, name_length)) return false;
            if (!value(name, name_length, levels - 1)) return false;
            ++node.children;
            skip_space();
        } while (skip(','));
        return skip(end);
    }

    // Stays in the text: a name with an escape is rare enough to be cJSON's.
    bool name(const char*& name, size_t& length) {
        if (!skip('"')) return false;
        name = at_;
        while (*at_ != '"') {
            if (*at_ == '\0' || *at_ == '\\') return false;
            ++at_;
        }
        length = static_cast<size_t>(at_ - name);
        ++at_;
        skip_space();
        if (!skip(':')) return false;
        skip_space();
        return true;
    }

    bool text(JsonNode& node) {
        node.text = texts_;
        for (++at_; *at_ != '"'; ++at_) {
            if (*at_ == '\0') return false;
            *texts_++ = *at_ == '\\' ? escaped(*++at_) : *at_;
            if (texts_[-1] == '\0') return false;
        }
        *texts_++ = '\0';
        ++at_;
        return true;
    }

    // Zero for what is no escape of one character.
    static char escaped(char c) {
        switch (c) {
            case '"':
            case '\\':
            case '/':
                return c;
            case 'b':
                return '\b';
            case 'f':
                return '\f';
            case 'n':
                return '\n';
            case 'r':
                return '\r';
            case 't':
                return '\t';
            default:
                return '\0';
        }
    }

    static bool ends_number(char c) { return c == ',' || c == ']' || c == '}' || static_cast<unsigned char>(c) <= ' '; }

    // The quotient of two integers that a double holds is rounded once, so it is the double nearest to the decimal.
    bool number(JsonNode& node) {
        const bool is_negative = skip('-');
        int64_t digits = 0;
        int count = 0;
        const auto take_digits = [&] {
            const char* first = at_;
            for (; is_digit(*at_) && count <= kExactDigits; ++at_, ++count) digits = digits * 10 + (*at_ - '0');
            return at_ - first;
        };
        if (take_digits() == 0) return false;
        const auto places = skip('.') ? static_cast<size_t>(take_digits()) : 0;
        if (count > kExactDigits || at_[-1] == '.') return false;
        if (!ends_number(*at_)) return false;
        node.number = static_cast<double>(digits);
        if (places > 0) node.number /= kPowersOfTen[places];
        if (is_negative) node.number = -node.number;
        node.integer = cut_to_32_bits(node.number);
        return true;
    }

    const char* at_;
    JsonNode* nodes_;
    size_t count_ = 0;
    char* texts_;
};

size_t count_nodes(const cJSON* item) {
    size_t count = 1;
    for (const cJSON* child = item->child; child; child = child->next) count += count_nodes(child);
    return count;
}

Type type_of(const cJSON* item) {
    switch (item->type & 0xFF) {
        case cJSON_False:
            return Type::kFalse;
        case cJSON_True:
            return Type::kTrue;
        case cJSON_Number:
            return Type::kNumber;
        case cJSON_String:
            return Type::kText;
        case cJSON_Array:
            return Type::kArray;
        case cJSON_Object:
            return Type::kObject;
        default:
            return Type::kNull;
    }
}

// Returns the place after the nodes of the item.
JsonNode* copy(const cJSON* item, JsonNode* node) {
    JsonNode* next = node + 1;
    node->type = type_of(item);
    for (const cJSON* child = item->child; child; child = child->next, ++node->children) next = copy(child, next);
    node->size = static_cast<uint32_t>(next - node);
    node->integer = item->valueint;
    node->number = item->valuedouble;
    node->text = item->valuestring;
    node->name = item->string;
    node->name_length = item->string ? std::strlen(item->string) : 0;
    return next;
}

}  // namespace

Item Item::key(const char* name) const {
    if (!node_) return {};
    const size_t length = std::strlen(name);
    const auto is_same = [](unsigned char a, unsigned char b) { return a == b || std::tolower(a) == std::tolower(b); };
    for (const Item child : *this) {
        const JsonNode& node = *child.node_;
        if (node.name && node.name_length == length && std::equal(name, name + length, node.name, is_same))
            return child;
    }
    return {};
}

Item Item::operator[](int index) const {
    if (index < 0 || index >= size()) return {};
    if (node_->size == node_->children + 1) return Item(node_ + 1 + index);  // nothing is in the elements
    Iterator element = begin();
    for (int i = 0; i < index; ++i) ++element;
    return *element;
}

// Threads share few of them: a text is read and left within microseconds. Without a free one, cJSON reads the text.
struct Json::Memory {
    static Memory* take() {
        static std::array<Memory, 4> all;
        for (Memory& memory : all) {
            if (!memory.is_taken.exchange(true, std::memory_order_acquire)) return &memory;
        }
        return nullptr;
    }
    void leave() { is_taken.store(false, std::memory_order_release); }

    std::atomic<bool> is_taken{false};
    JsonNode nodes[kNodes];
    char texts[kTextBytes];
};

Json::Json(const char* text) {
    if (!text) return;
    if (std::strlen(text) < kTextBytes) memory_ = Memory::take();
    if (memory_ && Reader(text, memory_->nodes, memory_->texts).read()) {
        root_ = memory_->nodes;
    } else {
        read_by_cjson(text);
    }
}

Json::~Json() {
    if (memory_) memory_->leave();
    cJSON_Delete(tree_);
}

void Json::read_by_cjson(const char* text) {
    tree_ = cJSON_Parse(text);
    if (!tree_) return;
    nodes_.reset(new (std::nothrow) JsonNode[count_nodes(tree_)]);
    if (!nodes_) return;
    copy(tree_, nodes_.get());
    root_ = nodes_.get();
}

}  // namespace zk
