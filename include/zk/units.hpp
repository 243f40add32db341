/*
 * Angles, lengths, percentages and times that do not mix: the compiler refuses to add an angle to a length, or to take
 * a number for either. C++17, header only.
 *
 *     using namespace zk::literals;
 *     zk::Angle turn = 90_deg + 0.1_rad;
 *     zk::Length step = 0.3_m - 20_mm;
 *     double whole_turns = turn / 360_deg;
 *     arm.set_deadline(200_ms);
 */
#ifndef ZK_UNITS_HPP
#define ZK_UNITS_HPP

#include <chrono>
#include <cstdint>
#include <limits>

namespace zk {

/* What Angle, Length and Percent have in common: sums and differences of like quantities, multiples, ratios and
 * comparisons. */
template <class Unit>
class Quantity {
 public:
    friend constexpr Unit operator+(Unit a, Unit b) { return with_value(a.value_ + b.value_); }
    friend constexpr Unit operator-(Unit a, Unit b) { return with_value(a.value_ - b.value_); }
    friend constexpr Unit operator-(Unit a) { return with_value(-a.value_); }
    friend constexpr Unit operator*(Unit a, double factor) { return with_value(a.value_ * factor); }
    friend constexpr Unit operator*(double factor, Unit a) { return with_value(a.value_ * factor); }
    friend constexpr Unit operator/(Unit a, double divisor) { return with_value(a.value_ / divisor); }
    friend constexpr double operator/(Unit a, Unit b) { return a.value_ / b.value_; }
    friend constexpr Unit& operator+=(Unit& a, Unit b) { return a = a + b; }
    friend constexpr Unit& operator-=(Unit& a, Unit b) { return a = a - b; }
    friend constexpr bool operator==(Unit a, Unit b) { return a.value_ == b.value_; }
    friend constexpr bool operator!=(Unit a, Unit b) { return a.value_ != b.value_; }
    friend constexpr bool operator<(Unit a, Unit b) { return a.value_ < b.value_; }
    friend constexpr bool operator>(Unit a, Unit b) { return a.value_ > b.value_; }
    friend constexpr bool operator<=(Unit a, Unit b) { return a.value_ <= b.value_; }
    friend constexpr bool operator>=(Unit a, Unit b) { return a.value_ >= b.value_; }

    /* The quantity without its sign. */
    friend constexpr Unit abs(Unit a) { return a.value_ < 0 ? -a : a; }

 protected:
    static constexpr Unit with_value(double value) {
        Unit unit;
        unit.value_ = value;
        return unit;
    }
    double value_ = 0;
};

/* An angle. degrees(90) and radians(1.5) make one, and so do the literals; Angle() is 0. */
class Angle : public Quantity<Angle> {
 public:
    constexpr double radians() const { return value_; }
    constexpr double degrees() const { return value_ / kDegree; }

    friend constexpr Angle radians(double value) { return with_value(value); }
    friend constexpr Angle degrees(double value) { return with_value(value * kDegree); }

 private:
    static constexpr double kDegree = 3.14159265358979323846 / 180;
};
constexpr Angle radians(double value);
constexpr Angle degrees(double value);

/* A length. metres(0.3) and millimetres(300) make one, and so do the literals; Length() is 0. */
class Length : public Quantity<Length> {
 public:
    constexpr double metres() const { return value_; }
    constexpr double millimetres() const { return value_ * 1000; }

    friend constexpr Length metres(double value) { return with_value(value); }
    friend constexpr Length millimetres(double value) { return with_value(value / 1000); }
};
constexpr Length metres(double value);
constexpr Length millimetres(double value);

/* A share in hundredths, of a speed for example. percent(20) makes one, and so does the literal; Percent() is 0. */
class Percent : public Quantity<Percent> {
 public:
    constexpr double value() const { return value_; }

    friend constexpr Percent percent(double value) { return with_value(value); }
};
constexpr Percent percent(double value);

/* A time as the calls of the interface take it: whole milliseconds in 32 bits, cut to their range. */
constexpr std::int32_t milliseconds_of(std::chrono::milliseconds time) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
    const std::int64_t count = time.count();
    return static_cast<std::int32_t>(count > kMost ? kMost : count < -kMost ? -kMost : count);
}

/* 90_deg, 1.5_rad, 0.3_m, 300_mm, 20_percent, 200_ms, 1.5_s. A time is rounded down to whole milliseconds. */
namespace literals {
constexpr Angle operator""_deg(long double value) { return degrees(static_cast<double>(value)); }
constexpr Angle operator""_deg(unsigned long long value) { return degrees(static_cast<double>(value)); }
constexpr Angle operator""_rad(long double value) { return radians(static_cast<double>(value)); }
constexpr Angle operator""_rad(unsigned long long value) { return radians(static_cast<double>(value)); }
constexpr Length operator""_m(long double value) { return metres(static_cast<double>(value)); }
constexpr Length operator""_m(unsigned long long value) { return metres(static_cast<double>(value)); }
constexpr Length operator""_mm(long double value) { return millimetres(static_cast<double>(value)); }
constexpr Length operator""_mm(unsigned long long value) { return millimetres(static_cast<double>(value)); }
constexpr Percent operator""_percent(long double value) { return percent(static_cast<double>(value)); }
constexpr Percent operator""_percent(unsigned long long value) { return percent(static_cast<double>(value)); }
constexpr std::chrono::milliseconds operator""_ms(unsigned long long value) {
    return std::chrono::milliseconds(static_cast<std::int64_t>(value));
}
constexpr std::chrono::milliseconds operator""_s(unsigned long long value) {
    return std::chrono::milliseconds(static_cast<std::int64_t>(value) * 1000);
}
constexpr std::chrono::milliseconds operator""_s(long double value) {
    return std::chrono::milliseconds(static_cast<std::int64_t>(value * 1000));
}
}  // namespace literals

}  // namespace zk

#endif
