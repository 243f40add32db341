// Whole fields of the model that are stored and returned as they are.
#pragma once

#include <algorithm>
#include <cstddef>

namespace zk {

template <class T, std::size_t n>
void store(T (&field)[n], const T* values) {
    std::copy_n(values, n, field);
}

template <class T, std::size_t n>
void load(const T (&field)[n], T* values) {
    std::copy_n(field, n, values);
}

}  // namespace zk
