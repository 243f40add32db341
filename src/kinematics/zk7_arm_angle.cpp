// The closed form of the 75 in the arm angle: spherical shoulder, elbow, spherical wrist.
#include <cmath>

#include "kinematics/zk7.h"
#include "numeric/sine_cosine.h"

namespace zk::zk7 {
namespace {

float sign_of(float q) { return q < 0 ? -1.0f : 1.0f; }

float three_way_sign(float x) { return x > 0 ? 1.0f : x < 0 ? -1.0f : 0.0f; }

// (7.9), the angle at one corner of the triangle of shoulder, elbow and wrist, from its two sides and the one opposite.
float angle_between_sides(float a, float b, float opposite) {
    return std::acos(clamped((a * a + b * b - opposite * opposite) / (a * (2 * b))));
}

Mat3 skew(const Vec3& v) { return {{{0, -v[2], v[1]}, {v[2], 0, -v[0]}, {-v[1], v[0], 0}}}; }

Mat3 negated(Mat3 a) {
    for (Vec3& row : a) row = scaled(-1.0f, row);
    return a;
}

// (7.12): Rodrigues' formula for the turn of R0 about u, ordered by the arm angle.
Coefficients turned_about(const Vec3& u, const Mat3& R0) {
    const Mat3 K = skew(u);
    const Mat3 along = {scaled(u[0], u), scaled(u[1], u), scaled(u[2], u)};
    return {product(K, R0), negated(product(product(K, K), R0)), product(along, R0)};
}

// (7.14): F R' T for each coefficient.
Coefficients wrist_coefficients(float q4, const Coefficients& shoulder, const Mat3& T) {
    const auto [s4, c4] = sine_cosine(q4);
    const Mat3 F = {{{c4, 0, -s4}, {0, 1, 0}, {-s4, 0, -c4}}};
    const auto wrist = [&](const Mat3& k) { return product(product(F, transposed(k)), T); };
    return {wrist(shoulder.sine), wrist(shoulder.cosine), wrist(shoulder.constant)};
}

// (7.22): joint 7 has two turns; the one on the side of the seed is wanted. The constants are single-precision values
// of two and four pi, the second of them not twice the first.
float on_seeds_side(float q7, float seed) {
    if (std::fabs(q7 - seed) > 6.0f) q7 += q7 < 0 ? 6.2831855f : -6.2831855f;
    if (std::fabs(q7 - seed) > 12.0f) q7 += q7 < 0 ? 12.565742f : -12.565742f;
    return q7;
}

}  // namespace

Bends bends_of(const Joints& q) { return {sign_of(q[1]), sign_of(q[3]), sign_of(q[5])}; }

WristLine wrist_line(const Arm& arm, const Target& target) {
    Vec3 w;
    for (int i = 0; i < 3; ++i) w[i] = target.p[i] - arm.d7 * target.R[i][2];  // (7.7)
    w[2] -= arm.d1;
    const float L = norm(w);
    return {w, {w[0] / L, w[1] / L, w[2] / L}, L};
}

float elbow_joint(const Arm& arm, const WristLine& line, float g4) {
    const float c = (line.L * line.L - arm.d3 * arm.d3 - arm.d5 * arm.d5) / (arm.d5 * (2 * arm.d3));  // (7.8)
    return g4 * std::acos(clamped(c));
}

ReferencePlane reference_plane(const Arm& arm, const WristLine& line, float g4) {
    const auto& w = line.w;
    const float s = std::sqrt(w[0] * w[0] + w[1] * w[1]);
    const SineCosine t1 = s > 0 ? sine_cosine(std::atan2(w[1], w[0])) : SineCosine{0, 1};  // (7.10)
    const float a = angle_between_sides(line.L, arm.d3, arm.d5);                           // (7.9)
    const SineCosine t2 = sine_cosine(std::atan2(s, w[2]) - g4 * a);                       // (7.11)
    return {t1.s, t1.c, t2.s, t2.c};
}

ElbowBranch elbow_branch(float q4, const WristLine& line, const ReferencePlane& plane, const Target& target) {
    const auto [s1, c1, s2, c2] = plane;
    const Mat3 R0 = {{{c2 * c1, -s1, s2 * c1}, {c2 * s1, c1, s2 * s1}, {-s2, 0, c2}}};
    const Coefficients shoulder = turned_about(line.u, R0);  // (7.13)
    return {q4, shoulder, wrist_coefficients(q4, shoulder, target.R)};
}

float shoulder_bend(const ElbowBranch& branch, ArmAngle psi) {
    return std::acos(clamped(element(branch.shoulder, psi, 2, 2)));  // (7.16)
}

// F mirrors the wrist's z axis.
float wrist_bend(const ElbowBranch& branch, ArmAngle psi) {
    return std::acos(clamped(-element(branch.wrist, psi, 2, 2)));  // (7.17)
}

OuterPair about_shoulder(const ElbowBranch& branch, ArmAngle psi, float g2) {
    const auto R = [&](int i, int j) { return element(branch.shoulder, psi, i, j); };
    return {{g2 * R(1, 2), g2 * R(0, 2)}, {g2 * R(2, 1), -g2 * R(2, 0)}};  // (7.18)
}

OuterPair about_wrist(const ElbowBranch& branch, ArmAngle psi, float g6) {
    const auto W = [&](int i, int j) { return element(branch.wrist, psi, i, j); };
    return {{g6 * W(1, 2), g6 * W(0, 2)}, {-g6 * W(2, 1), g6 * W(2, 0)}};  // (7.19)
}

// From the normals of the plane of q and of the reference plane.
float arm_angle_of(const Arm& arm, const Joints& q, const WristLine& line, const ReferencePlane& plane) {
    const auto [s1, c1] = sine_cosine(q[0]);
    const auto [s2, c2] = sine_cosine(q[1]);
    const Vec3 reference = scaled(arm.d3, Vec3{plane.c1 * plane.s2, plane.s1 * plane.s2, plane.c2});
    const Vec3 actual = scaled(arm.d3, Vec3{c1 * s2, s1 * s2, c2});
    const Vec3 nr = normalised(cross(normalised(reference), line.u));
    const Vec3 na = normalised(cross(normalised(actual), line.u));
    return three_way_sign(dot(cross(nr, na), line.w)) * std::acos(clamped(dot(nr, na)));
}

Joints follow(const Arm& arm, const Joints& q, const Target& target, float seed7) {
    const auto [g2, g4, g6] = bends_of(q);
    const WristLine line = wrist_line(arm, target);
    const ReferencePlane plane = reference_plane(arm, line, g4);
    const float angle = arm_angle_of(arm, q, line, plane);
    Joints result{};
    if (!std::isnan(angle)) {
        const auto [sine, cosine] = sine_cosine(angle);
        const ArmAngle psi = {sine, cosine};
        const ElbowBranch branch = elbow_branch(elbow_joint(arm, line, g4), line, plane, target);
        const OuterPair shoulder = about_shoulder(branch, psi, g2), wrist = about_wrist(branch, psi, g6);
        result = {shoulder.first.angle(), g2 * shoulder_bend(branch, psi), shoulder.last.angle(), branch.q4,
                  wrist.first.angle(),    g6 * wrist_bend(branch, psi),    wrist.last.angle()};
    }
    result[6] = on_seeds_side(result[6], seed7);
    return result;
}

}  // namespace zk::zk7
