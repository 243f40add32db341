/*
 * One way to call every function of the interface: zk::call<Algo_Forward_Kinematics>(joint), or with the handle of an
 * arm in front zk::Arm::call<Movej_Cmd>(joints, 20, 0, 0, true). C++17, header only.
 *
 * The compiler refuses arguments of another number or kind. A number that its parameter cannot hold is an error with
 * ZK_BAD_ARGUMENT, and the function is not called. These arguments become what the interface takes:
 *
 *     Joints (degrees)    std::string, std::array, std::vector (their data)
 *     Pose                Percent (rounded)        std::chrono durations (whole milliseconds)
 *
 * The type of a function has no lengths: nothing notices an array, a span or a vector that is shorter than the header
 * of the function says, and the function reads or writes past its end.
 *
 * A function that returns an int returns its status as a Result<void>. So call directly those whose int is no status: a
 * count, an answer, a kind. Any other function returns what it returns.
 */
#ifndef ZK_CALL_HPP
#define ZK_CALL_HPP

#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

#include "zk/geometry.hpp"
#include "zk/result.hpp"
#include "zk/units.hpp"

namespace zk {
inline namespace ZK_RESULT_NAMESPACE {
namespace detail {

/* ------------------------------------------------------------------------------------------- Names of functions -- */

/* The compiler's own text for this function ends in "kFunction = Movej_Cmd]". */
template <auto kFunction>
constexpr const char* text_with_name() {
    return __PRETTY_FUNCTION__;
}

constexpr bool is_of_name(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

/* Where the last word of a text begins, and how long it is. */
struct Word {
    std::size_t begin = 0, size = 0;
};
constexpr Word name_in(const char* text) {
    std::size_t value = 0, end = 0;
    for (; text[end] != '\0'; ++end) {
        if (text[end] == '=' && value == 0) value = end;
    }
    Word word{value, 0};
    while (word.begin < end && !is_of_name(text[word.begin])) ++word.begin;
    while (is_of_name(text[word.begin + word.size])) ++word.size;
    return word;
}

template <auto kFunction>
constexpr auto name_array() {
    constexpr const char* text = text_with_name<kFunction>();
    constexpr Word word = name_in(text);
    static_assert(word.size > 0, "the compiler does not say the name of a function");
    std::array<char, word.size + 1> name{};
    for (std::size_t i = 0; i < word.size; ++i) name[i] = text[word.begin + i];
    return name;
}

template <auto kFunction>
inline constexpr auto kName = name_array<kFunction>();

/* ---------------------------------------------------------------------------------------------------- Arguments -- */

template <class T, class = void>
inline constexpr bool kHasData = false;
template <class T>
inline constexpr bool kHasData<T, std::void_t<decltype(std::declval<T&>().data())>> = true;

template <class T>
inline constexpr bool kIsDuration = false;
template <class Rep, class Period>
inline constexpr bool kIsDuration<std::chrono::duration<Rep, Period>> = true;

/* The nearest whole number; one that no parameter can hold for what has none. */
inline long long rounded(double value) {
    constexpr double kMost = 9e18;
    return std::abs(value) < kMost ? std::llround(value) : std::numeric_limits<long long>::max();
}

/* An argument in the form in which the parameter takes it, or which has the memory that its pointer points to. */
template <class Parameter, class Argument>
constexpr decltype(auto) held(Argument&& argument) {
    using Plain = std::decay_t<Argument>;
    if constexpr (std::is_same_v<Plain, Joints>) {
        return argument.to_c();
    } else if constexpr (std::is_same_v<Plain, Pose>) {
        return argument.to_c();
    } else if constexpr (std::is_same_v<Plain, Percent>) {
        return rounded(argument.value());
    } else if constexpr (kIsDuration<Plain>) {
        return std::chrono::duration_cast<std::chrono::milliseconds>(argument).count();
    } else {
        return std::forward<Argument>(argument);
    }
}

template <class Parameter, class Held>
constexpr bool fits() {
    if constexpr (std::is_integral_v<Parameter>) {
        return std::is_integral_v<std::decay_t<Held>> || std::is_enum_v<std::decay_t<Held>>;
    } else if constexpr (std::is_floating_point_v<Parameter>) {
        return std::is_arithmetic_v<std::decay_t<Held>>;
    } else if constexpr (std::is_pointer_v<Parameter> && kHasData<Held>) {
        return std::is_convertible_v<decltype(std::declval<Held&>().data()), Parameter>;
    } else {
        return std::is_convertible_v<Held, Parameter>;
    }
}

/* Whether the parameter can hold the number. */
template <class Parameter, class Held>
constexpr bool has_room([[maybe_unused]] const Held& number) {
    if constexpr (std::is_integral_v<Parameter> && std::is_integral_v<Held> && !std::is_same_v<Held, bool> &&
                  !std::is_same_v<Parameter, bool>) {
        if constexpr (std::is_signed_v<Held>) {
            if (number < 0 &&
                (!std::is_signed_v<Parameter> ||
                 static_cast<long long>(number) < static_cast<long long>(std::numeric_limits<Parameter>::min()))) {
                return false;
            }
        }
        return number <= 0 || static_cast<unsigned long long>(number) <=
                                  static_cast<unsigned long long>(std::numeric_limits<Parameter>::max());
    } else {
        return true;
    }
}

template <class Parameter, class Held>
constexpr Parameter passed(Held&& held) {
    if constexpr (std::is_pointer_v<Parameter> && kHasData<Held>) {
        return held.data();
    } else if constexpr (std::is_arithmetic_v<Parameter>) {
        return static_cast<Parameter>(held);
    } else {
        return std::forward<Held>(held);
    }
}

/* --------------------------------------------------------------------------------------------------------- Calls -- */

template <auto kFunction>
struct Function {};
template <auto kFunction, auto... kFunctions>
inline constexpr bool kIsOneOf = (std::is_same_v<Function<kFunction>, Function<kFunctions>> || ...);

/* Those after which ZK_Failure says more than the status. */
template <auto kFunction>
inline constexpr bool kSaysWhy = kIsOneOf<kFunction, ZK_Connect, ZK_Close, ZK_Set_Deadline, ZK_Stop, ZK_Wait_Move,
                                          ZK_Wait_Idle, ZK_Wait_Program, ZK_Move_Progress, ZK_Get_State, ZK_Connection>;

template <auto kFunction>
Unexpected failure_of(int status) {
    return Unexpected(make_error(status, kName<kFunction>.data(), kSaysWhy<kFunction> ? ZK_Failure() : ""));
}

template <auto kFunction>
Result<void> result_of(int status) {
    if (status != ZK_OK) return failure_of<kFunction>(status);
    return {};
}

template <auto kFunction, class Returned, class... Parameters, class... Held>
auto call_with(Returned (*)(Parameters...), Held&&... arguments) {
    static_assert((fits<Parameters, Held>() && ...), "an argument is not of its parameter's kind");
    if constexpr (std::is_same_v<Returned, int>) {
        if (!(has_room<Parameters>(arguments) && ...)) {
            return Result<void>(Unexpected(make_error(ZK_BAD_ARGUMENT, kName<kFunction>.data(),
                                                      "a number is too large or too small for its argument")));
        }
        return result_of<kFunction>(kFunction(passed<Parameters>(std::forward<Held>(arguments))...));
    } else {
        return kFunction(passed<Parameters>(std::forward<Held>(arguments))...);
    }
}

template <auto kFunction, class Returned, class... Parameters, class... Arguments>
auto call_function(Returned (*function)(Parameters...), Arguments&&... arguments) {
    static_assert(sizeof...(Parameters) == sizeof...(Arguments), "the function takes another number of arguments");
    if constexpr (sizeof...(Parameters) == sizeof...(Arguments)) {
        return call_with<kFunction>(function, held<Parameters>(std::forward<Arguments>(arguments))...);
    }
}

}  // namespace detail

/* Calls a function of the interface. */
template <auto kFunction, class... Arguments>
[[nodiscard]] auto call(Arguments&&... arguments) {
    return detail::call_function<kFunction>(kFunction, std::forward<Arguments>(arguments)...);
}

namespace detail {

/* What `value` returns, after a call that succeeded. */
template <class Value>
auto then(Result<void> done, Value value) -> Result<decltype(value())> {
    if (!done) return Unexpected(std::move(done).error());
    return value();
}

/* The last argument of a query: what it points to. */
template <auto kQuery, class T, class... Arguments>
Result<T> fetch(Arguments&&... arguments) {
    T answer{};
    return then(zk::call<kQuery>(std::forward<Arguments>(arguments)..., &answer), [&] { return answer; });
}

}  // namespace detail

}  // namespace ZK_RESULT_NAMESPACE
}  // namespace zk

#endif
