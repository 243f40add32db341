/*
 * What a call of the C++ interface returns: its value, or an Error that says what failed and what to do. C++17, header
 * only.
 *
 * Result<T> is std::expected<T, Error> where the standard library has it, else a class with the same members. Who wants
 * exceptions calls value(), who does not looks at has_value() and error():
 *
 *     zk::Pose here = arm.pose().value();                       // throws
 *     if (auto here = arm.pose()) use(*here);                   // does not
 *     else std::cerr << here.error().message() << '\n';
 *
 * What value() throws is a std::exception and a zk::Error, whatever the version of the language:
 *
 *     catch (const zk::Error& error) { if (error.status == ZK_REFUSED) ... }
 *     catch (const std::exception& error) { std::cerr << error.what() << '\n'; }
 */
#ifndef ZK_RESULT_HPP
#define ZK_RESULT_HPP

#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#if __has_include(<version>)
#include <version>
#endif
#ifdef __cpp_lib_expected
#include <expected>
#endif

#include "zk/control.h"
#include "zk/status.h"

/* What returns a Result is another thing with std::expected, so that it has another name for the linker: sources of
 * several versions of the language may be linked together. */
#ifdef __cpp_lib_expected
#define ZK_RESULT_NAMESPACE with_std_expected
#else
#define ZK_RESULT_NAMESPACE with_own_expected
#endif

namespace zk {

/* A failure: a value like any other. Its texts without an owner are constant. */
struct Error {
    int status = ZK_OK;            /* ZK_Status */
    const char* command = "";      /* the C function that failed */
    std::string text;              /* what failed, without a full stop */
    const char* cause = "";        /* what the status means, as ZK_Explain says */
    const char* advice = "";       /* what to do about it; "" for nothing */
    ZK_GoOn go_on = ZK_MEND_FIRST; /* whether the program may go on */

    /* All of it in a line. */
    std::string message() const {
        std::string line = std::string(command) + ": " + text + " (status " + std::to_string(status) + ")";
        if (*advice) line.append(". ").append(advice);
        return line;
    }
};

/* The error of a status. text: what failed; without it, the text of the status. */
inline Error make_error(int status, const char* command, std::string text = {}) {
    ZK_Advice advice{};
    ZK_Explain(status, 0, 0, &advice);
    if (text.empty()) text = ZK_Status_Text(status);
    return {status,      command, std::move(text), advice.cause ? advice.cause : "", advice.remedy ? advice.remedy : "",
            advice.go_on};
}

}  // namespace zk

#ifdef __cpp_lib_expected

/* Thrown by value(). */
template <>
class std::bad_expected_access<zk::Error> : public std::bad_expected_access<void>, public zk::Error {
 public:
    explicit bad_expected_access(zk::Error error) : zk::Error(std::move(error)), message_(message()) {}
    const char* what() const noexcept override { return message_.c_str(); }
    zk::Error& error() & { return *this; }
    const zk::Error& error() const& { return *this; }
    zk::Error&& error() && { return std::move(*this); }

 private:
    std::string message_;
};

namespace zk {
inline namespace ZK_RESULT_NAMESPACE {
template <class T>
using Result = std::expected<T, Error>;
using Unexpected = std::unexpected<Error>;
using BadResult = std::bad_expected_access<Error>;
}  // namespace ZK_RESULT_NAMESPACE
}  // namespace zk

#else

