// The library's transforms as KDL's and back, so that a test can compare the two.
#pragma once

#include <gtest/gtest.h>

#include <kdl/frames.hpp>

#include "zk/transform_types.h"

namespace zk::test {

inline KDL::Rotation to_kdl(const Euler& e) { return KDL::Rotation::RPY(e.rx, e.ry, e.rz); }
inline KDL::Rotation to_kdl(const Quat& q) { return KDL::Rotation::Quaternion(q.x, q.y, q.z, q.w); }
inline KDL::Vector to_kdl(const Position& p) { return {p.x, p.y, p.z}; }

inline KDL::Rotation kdl_rotation(const Matrix& a) {
    KDL::Rotation r;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) r(i, j) = a.m[i][j];
    }
    return r;
}

inline KDL::Frame to_kdl(const Matrix& a) { return {kdl_rotation(a), KDL::Vector(a.m[0][3], a.m[1][3], a.m[2][3])}; }

// The frame of the position and the Euler angles of a pose.
inline KDL::Frame to_kdl(const Pose& p) { return {to_kdl(p.euler), to_kdl(p.position)}; }

inline Matrix to_matrix(const KDL::Frame& f) {
    Matrix a{4, 4, {}};
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) a.m[i][j] = static_cast<float>(f(i, j));
    }
    return a;
}

inline Pose to_pose(const KDL::Frame& f) {
    double x, y, z, w, rx, ry, rz;
    f.M.GetQuaternion(x, y, z, w);
    f.M.GetRPY(rx, ry, rz);
    const auto single = [](double v) { return static_cast<float>(v); };
    return {{single(f.p.x()), single(f.p.y()), single(f.p.z())},
            {single(w), single(x), single(y), single(z)},
            {single(rx), single(ry), single(rz)}};
}

// The distance of two rotations: the angle of the turn between them, radians.
inline double angle_between(const KDL::Rotation& a, const KDL::Rotation& b) { return KDL::diff(a, b).Norm(); }

inline void expect_near(const KDL::Rotation& actual, const KDL::Rotation& expected, double tolerance) {
    EXPECT_LT(angle_between(actual, expected), tolerance);
}

inline void expect_near(const KDL::Frame& actual, const KDL::Frame& expected, double tolerance) {
    EXPECT_LT((actual.p - expected.p).Norm(), tolerance);
    expect_near(actual.M, expected.M, tolerance);
}

// Checks that all three fields of a pose describe this frame.
inline void expect_pose_near(const Pose& actual, const KDL::Frame& expected, double tolerance) {
    EXPECT_LT((to_kdl(actual.position) - expected.p).Norm(), tolerance);
    expect_near(to_kdl(actual.euler), expected.M, tolerance);
    expect_near(to_kdl(actual.quaternion), expected.M, tolerance);
}

}  // namespace zk::test
