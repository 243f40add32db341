/* Elements in a row that somebody else owns: std::span where the standard library has it. C++17, header only. */
#ifndef ZK_SPAN_HPP
#define ZK_SPAN_HPP

#include <array>
#include <cstddef>
#include <type_traits>
#include <utility>
#if __has_include(<version>)
#include <version>
#endif
#ifdef __cpp_lib_span
#include <span>
#endif

namespace zk {

#ifdef __cpp_lib_span
template <class T>
using Span = std::span<T>;
#else
/* A pointer and a size, from an array or from a container with data() and size(). The members are those of std::span.
 */
template <class T>
class Span {
 public:
    constexpr Span() = default;
    constexpr Span(T* data, std::size_t size) : data_(data), size_(size) {}
    template <std::size_t size>
    constexpr Span(T (&array)[size]) : data_(array), size_(size) {}
    template <class Container,
              class = std::enable_if_t<std::is_convertible_v<
                  std::remove_pointer_t<decltype(std::declval<Container&>().data())> (*)[], T (*)[]> > >
    constexpr Span(Container&& container) : data_(container.data()), size_(container.size()) {}

    constexpr T* data() const { return data_; }
    constexpr std::size_t size() const { return size_; }
    constexpr bool empty() const { return size_ == 0; }
    constexpr T& operator[](std::size_t i) const { return data_[i]; }
    constexpr T* begin() const { return data_; }
    constexpr T* end() const { return data_ + size_; }

 private:
    T* data_ = nullptr;
    std::size_t size_ = 0;
};
#endif

}  // namespace zk

#endif