namespace zk {
inline namespace ZK_RESULT_NAMESPACE {

/* Thrown by value(). */
class BadResult : public std::exception, public Error {
 public:
    explicit BadResult(Error error) : Error(std::move(error)), message_(message()) {}
    const char* what() const noexcept override { return message_.c_str(); }
    const Error& error() const { return *this; }

 private:
    std::string message_;
};

/* Makes a Result that has failed. */
class Unexpected {
 public:
    explicit Unexpected(Error error) : error_(std::move(error)) {}
    const Error& error() const& { return error_; }
    Error&& error() && { return std::move(error_); }

 private:
    Error error_;
};

template <class T>
class Result;

namespace detail {
/* A Result of what a call returns, be it nothing. */
template <class Call>
Result<std::decay_t<std::invoke_result_t<Call> > > result_of_call(Call&& call) {
    if constexpr (std::is_void_v<std::invoke_result_t<Call> >) {
        call();
        return {};
    } else {
        return call();
    }
}
}  // namespace detail

/* A value or an Error. The members are those of std::expected and do the same. */
template <class T>
class [[nodiscard]] Result {
 public:
    using value_type = T;
    using error_type = Error;

    template <class U = T,
              class = std::enable_if_t<std::is_constructible_v<T, U> && !std::is_same_v<std::decay_t<U>, Result> &&
                                       !std::is_same_v<std::decay_t<U>, Unexpected> > >
    Result(U&& value) : content_(std::in_place_index<0>, std::forward<U>(value)) {}
    template <class... Arguments>
    explicit Result(std::in_place_t, Arguments&&... arguments)
        : content_(std::in_place_index<0>, std::forward<Arguments>(arguments)...) {}
    Result(Unexpected failure) : content_(std::in_place_index<1>, std::move(failure).error()) {}

    bool has_value() const noexcept { return content_.index() == 0; }
    explicit operator bool() const noexcept { return has_value(); }

    /* Undefined without a value. */
    T& operator*() & noexcept { return *std::get_if<0>(&content_); }
    const T& operator*() const& noexcept { return *std::get_if<0>(&content_); }
    T&& operator*() && noexcept { return std::move(**this); }
    T* operator->() noexcept { return std::get_if<0>(&content_); }
    const T* operator->() const noexcept { return std::get_if<0>(&content_); }

    /* Throw BadResult without a value. */
    T& value() & { return check(), **this; }
    const T& value() const& { return check(), **this; }
    T&& value() && { return check(), std::move(**this); }

    /* Undefined with a value. */
    Error& error() & noexcept { return *std::get_if<1>(&content_); }
    const Error& error() const& noexcept { return *std::get_if<1>(&content_); }
    Error&& error() && noexcept { return std::move(error()); }

    template <class U>
    T value_or(U&& other) const& {
        return has_value() ? **this : static_cast<T>(std::forward<U>(other));
    }
    template <class U>
    T value_or(U&& other) && {
        return has_value() ? std::move(**this) : static_cast<T>(std::forward<U>(other));
    }

    /* next(value) -> Result<U>, unless this has failed. */
    template <class Next>
    auto and_then(Next&& next) const& -> std::decay_t<std::invoke_result_t<Next, const T&> > {
        if (!has_value()) return Unexpected(error());
        return std::invoke(std::forward<Next>(next), **this);
    }
    template <class Next>
    auto and_then(Next&& next) && -> std::decay_t<std::invoke_result_t<Next, T&&> > {
        if (!has_value()) return Unexpected(std::move(*this).error());
        return std::invoke(std::forward<Next>(next), std::move(**this));
    }

    /* change(value) -> U, unless this has failed. */
    template <class Change>
    auto transform(Change&& change) const& -> Result<std::decay_t<std::invoke_result_t<Change, const T&> > > {
        if (!has_value()) return Unexpected(error());
        return detail::result_of_call([&]() -> decltype(auto) { return std::invoke(change, **this); });
    }
    template <class Change>
    auto transform(Change&& change) && -> Result<std::decay_t<std::invoke_result_t<Change, T&&> > > {
        if (!has_value()) return Unexpected(std::move(*this).error());
        return detail::result_of_call([&]() -> decltype(auto) { return std::invoke(change, std::move(**this)); });
    }

    /* rescue(error) -> Result<T>, when this has failed. */
    template <class Rescue>
    Result or_else(Rescue&& rescue) const& {
        return has_value() ? *this : Result(std::invoke(std::forward<Rescue>(rescue), error()));
    }
    template <class Rescue>
    Result or_else(Rescue&& rescue) && {
        return has_value() ? std::move(*this)
                           : Result(std::invoke(std::forward<Rescue>(rescue), std::move(*this).error()));
    }

 private:
    void check() const {
        if (!has_value()) throw BadResult(error());
    }
    std::variant<T, Error> content_;
};

/* Success or an Error. */
template <>
class [[nodiscard]] Result<void> {
 public:
    using value_type = void;
    using error_type = Error;

    Result() = default;
    Result(Unexpected failure) : error_(std::move(failure).error()) {}

    bool has_value() const noexcept { return !error_; }
    explicit operator bool() const noexcept { return has_value(); }
    void operator*() const noexcept {}
    void value() const {
        if (error_) throw BadResult(*error_);
    }
    Error& error() & noexcept { return *error_; }
    const Error& error() const& noexcept { return *error_; }
    Error&& error() && noexcept { return std::move(*error_); }

    template <class Next>
    auto and_then(Next&& next) const -> std::decay_t<std::invoke_result_t<Next> > {
        if (error_) return Unexpected(*error_);
        return std::invoke(std::forward<Next>(next));
    }
    template <class Change>
    auto transform(Change&& change) const -> Result<std::decay_t<std::invoke_result_t<Change> > > {
        if (error_) return Unexpected(*error_);
        return detail::result_of_call(std::forward<Change>(change));
    }
    template <class Rescue>
    Result or_else(Rescue&& rescue) const {
        return error_ ? Result(std::invoke(std::forward<Rescue>(rescue), *error_)) : *this;
    }

 private:
    std::optional<Error> error_;
};

}  // namespace ZK_RESULT_NAMESPACE
}  // namespace zk

#endif

#endif
