/*
 * Joints, positions, rotations and poses in double precision, with units. C++17, header only.
 *
 *     using namespace zk::literals;
 *     zk::Pose at_part({0.4_m, 0_m, 120_mm}, zk::Rotation::from_euler(180_deg, 0_deg, 30_deg));
 *     zk::Pose above_part = at_part.moved(0_m, 0_m, -50_mm);      // along the tool's own axes
 *     zk::Pose in_base = base_T_work * work_T_part;               // frames compose
 *
 * A pose of the C interface (::Pose) becomes one of these by zk::Pose(c_pose), and one of these a C one by to_c().
 * Types of Eigen, or of a library with the same members, convert by from() and to<>():
 *
 *     Eigen::Isometry3d base_T_tool = pose.to<Eigen::Isometry3d>();
 *     zk::Pose back = zk::Pose::from(base_T_tool);
 */
#ifndef ZK_GEOMETRY_HPP
#define ZK_GEOMETRY_HPP

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "zk/arm_model.h"
#include "zk/transform_types.h"
#include "zk/units.hpp"

namespace zk {

/* ------------------------------------------------------------------------------------------------------- Joints -- */

/* The angles of up to seven joints. */
class Joints {
 public:
    static constexpr std::size_t kMost = 7;

    /* No joints. */
    Joints() = default;

    /* {0_deg, 20_deg, 70_deg, 0_deg, 90_deg, 0_deg} */
    template <class... Angles>
    Joints(Angle first, Angles... rest) : angles_{first, rest...}, size_(1 + sizeof...(Angles)) {
        static_assert(1 + sizeof...(Angles) <= kMost, "an arm has at most seven joints");
    }

    template <std::size_t size>
    Joints(const std::array<Angle, size>& angles) : size_(size) {
        static_assert(size <= kMost, "an arm has at most seven joints");
        std::copy(angles.begin(), angles.end(), angles_.begin());
    }

    /* From numbers: an array, a vector, or whatever a loop can go through. More than seven make no joints. */
    template <class Numbers>
    static Joints from_degrees(const Numbers& numbers) {
        return from_numbers(numbers, degrees(1));
    }
    template <class Numbers>
    static Joints from_radians(const Numbers& numbers) {
        return from_numbers(numbers, radians(1));
    }

    /* The first `size` of an array of the C interface, which is in degrees; at most seven. */
    static Joints from_c(const float* degree, std::size_t size) {
        Joints joints;
        joints.size_ = std::min(size, kMost);
        for (std::size_t i = 0; i < joints.size_; ++i) joints.angles_[i] = degree[i] * degrees(1);
        return joints;
    }
    /* The array of the C interface: degrees, 0 where there is no joint. */
    std::array<float, kMost> to_c() const {
        std::array<float, kMost> degree{};
        for (std::size_t i = 0; i < size_; ++i) degree[i] = static_cast<float>(angles_[i].degrees());
        return degree;
    }

    std::size_t size() const { return size_; }
    Angle& operator[](std::size_t i) { return angles_[i]; }
    const Angle& operator[](std::size_t i) const { return angles_[i]; }
    Angle* begin() { return angles_.data(); }
    Angle* end() { return angles_.data() + size_; }
    const Angle* begin() const { return angles_.data(); }
    const Angle* end() const { return angles_.data() + size_; }

    friend bool operator==(const Joints& a, const Joints& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
    friend bool operator!=(const Joints& a, const Joints& b) { return !(a == b); }

 private:
    template <class Numbers>
    static Joints from_numbers(const Numbers& numbers, Angle unit) {
        Joints joints;
        for (const auto& number : numbers) {
            if (joints.size_ == kMost) return Joints();
            joints.angles_[joints.size_++] = static_cast<double>(number) * unit;
        }
        return joints;
    }

    std::array<Angle, kMost> angles_{};
    std::size_t size_ = 0;
};

/* ----------------------------------------------------------------------------------------------------- Position -- */

/* A place, or the way from one to another. */
struct Position {
    Length x, y, z;

    Length norm() const { return metres(std::hypot(x.metres(), y.metres(), z.metres())); }

