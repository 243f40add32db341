#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "support/kdl_frames.h"
#include "zk/numeric.h"

namespace zk::test {
namespace {

constexpr float kPi = 3.1415927f;
constexpr double kTolerance = 2e-6;

class Sampler {
 public:
    float within(float limit) { return std::uniform_real_distribution<float>(-limit, limit)(generator_); }
    Euler euler() { return {within(kPi), within(1.5f), within(kPi)}; }
    Pose pose() { return {{within(1), within(1), within(1)}, {}, euler()}; }

 private:
    std::mt19937 generator_{20240229};
};

void expect_rotation(const Matrix& actual, const KDL::Rotation& expected) {
    EXPECT_EQ(actual.rows, 3);
    EXPECT_EQ(actual.cols, 3);
    for (int k = 0; k < 4; ++k) EXPECT_TRUE(actual.m[3][k] == 0 && actual.m[k][3] == 0);
    expect_near(kdl_rotation(actual), expected, kTolerance);
}

Matrix with_m20(float m20) {
    Matrix r{3, 3, {{0.1f, 0.2f, 0.3f}, {0.4f, 0.5f, 0.6f}, {m20, 0.8f, 0.9f}}};
    return r;
}

TEST(Rotations, AgreeWithKdlInEveryForm) {
    Sampler sampler;
    for (int i = 0; i < 200; ++i) {
        const Euler e = sampler.euler();
        const KDL::Rotation expected = to_kdl(e);
        expect_rotation(rotx(e.rx), KDL::Rotation::RotX(e.rx));
        expect_rotation(roty(e.ry), KDL::Rotation::RotY(e.ry));
        expect_rotation(rotz(e.rz), KDL::Rotation::RotZ(e.rz));
        expect_rotation(euler_to_matrix(e), expected);
        expect_rotation(quat_to_matrix(euler_to_quat(e)), expected);
        expect_near(to_kdl(euler_to_quat(e)), expected, kTolerance);
        expect_near(to_kdl(matrix_to_quat(euler_to_matrix(e))), expected, kTolerance);
        expect_near(to_kdl(matrix_to_euler(euler_to_matrix(e))), expected, 2e-5);
        expect_near(to_kdl(quat_to_euler(euler_to_quat(e))), expected, 2e-5);
    }
}

TEST(Rotations, SingularPitchHasZeroYaw) {
    const Matrix up = with_m20(0.9999995f), down = with_m20(-0.9999995f);
    EXPECT_FLOAT_EQ(matrix_to_euler(up).rx, -std::atan2(0.2f, 0.5f));
    EXPECT_EQ(matrix_to_euler(up).rz, 0);
    EXPECT_EQ(matrix_to_euler(up).ry, std::atan2(-0.9999995f, std::sqrt(0.1f * 0.1f + 0.4f * 0.4f)));
    EXPECT_FLOAT_EQ(matrix_to_euler(down).rx, std::atan2(0.2f, 0.5f));
    EXPECT_EQ(matrix_to_euler(down).rz, 0);

    for (float bound : {0.999999f, -0.999999f}) {  // on the bound itself the general branch holds
        EXPECT_EQ(matrix_to_euler(with_m20(bound)).rx, std::atan2(0.8f, 0.9f));
        EXPECT_EQ(matrix_to_euler(with_m20(bound)).rz, std::atan2(0.4f, 0.1f));
    }
}

TEST(Rotations, AnglesBelowTheWrapGainATurn) {
    EXPECT_NEAR(matrix_to_euler(rotx(-3.14f)).rx, 3.1431853f, 1e-6);
    EXPECT_NEAR(matrix_to_euler(rotz(-3.135f)).rz, 3.1481853f, 1e-6);
    EXPECT_NEAR(matrix_to_euler(rotx(-3.12f)).rx, -3.12f, 1e-6);
    EXPECT_NEAR(matrix_to_euler(rotz(3.14f)).rz, 3.14f, 1e-6);

    // The bound itself, -3.13 in single precision, is not wrapped.
    float y = std::sin(-3.13), x = std::cos(-3.13);
    while (std::atan2(y, x) < -3.13f) y = std::nextafter(y, -1.0f);
    while (std::atan2(y, x) > -3.13f) y = std::nextafter(y, 0.0f);
    Matrix r = unit_matrix(3);
    r.m[2][1] = y;
    r.m[2][2] = x;
    EXPECT_EQ(matrix_to_euler(r).rx, -3.13f);
}

TEST(Rotations, QuaternionStartsFromTheLargestComponent) {
    const struct {
        float m00, m11, m22;
        int largest;  // the component that is computed as 0.25 s: 0 for w to 3 for z
    } cases[] = {
        {-0.25f, 0.5f, 0, 0},   // positive trace
        {0.25f, 0, -0.25f, 1},  // trace of 0
        {0.5f, -0.25f, -0.5f, 1},  {-0.25f, 0.5f, -0.5f, 2},  {-0.25f, -0.5f, 0.5f, 3},
        {0.25f, 0.25f, -0.75f, 2}, {0.25f, -0.75f, 0.25f, 3}, {-0.25f, -0.25f, -0.25f, 3},  // equal ones
    };
    for (const auto& c : cases) {
        const Quat q = matrix_to_quat({3, 3, {{c.m00, 1, 2}, {4, c.m11, 8}, {16, 32, c.m22}}});
        const float squares[] = {c.m00 + c.m11 + c.m22, c.m00 - c.m11 - c.m22, c.m11 - c.m00 - c.m22,
                                 c.m22 - c.m00 - c.m11};
        const float s = 2 * std::sqrt(squares[c.largest] + 1);
        const Quat expected[] = {{0.25f * s, 24 / s, -14 / s, 3 / s},
                                 {24 / s, 0.25f * s, 5 / s, 18 / s},
                                 {-14 / s, 5 / s, 0.25f * s, 40 / s},
                                 {3 / s, 18 / s, 40 / s, 0.25f * s}};
        const auto& [w, x, y, z] = expected[c.largest];
        EXPECT_FLOAT_EQ(q.w, w) << c.m00 << ' ' << c.m11;
        EXPECT_FLOAT_EQ(q.x, x) << c.m00 << ' ' << c.m11;
        EXPECT_FLOAT_EQ(q.y, y) << c.m00 << ' ' << c.m11;
        EXPECT_FLOAT_EQ(q.z, z) << c.m00 << ' ' << c.m11;
    }
}

TEST(Rotations, QuaternionNeedNotBeNormalised) {
    expect_rotation(quat_to_matrix({2, 0, 0, 0}), KDL::Rotation::Identity());
    expect_rotation(quat_to_matrix({0, 0, 0, 0}), KDL::Rotation::Identity());
    expect_rotation(quat_to_matrix({1, 2, 3, 4}),
                    to_kdl(Quat{1 / 5.477226f, 2 / 5.477226f, 3 / 5.477226f, 4 / 5.477226f}));

    // A squared norm of a millionth or less counts as zero: no turn.
    const float x = 0.000999f;
    float y = 0;
    while (x * x + y * y < 0.000001f) y += 1e-9f;
    ASSERT_EQ(x * x + y * y, 0.000001f);
    expect_rotation(quat_to_matrix({0, x, y, 0}), KDL::Rotation::Identity());
    expect_rotation(quat_to_matrix({0, 0.00101f, 0, 0}), KDL::Rotation::RotX(kPi));
}

TEST(Poses, TransformsReadTheEulerAnglesOrTheQuaternion) {
    Pose p = Sampler().pose();
    p.quaternion = {0, 1, 0, 0};
    const KDL::Frame half_turn(KDL::Rotation::RotX(kPi), to_kdl(p.position));
    expect_near(to_kdl(pose_quat_to_transformation_matrix(p)), half_turn, kTolerance);
    const Matrix t = pose_euler_to_transformation_matrix(p);
    expect_near(to_kdl(t), to_kdl(p), kTolerance);
    expect_pose_near(transformation_matrix_to_pose(t), to_kdl(p), 2e-5);
    EXPECT_TRUE(t.rows == 4 && t.cols == 4 && t.m[3][3] == 1);
    EXPECT_TRUE(t.m[3][0] == 0 && t.m[3][1] == 0 && t.m[3][2] == 0);
}

TEST(Quaternions, InterpolationTurnsByPhi) {
    const float theta = 0.7f;  // half the turn that the quaternions stand for
    const Quat from{1, 0, 0, 0}, to{std::cos(theta), 0, std::sin(theta), 0};
    for (float phi : {0.0f, 0.2f, 0.5f, 0.7f}) {
        const Quat q = quaternion_interpolation(theta, phi, from, to);
        EXPECT_NEAR(q.w, std::cos(phi), 1e-6);
        EXPECT_NEAR(q.y, std::sin(phi), 1e-6);
        EXPECT_TRUE(q.x == 0 && q.z == 0);
    }
    EXPECT_FALSE(std::isfinite(quaternion_interpolation(0, 0, from, from).w));
}

}  // namespace
}  // namespace zk::test
