// The closed forms: every posture that brings the end of a chain to a target in the root. An arm of seven joints has a
// circle of them: its closed form takes one angle that says where on the circle. Numbers in brackets are the equations
// of docs/kinematics.md.
//
// The joints of a posture go to `choice` one by one. place(i, turn) returns what the joint adds to the distance of the
// posture; a posture whose distance comes to bound() is given up, and offer(distance) takes a whole one. The functions
// return true when the arm reaches the target, whatever its limits.
#pragma once

#include <cmath>

#include "arm_model/arm.h"
#include "arm_model/choice.h"
#include "numeric/turn.h"

namespace zk::arm {

// A target that is out of reach by less counts as reached by a straight or folded arm, metres: rounding may have taken
// it out.
inline constexpr double kReachSlack = 5e-6;

// Two axes whose sine is below this are one line: rounding alone would decide the angle about it.
inline constexpr double kAligned = 1e-6;

// Rounding of a target in single precision, metres and radians.
inline constexpr double kRounding = 3e-7;

template <class Real>
inline TurnOf<Real> operator+(TurnOf<Real> a, TurnOf<Real> b) {
    return {a.s * b.c + a.c * b.s, a.c * b.c - a.s * b.s};
}
template <class Real>
inline TurnOf<Real> operator-(TurnOf<Real> a) {
    return {-a.s, a.c};
}
template <class Real>
inline TurnOf<Real> opposite(TurnOf<Real> a) {
    return {-a.s, -a.c};
}
using zk::angle_of;
template <class Real>
inline Real angle_of(TurnOf<Real> a) {
    return angle_of(a.s, a.c);
}

// ------------------------------------------------------------------------------------------------- What they share --

// The angle at which a link of the length b has to follow one of the length a to span a distance. NaN when it cannot.
template <class Real>
inline TurnOf<Real> bounded_bend(double a, double b, Real distance_squared) {  // (C1)
    using std::sqrt;
    const Real cosine = (distance_squared - a * a - b * b) / (2 * a * b);
    return {sqrt((1 - cosine) * (1 + cosine)), cosine};
}
inline Turn bend(double a, double b, double distance_squared, double slack = kReachSlack) {
    const auto [sine, cosine] = bounded_bend(a, b, distance_squared);
    if (std::fabs(cosine) <= 1) return {sine, cosine};
    const double distance = std::sqrt(distance_squared);
    const double missing = cosine > 0 ? distance - (a + b) : std::fabs(a - b) - distance;
    return {missing < slack ? 0 : NAN, std::copysign(1.0, cosine)};
}

// The turn of a plane that brings the end of upper arm and bent forearm to (r, -h).
template <class Real>
inline TurnOf<Real> toward(Real r, Real h, double upper, double fore, TurnOf<Real> bend) {  // (C2)
    using std::sqrt;
    const Real x = upper + fore * bend.c, y = fore * bend.s, scale = 1 / sqrt((r * r + h * h) * (x * x + y * y));
    return {(-h * x - r * y) * scale, (r * x - h * y) * scale};
}

// A rotation as Rz(first) Ry(middle) Rz(last), the sine of the middle above 0. The other way to make it is
// (first + pi, -middle, last + pi). The last is read after the first is undone, so that both fit where rounding
// decides them.
template <class Real>
struct Zyz {
    TurnOf<Real> first, middle, last;
    auto aligned() const { return middle.s < kAligned; }
    // Of `last` in the sum of first and last, which is all that is defined when the middle is 0 or pi.
    double side() const { return middle.c > 0 ? 1 : -1; }
};
template <class Real>
inline Zyz<Real> zyz(const Mat3Of<Real>& r) {  // (C3)
    using std::sqrt;
    const Real sine = sqrt(r[0][2] * r[0][2] + r[1][2] * r[1][2]);
    const auto defined = sine > kAligned;
    const TurnOf<Real> first = {select(defined, r[1][2] / sine, Real(0)), select(defined, r[0][2] / sine, Real(1))};
    const auto across = [&](int j) { return first.c * r[1][j] - first.s * r[0][j]; };
    return {first, {sine, r[2][2]}, {across(0), across(1)}};
}

// Places joints i, i + 1, i + 2 as the rotation says, both ways, and calls then(distance) for each.
template <class Choice, class Then>
void place_zyz(Choice& choice, int i, const Rotation& rotation, double distance, Then then) {
    const Zyz<double> r = zyz(rotation);
    const double first = angle_of(r.first), middle = angle_of(r.middle), last = angle_of(r.last);
    const bool start = choice.is_nearer(i + 1, middle, -middle);
    for (const bool flipped : {start, !start}) {
        double d = distance + choice.place(i + 1, flipped ? -middle : middle);
        if (!(d < choice.bound())) continue;
        if (r.aligned()) {
            d += choice.place_aligned(i, r.side() * last, r.side());  // `first` is 0: the whole turn is in `last`
        } else {
            d += choice.place(i, flipped ? first + M_PI : first);
            d += choice.place(i + 2, flipped ? last + M_PI : last);
        }
        if (d < choice.bound()) then(d);
        if (r.aligned()) return;
    }
}

template <class Real>
inline Mat3Of<Real> turned_back_z(TurnOf<Real> t, const Mat3Of<Real>& m) {  // Rz(-t) m
    Mat3Of<Real> r = m;
    for (int j = 0; j < 3; ++j) {
        r[0][j] = t.c * m[0][j] + t.s * m[1][j];
        r[1][j] = t.c * m[1][j] - t.s * m[0][j];
    }
    return r;
}
template <class Real>
inline Mat3Of<Real> turned_back_y(TurnOf<Real> t, const Mat3Of<Real>& m) {  // Ry(-t) m
    Mat3Of<Real> r = m;
    for (int j = 0; j < 3; ++j) {
        r[0][j] = t.c * m[0][j] - t.s * m[2][j];
        r[2][j] = t.s * m[0][j] + t.c * m[2][j];
    }
    return r;
}

inline Rotation turned_z(Turn t, const Rotation& m) { return turned_back_z(-t, m); }
inline Rotation turned_y(Turn t, const Rotation& m) { return turned_back_y(-t, m); }

// The two directions of joint 1 in which the point w is `aside` beside the plane of the arm; the distance along the
// plane is +-along. On the axis of joint 1 it keeps the seed.
template <class Real>
struct ShoulderOf {
    TurnOf<Real> turn;
    Real angle, along;
};
// `scale` is 1 over the product of the distances of w from the axis and from the point beside it.
template <class Real>
inline ShoulderOf<Real> shoulder_of(const Vec3Of<Real>& w, double aside, Real along, Real scale) {  // (C4)
    const TurnOf<Real> turn = {(along * w[1] - aside * w[0]) * scale, (along * w[0] + aside * w[1]) * scale};
    return {turn, angle_of(turn), along};
}
using Shoulder = ShoulderOf<double>;
struct Shoulders {
    Shoulder nearer, other;  // to the seed
    int count;
    double slack;  // of the reach: the closer both are to each other, the more rounding of the target moves `along`
};
template <class Choice>
Shoulders shoulders(const Vector& w, double aside, const Choice& choice) {
    constexpr double kOnAxis = 1e-7;
    const double squares = w[0] * w[0] + w[1] * w[1], distance = std::sqrt(squares), seed = choice.seed_turn(0);
    if (distance < kOnAxis && std::fabs(aside) < kOnAxis) return {{turn_of(seed), seed, 0}, {}, 1, kReachSlack};
    const double square = squares - aside * aside;
    if (square < 0 && std::fabs(aside) - distance > kReachSlack) return {};
    const double along = square > 0 ? std::sqrt(square) : 0;
    const double scale = 1 / (distance * std::sqrt(along * along + aside * aside));
    const Shoulder a = shoulder_of(w, aside, along, scale), b = shoulder_of(w, aside, -along, scale);
    const double slack = kReachSlack + kRounding * std::fabs(aside) / (along + kRounding);
    const bool swap = choice.is_nearer(0, a.angle, b.angle);
    return {swap ? b : a, swap ? a : b, along > 0 ? 2 : 1, slack};
}

// ------------------------------------------------------------------------------------------------------- Six joints --

// Both ways to bend the elbow of a wrist at a point, with what follows from them.
template <class Choice>
bool place_elbows(const Arm& arm, const Shoulder& shoulder, double slack, const Frame& target, Choice& choice) {
    const double r = shoulder.along - arm.link[0][0], h = target.m[2][3];
    const Turn first = bend(arm.upper, arm.fore, r * r + h * h, slack);
    if (!(first.s >= 0)) return false;
    const double d1 = choice.place(0, shoulder.angle);
    if (!(d1 < choice.bound())) return true;
    const Rotation in_plane = turned_back_z(shoulder.turn, rotation_of<double>(target));  // (L2)
    const double e = angle_of(first);
    const bool start = choice.is_nearer(2, e - arm.lean, -e - arm.lean);
    for (const bool other : {start, !start}) {
        const Turn elbow = other ? -first : first;
        const double d3 = d1 + choice.place(2, (other ? -e : e) - arm.lean);
        if (!(d3 < choice.bound())) continue;
        const Turn t2 = toward(r, h, arm.upper, arm.fore, elbow);
        const double d2 = d3 + choice.place(1, angle_of(t2));
        if (!(d2 < choice.bound())) continue;
        const Turn t23 = t2 + elbow + arm.unlean;
        place_zyz(choice, 3, turned_back_y(t23, in_plane), d2, [&](double d) { choice.offer(d); });  // (L3)
    }
    return true;
}

// The wrist at a point: joints 1 to 3 follow from the point, joints 4 to 6 from the rotation.
template <class Choice>
bool spherical_wrist(const Arm& arm, const Frame& target, Choice& choice) {
    const Shoulders both = shoulders(translation_of<double>(target), arm.link[1][1], choice);
    const bool reached = both.count > 0 && place_elbows(arm, both.nearer, both.slack, target, choice);
    return (both.count > 1 && place_elbows(arm, both.other, both.slack, target, choice)) || reached;
}

// The sum of joints 2 to 4 that joint 6 leaves of the rotation of the end in the plane of the arm.
template <class Real>
inline TurnOf<Real> sum_of(const Mat3Of<Real>& m, TurnOf<Real> t6) {  // (P10)
    return {m[0][2] * t6.c - m[0][0] * t6.s, m[2][2] * t6.c - m[2][0] * t6.s};
}

// The plane of an arm with parallel axes: the rotation of its end seen there, and the wrist point from joint 2.
struct Plane {
    Rotation m;
    double along, height;
    double hand;   // from joint 4 to the wrist point
    double slack;  // of the reach