    friend Position operator+(Position a, Position b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
    friend Position operator-(Position a, Position b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
    friend Position operator-(Position a) { return {-a.x, -a.y, -a.z}; }
    friend Position operator*(Position a, double factor) { return {a.x * factor, a.y * factor, a.z * factor}; }
    friend Position operator*(double factor, Position a) { return a * factor; }
    friend bool operator==(Position a, Position b) { return a.x == b.x && a.y == b.y && a.z == b.z; }
    friend bool operator!=(Position a, Position b) { return !(a == b); }

    /* From and to a vector of three in metres, such as Eigen::Vector3d. */
    template <class Vector>
    static Position from(const Vector& v) {
        return {metres(static_cast<double>(v[0])), metres(static_cast<double>(v[1])),
                metres(static_cast<double>(v[2]))};
    }
    template <class Vector>
    Vector to() const {
        using Scalar = std::decay_t<decltype(std::declval<Vector&>()[0])>;
        return Vector{static_cast<Scalar>(x.metres()), static_cast<Scalar>(y.metres()),
                      static_cast<Scalar>(z.metres())};
    }
};

/* ----------------------------------------------------------------------------------------------------- Rotation -- */

/* Rotations about the fixed axes x, then y, then z: R = Rz(rz) Ry(ry) Rx(rx). */
struct EulerAngles {
    Angle rx, ry, rz;
};

/* A rotation; Rotation() is none. Kept as a quaternion of unit length. */
class Rotation {
 public:
    using Vector = std::array<double, 3>;
    using Matrix = std::array<Vector, 3>; /* rows */

    Rotation() = default;

    /* Made to unit length; four zeros are no rotation. */
    static Rotation from_quaternion(double w, double x, double y, double z) {
        const double norm = std::sqrt(w * w + x * x + y * y + z * z);
        Rotation rotation;
        if (norm != 0) rotation.wxyz_ = {w / norm, x / norm, y / norm, z / norm};
        return rotation;
    }

    /* By an angle about an axis of any length; about one of length 0, none. */
    static Rotation about(const Vector& axis, Angle angle) {
        const double length = std::hypot(axis[0], axis[1], axis[2]);
        if (!(length > 0)) return Rotation();
        const double half = angle.radians() / 2, sine = std::sin(half) / length;
        return from_quaternion(std::cos(half), sine * axis[0], sine * axis[1], sine * axis[2]);
    }
    static Rotation about_x(Angle angle) { return about({1, 0, 0}, angle); }
    static Rotation about_y(Angle angle) { return about({0, 1, 0}, angle); }
    static Rotation about_z(Angle angle) { return about({0, 0, 1}, angle); }

    static Rotation from_euler(Angle rx, Angle ry, Angle rz) { return about_z(rz) * about_y(ry) * about_x(rx); }
    static Rotation from_euler(const EulerAngles& euler) { return from_euler(euler.rx, euler.ry, euler.rz); }

    /* Of a matrix whose columns are the turned axes, of unit length and at right angles. */
    static Rotation from_matrix(const Matrix& m) {
        /* The largest of the four has a square that subtraction does not blur. */
        const double w = 1 + m[0][0] + m[1][1] + m[2][2], x = 1 + m[0][0] - m[1][1] - m[2][2];
        const double y = 1 - m[0][0] + m[1][1] - m[2][2], z = 1 - m[0][0] - m[1][1] + m[2][2];
        const double wx = m[2][1] - m[1][2], wy = m[0][2] - m[2][0], wz = m[1][0] - m[0][1];
        const double xy = m[0][1] + m[1][0], xz = m[0][2] + m[2][0], yz = m[1][2] + m[2][1];
        const double largest = std::max({w, x, y, z});
        if (largest == w) return from_quaternion(w, wx, wy, wz);
        if (largest == x) return from_quaternion(wx, x, xy, xz);
        if (largest == y) return from_quaternion(wy, xy, y, yz);
        return from_quaternion(wz, xz, yz, z);
    }

    /* w, x, y, z; the scalar first. */
    const std::array<double, 4>& quaternion() const { return wxyz_; }

    Matrix matrix() const {
        const auto [w, x, y, z] = wxyz_;
        return {{{1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)},
                 {2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)},
                 {2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)}}};
    }

    /* ry between -90 and 90 degrees; where it is one of them, rx is 0. */
    EulerAngles euler() const {
        const Matrix m = matrix();
        const double cosine = std::hypot(m[0][0], m[1][0]);
        const Angle ry = zk::radians(std::atan2(-m[2][0], cosine));
        if (cosine < 1e-9) return {Angle(), ry, zk::radians(std::atan2(-m[0][1], m[1][1]))};
        return {zk::radians(std::atan2(m[2][1], m[2][2])), ry, zk::radians(std::atan2(m[1][0], m[0][0]))};
    }

    /* The turn about axis(): 0 to 180 degrees. */
    Angle angle() const { return zk::radians(2 * std::atan2(sine(), std::abs(wxyz_[0]))); }

    /* The axis of the turn, of length 1; x for none. */
    Vector axis() const {
        const double length = wxyz_[0] < 0 ? -sine() : sine();
        if (length == 0) return {1, 0, 0};
        return {wxyz_[1] / length, wxyz_[2] / length, wxyz_[3] / length};
    }

    Rotation inverse() const {
        Rotation back;
        back.wxyz_ = {wxyz_[0], -wxyz_[1], -wxyz_[2], -wxyz_[3]};
        return back;
    }

    /* The angle between two rotations. */
    Angle angle_to(const Rotation& other) const { return (inverse() * other).angle(); }

