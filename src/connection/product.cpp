#include "connection/product.h"

#include <array>
#include <cstring>

namespace zk {
namespace {

struct Mark {
    const char* text;
    int32_t number;
};

// The first mark that the text contains sets the number; without any it stays.
template <size_t size>
void recognise(const char* text, const std::array<Mark, size>& marks, int32_t& number) {
    for (const Mark& mark : marks) {
        if (!std::strstr(text, mark.text)) continue;
        number = mark.number;
        return;
    }
}

}  // namespace

Product product_of(const char* text) {
    Product product;
    recognise(text, std::array<Mark, 2>{{{"ZK65", 0}, {"ZK75", 1}}}, product.model);
    recognise(text, std::array<Mark, 5>{{{"ORB63", 8}, {"63", 3}, {"ORB65", 5}, {"62", 6}, {"72", 7}}}, product.model);
    recognise(text, std::array<Mark, 3>{{{"-B", 0}, {"-ZF", 1}, {"-6F", 2}}}, product.sensor);
    return product;
}

}  // namespace zk