    Turn sum(Turn t6) const { return sum_of(m, t6); }
};

// How far the sum of joints 2 to 4 has to turn for the arm to reach joint 4.
inline double way_into_reach(const Arm& arm, const Plane& plane, Turn t234) {
    const double r = plane.along - plane.hand * t234.s, h = plane.height - plane.hand * t234.c;
    const double reach = arm.upper + arm.fore, squares = plane.along * plane.along + plane.height * plane.height;
    if (r * r + h * h <= reach * reach) return 0;
    const double cosine = (squares + plane.hand * plane.hand - reach * reach) / (2 * plane.hand * std::sqrt(squares));
    if (!(std::fabs(cosine) < 1 + kRounding)) return 0;
    // From the direction of the wrist point, where joint 4 is nearest.
    const double off = turned_to(angle_of(t234) - angle_of(plane.along, plane.height), 0.0);
    return std::copysign(std::acos(std::fmin(cosine, 1)), off) - off;
}

// Joints 2 to 4, with the distance of the others.
template <class Choice>
bool place_plane_arm(const Arm& arm, const Plane& plane, Turn t234, double distance, Choice& choice) {
    const double r = plane.along - plane.hand * t234.s, h = plane.height - plane.hand * t234.c;  // (P11)
    const Turn first = bend(arm.upper, arm.fore, r * r + h * h, plane.slack);
    if (!(first.s >= 0)) return false;
    if (!(distance < choice.bound())) return true;
    const double e = angle_of(first), sum = angle_of(t234);
    const bool start = choice.is_nearer(2, e, -e);
    for (const bool other : {start, !start}) {
        const double t3 = other ? -e : e, d3 = distance + choice.place(2, t3);
        if (!(d3 < choice.bound())) continue;
        const double t2 = angle_of(toward(r, h, arm.upper, arm.fore, other ? -first : first));
        double d = d3 + choice.place(1, t2);
        d += choice.place(3, sum - t2 - t3);  // (P16)
        choice.offer(d);
    }
    return true;
}

// With joints 4 and 6 on one line joint 6 keeps the seed as far as the arm reaches.
template <class Choice>
bool place_aligned_hand(const Arm& arm, const Plane& plane, double distance, Choice& choice) {
    const double side = plane.m[1][1] > 0 ? 1 : -1;
    Turn t6 = turn_of(choice.seed_turn(5));
    t6 = t6 + turn_of(-side * way_into_reach(arm, plane, plane.sum(t6)));
    distance += choice.place(4, side > 0 ? 0 : M_PI);
    distance += choice.place(5, angle_of(t6));
    return place_plane_arm(arm, plane, plane.sum(t6), distance, choice);
}

// Both ways to turn the hand.
template <class Choice>
bool place_hand(const Arm& arm, Plane plane, double distance, Choice& choice) {
    const auto& across = plane.m[1];
    const double s5 = std::sqrt(across[0] * across[0] + across[2] * across[2]);
    if (s5 < kAligned) return place_aligned_hand(arm, plane, distance, choice);
    const Turn first = {across[2] / s5, across[0] / s5};  // (P8)
    const double t5 = angle_of(s5, across[1]), t6 = angle_of(first);
    // Rounding of the target turns joint 6 by the more the closer the axes are, and joint 4 moves with it.
    plane.slack += kRounding * std::fabs(plane.hand) / s5;
    bool reached = false;
    const bool start = choice.is_nearer(4, t5, -t5);
    for (const bool flipped : {start, !start}) {
        double d = distance + choice.place(4, flipped ? -t5 : t5);
        d += choice.place(5, flipped ? t6 + M_PI : t6);
        const Turn sum = plane.sum(flipped ? opposite(first) : first);
        if (place_plane_arm(arm, plane, sum, d, choice)) reached = true;
    }
    return reached;
}

// Joints 2 to 4 parallel: joints 1, 5, 6 follow from the direction of their axes, joints 2 to 4 are an arm in a plane.
template <class Choice>
bool parallel_axes(const Arm& arm, const Frame& target, Choice& choice) {
    const Shoulders both = shoulders(translation_of<double>(target), arm.link[3][1], choice);
    const auto reaches = [&](const Shoulder& shoulder) {
        const Rotation in_plane = turned_back_z(shoulder.turn, rotation_of<double>(target));  // (P2)
        const Plane plane = {in_plane, shoulder.along - arm.link[0][0], target.m[2][3], arm.link[3][2], both.slack};
        return place_hand(arm, plane, choice.place(0, shoulder.angle), choice);
    };
    const bool reached = both.count > 0 && reaches(both.nearer);
    return (both.count > 1 && reaches(both.other)) || reached;
}

// The smallest angle between a turn and the line of its neighbours.
template <class Real>
Real off_line(Real turn) {
    using std::fabs;
    return fabs(turn - M_PI * rounded(turn * (1 / M_PI)));
}

// Whether rounding of the target decides joints of the posture, or of one near the seed. Shoulder, elbow and wrist each
// make the more of it the closer they are to their line.
template <class Real>
auto is_left_to_rounding(const Arm& arm, const Transform<Real>& target, const std::array<Real, 7>& q,
                         const std::array<Real, 7>& seed) {
    using std::fabs;
    constexpr double kAtPosture = 2e-5, kAtSeed = 2e-4;
    const Real x = target.m[0][3], y = target.m[1][3];
    const double aside = arm.link[1][1] + arm.link[3][1];
    const Real shoulder = fabs(x * x + y * y - aside * aside);  // squared
    const auto is_close = [&](const std::array<Real, 7>& at, double bound) {
        const Real elbow = off_line(arm.sign[2] * at[2] + arm.shift[2] + arm.lean);
        const Real both = elbow * off_line(arm.sign[4] * at[4] + arm.shift[4]);
        return shoulder * (both * both) < bound * bound;
    };
    return is_close(q, kAtPosture) || is_close(seed, kAtSeed);
}

// ----------------------------------------------------------------------------------------------------- Seven joints --

inline Rotation about(const Vector& axis, Turn t, const Rotation& m) {
    Rotation r;
    for (int j = 0; j < 3; ++j) {
        const Vector column = {m[0][j], m[1][j], m[2][j]};
        const Vector beside = cross(axis, column);
        const double along = dot(axis, column) * (1 - t.c);
        for (int k = 0; k < 3; ++k) r[k][j] = column[k] * t.c + beside[k] * t.s + axis[k] * along;
    }
    return r;
}

// The rotation of the shoulder with joint 3 at 0 that brings the wrist, which is at (x, 0, z) before, to w (7.13).
inline Rotation reference(const Vector& w, double x, double z) {
    const double level = std::sqrt(w[0] * w[0] + w[1] * w[1]);
    const Turn t1 = level > 0 ? Turn{w[1] / level, w[0] / level} : Turn{0, 1};
    const double scale = 1 / std::sqrt(dot(w, w) * (x * x + z * z));
    const Turn t2 = {(level * z - w[2] * x) * scale, (w[2] * z + level * x) * scale};
    return {{{t1.c * t2.c, -t1.s, t1.c * t2.s}, {t1.s * t2.c, t1.c, t1.s * t2.s}, {-t2.s, 0, t2.c}}};
}

// Shoulder and wrist at points: `psi` is the arm angle, by which the elbow is turned about the line of both from the
// vertical plane.
template <class Choice>
bool spherical_seven(const Arm& arm, const Frame& target, Turn psi, Choice& choice) {
    const Rotation m = rotation_of<double>(target);
    const Vector w = translation_of<double>(target);
    const Turn first = bend(arm.upper, arm.fore, dot(w, w));  // (7.8)
    if (!(first.s >= 0)) return false;
    const Vector line = normalised(w);
    const double e = angle_of(first);
    for (const bool other : {false, true}) {
        const double d4 = choice.place(3, other ? -e : e);
        if (!(d4 < choice.bound())) continue;
        const Turn elbow = other ? -first : first;
        const Rotation plane = reference(w, arm.fore * elbow.s, arm.upper + arm.fore * elbow.c);
        const Rotation shoulder = about(line, psi, plane);  // (7.12)
        place_zyz(choice, 0, shoulder, d4, [&](double d3) {
            const Rotation wrist = turned_back_y(elbow, product(transposed(shoulder), m));  // (7.14)
            place_zyz(choice, 4, wrist, d3, [&](double d) { choice.offer(d); });
        });
    }
    return true;
}

// The arm angle of the joints: the turn between the axes of the elbow here and in the reference.
inline Turn arm_angle(const Arm& arm, const Joints& q) {
    const auto turn = [&](int i) { return turn_of(arm.sign[i] * q[i] + arm.shift[i]); };
    const Turn t1 = turn(0), t2 = turn(1), t3 = turn(2), t4 = turn(3);
    const double a5 = arm.link[3][0], d5 = arm.link[4][2];
    const double x = arm.link[2][0] + a5 * t4.c + d5 * t4.s, z = arm.link[2][2] - a5 * t4.s + d5 * t4.c;
    const Vector forward = {t2.c * t3.c * x + t2.s * z, t3.s * x, t2.c * z - t2.s * t3.c * x};
    const Vector w = {t1.c * forward[0] - t1.s * forward[1], t1.s * forward[0] + t1.c * forward[1], forward[2]};
    const Vector elbow = {-t1.c * t2.c * t3.s - t1.s * t3.c, -t1.s * t2.c * t3.s + t1.c * t3.c, t2.s * t3.s};
    const Rotation plane = reference(w, x, z);
    const Vector start = {plane[0][1], plane[1][1], plane[2][1]};
    const double s = dot(normalised(w), cross(start, elbow)), c = dot(start, elbow), size = std::sqrt(s * s + c * c);
    return size > 0 ? Turn{s / size, c / size} : Turn{0, 1};
}

// Offsets at elbow and wrist: `t7` is the turn of joint 7. Seen from the hand, the axes of joints 1 to 3 meet in a
// point.
template <class Choice>
bool offset_seven(const Arm& arm, const Frame& target, Turn t7, Choice& choice) {
    const double a4 = arm.link[2][0], d3 = arm.link[2][2], a5 = arm.link[3][0], d5 = arm.link[4][2];
    const double d7 = choice.place(6, angle_of(t7));
    if (!(d7 < choice.bound())) return true;
    Rotation hand = rotation_of<double>(target);  // of joint 6
    Vector p = translation_of<double>(target);
    for (int k = 0; k < 3; ++k) {
        const double x = hand[k][0], y = hand[k][1];
        hand[k][0] = t7.c * x - t7.s * y;
        hand[k][1] = t7.s * x + t7.c * y;
        p[k] -= arm.link[5][0] * hand[k][0];
    }
    const Vector shoulder = scaled(-1.0, product(transposed(hand), p));  // seen from the hand
    const Turn first4 = bend(arm.upper, arm.fore, dot(shoulder, shoulder));
    if (!(first4.s >= 0)) return false;
    const double e = angle_of(first4);
    bool reached = false;
    for (const bool other : {false, true}) {
        const Turn t4 = (other ? -first4 : first4) + arm.unlean;
        const double x = -a5 - a4 * t4.c + d3 * t4.s, z = -a4 * t4.s - d3 * t4.c - d5;
        const double square = x * x - shoulder[1] * shoulder[1];
        if (square < 0 && std::fabs(shoulder[1]) - std::fabs(x) > kReachSlack) continue;
        reached = true;
        const double d4 = d7 + choice.place(3, (other ? -e : e) - arm.lean);
        if (!(d4 < choice.bound())) continue;
        const double root = square > 0 ? std::sqrt(square) : 0;
        for (const double side : {root, -root}) {
            const double size5 = std::sqrt(side * side + shoulder[1] * shoulder[1]) * (x < 0 ? -1 : 1);
            const double size6 = side * side + z * z;
            if (size5 == 0 || size6 == 0) continue;
            const Turn t5 = {-shoulder[1] / size5, side / size5};
            const double d5 = d4 + choice.place(4, angle_of(t5));
            if (!(d5 < choice.bound())) continue;
            const Turn t6 = {(shoulder[2] * side - shoulder[0] * z) / size6,
                             (shoulder[0] * side + shoulder[2] * z) / size6};
            const double d6 = d5 + choice.place(5, angle_of(t6));
            if (!(d6 < choice.bound())) continue;
            // What joints 4 to 6 turn, taken off from the left of the transpose.
            const Rotation rest = turned_y(t4, turned_z(t5, turned_y(t6, transposed(hand))));
            place_zyz(choice, 0, transposed(rest), d6, [&](double d) { choice.offer(d); });
        }
    }
    return reached;
}

}  // namespace zk::arm