    /* First b, then a. */
    friend Rotation operator*(const Rotation& a, const Rotation& b) {
        const auto [aw, ax, ay, az] = a.wxyz_;
        const auto [bw, bx, by, bz] = b.wxyz_;
        return from_quaternion(aw * bw - ax * bx - ay * by - az * bz, aw * bx + ax * bw + ay * bz - az * by,
                               aw * by - ax * bz + ay * bw + az * bx, aw * bz + ax * by - ay * bx + az * bw);
    }
    friend Position operator*(const Rotation& rotation, const Position& p) {
        const Matrix m = rotation.matrix();
        const auto row = [&](std::size_t i) { return m[i][0] * p.x + m[i][1] * p.y + m[i][2] * p.z; };
        return {row(0), row(1), row(2)};
    }

    /* From and to a quaternion with members w(), x(), y(), z(), such as Eigen::Quaterniond. */
    template <class Quaternion>
    static Rotation from(const Quaternion& q) {
        return from_quaternion(static_cast<double>(q.w()), static_cast<double>(q.x()), static_cast<double>(q.y()),
                               static_cast<double>(q.z()));
    }
    template <class Quaternion>
    Quaternion to() const {
        using Scalar = std::decay_t<decltype(std::declval<const Quaternion&>().w())>;
        return Quaternion(static_cast<Scalar>(wxyz_[0]), static_cast<Scalar>(wxyz_[1]), static_cast<Scalar>(wxyz_[2]),
                          static_cast<Scalar>(wxyz_[3]));
    }

 private:
    double sine() const { return std::hypot(wxyz_[1], wxyz_[2], wxyz_[3]); }

    std::array<double, 4> wxyz_{1, 0, 0, 0};
};

/* --------------------------------------------------------------------------------------------------------- Pose -- */

/* Where a frame is in another one: a_T_b as the names go, so that a_T_b * b_T_c is a_T_c. Pose() is no displacement. */
struct Pose {
    Position position;
    Rotation rotation;

    Pose() = default;
    Pose(const Position& position_in, const Rotation& rotation_in) : position(position_in), rotation(rotation_in) {}

    /* A pose of the C interface. Queries of the controller fill the Euler angles alone; functions that compute a pose
     * fill the quaternion too, which takes less time. */
    explicit Pose(const ::Pose& c, ZK_Orientation by = ZK_BY_EULER)
        : position{metres(static_cast<double>(c.position.x)), metres(static_cast<double>(c.position.y)),
                   metres(static_cast<double>(c.position.z))},
          rotation(
              by == ZK_BY_QUATERNION
                  ? Rotation::from_quaternion(static_cast<double>(c.quaternion.w), static_cast<double>(c.quaternion.x),
                                              static_cast<double>(c.quaternion.y), static_cast<double>(c.quaternion.z))
                  : Rotation::from_euler(radians(static_cast<double>(c.euler.rx)),
                                         radians(static_cast<double>(c.euler.ry)),
                                         radians(static_cast<double>(c.euler.rz)))) {}

    /* The pose of the C interface, all of its fields. */
    ::Pose to_c() const {
        const auto single = [](double value) { return static_cast<float>(value); };
        const auto [w, i, j, k] = rotation.quaternion();
        const EulerAngles euler = rotation.euler();
        return {{single(position.x.metres()), single(position.y.metres()), single(position.z.metres())},
                {single(w), single(i), single(j), single(k)},
                {single(euler.rx.radians()), single(euler.ry.radians()), single(euler.rz.radians())}};
    }

    Pose inverse() const {
        const Rotation back = rotation.inverse();
        return {back * -position, back};
    }

    /* Moved along its own axes. */
    Pose moved(Length x, Length y, Length z) const { return {position + rotation * Position{x, y, z}, rotation}; }

    /* Moved along the axes of the frame that it is in. */
    Pose shifted(Length x, Length y, Length z) const { return {position + Position{x, y, z}, rotation}; }

    /* Turned in place, about its own axes. */
    Pose turned(const Rotation& by) const { return {position, rotation * by}; }

    friend Pose operator*(const Pose& a, const Pose& b) {
        return {a.position + a.rotation * b.position, a.rotation * b.rotation};
    }
    friend Position operator*(const Pose& pose, const Position& p) { return pose.position + pose.rotation * p; }

    /* From and to a transform in metres with members linear() and translation(), such as Eigen::Isometry3d. */
    template <class Transform>
    static Pose from(const Transform& t) {
        const auto m = [&t](int row, int column) { return static_cast<double>(t.linear()(row, column)); };
        return {Position::from(t.translation()),
                Rotation::from_matrix(
                    {{{m(0, 0), m(0, 1), m(0, 2)}, {m(1, 0), m(1, 1), m(1, 2)}, {m(2, 0), m(2, 1), m(2, 2)}}})};
    }
    template <class Transform>
    Transform to() const {
        Transform t = Transform::Identity();
        using Scalar = typename Transform::Scalar;
        const Rotation::Matrix m = rotation.matrix();
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column) {
                t.linear()(row, column) =
                    static_cast<Scalar>(m[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]);
            }
        }
        t.translation()[0] = static_cast<Scalar>(position.x.metres());
        t.translation()[1] = static_cast<Scalar>(position.y.metres());
        t.translation()[2] = static_cast<Scalar>(position.z.metres());
        return t;
    }
};

}  // namespace zk

#endif
