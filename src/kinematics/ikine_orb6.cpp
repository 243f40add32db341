// Inverse kinematics of the arms with three parallel axes. Numbers in brackets are the equations of docs/kinematics.md.
#include <algorithm>
#include <cmath>

#include "kinematics/six_joint.h"
#include "kinematics/solvers.h"
#include "zk/inverse_kinematics.h"

namespace zk {
namespace {

// The distance of a joint that no whole turn brings within its limits.
constexpr double kNoFit = 1e6;

double nearest(double seed, double& candidate, double lower, double upper) {
    constexpr double shifts[] = {-double{12.566371f}, -double{6.2831855f}, 0, double{6.2831855f}, double{12.566371f}};
    const double given = candidate;
    double best = kNoFit;
    for (const double shift : shifts) {
        const double shifted = given + shift, distance = std::fabs(shifted - seed);
        if (lower <= shifted && shifted <= upper && distance < best) {
            candidate = shifted;
            best = distance;
        }
    }
    return best;
}

int index_of_smallest(const double* values, int length) {
    int best = 0;
    for (int i = 1; i < length; ++i) {
        if (values[i] < values[best]) best = i;
    }
    return best;
}

// A cosine beyond 1 by less than the slack becomes 1; one further out stays, and its angle is NaN.
double cosine_within(double slack, double c) {
    const double size = std::fabs(c);
    return size > 1 && size - 1 < slack ? std::copysign(1.0, c) : c;
}

// NaN for NaN and beyond 1, without the C library's handling of errors.
double angle_of_cosine(double c) { return std::fabs(c) <= 1 ? std::acos(c) : NAN; }

double sine_of_cosine(double c) { return std::sqrt(1 - c * c); }

struct Turn {
    double t, s, c;  // angle, sine and cosine
};

// What follows from joints 5 and 6.
struct Hand {
    double t5, t6, t234;
    double r, height;  // of joint 4 in the plane
};

class Orb6 {
 public:
    Orb6(const DhParams& dh, const Wrist<double>& wrist, double seed6)
        : wrist_(wrist), seed6_(seed6), d4_(dh.d[3]), d5_(dh.d[4]), a2_(dh.a[1]), a3_(dh.a[2]), a4_(dh.a[3]) {}

    // All eight candidates: two shoulders, two wrists, two elbows, the last changing fastest. False when all are dead.
    bool fill(double (&table)[8][6]) const {
        const double root = shoulder_root();
        if (std::isnan(root)) return false;
        int dead = 0;
        double(*entry)[6] = table;
        for (const double shoulder : {root, -root}) {
            const double t1 = std::atan2(wrist_.y, wrist_.x) - std::atan2(d4_, shoulder);  // (P6)
            const Plane<double> plane = plane_of(wrist_, t1, std::sin(t1), std::cos(t1), a2_);
            const double c5 = cosine_within(3e-7, plane.y[2]);  // (P7)
            const double t5 = angle_of_cosine(c5), s5 = sine_of_cosine(c5);
            for (const double side : {1.0, -1.0}) {
                const Hand hand = hand_of(plane, side * t5, side * s5);
                const double c3 = cosine_within(0.01, elbow_cosine(hand));  // (P13)
                const double t3 = angle_of_cosine(c3), s3 = sine_of_cosine(c3);
                for (const double elbow : {1.0, -1.0}) {
                    store(*entry++, plane, hand, elbow * t3, c3, elbow * s3);
                    dead += std::isnan(t3);
                }
            }
        }
        return dead < 8;
    }

 private:
    // Root of the squared distance of the wrist point, seen from above, beyond the cylinder of radius d4.  (P5)
    double shoulder_root() const {
        const double q = wrist_.x * wrist_.x + wrist_.y * wrist_.y - d4_ * d4_;
        if (q <= -1e-7) return NAN;
        if (q < 1e-7) return std::fabs(q) <= 1e-12 ? 0 : std::sqrt(std::fabs(q));
        return std::sqrt(q);
    }

    Hand hand_of(const Plane<double>& plane, double t5, double s5) const {
        Hand hand;
        hand.t5 = t5;
        const auto [t6, s6, c6] = joint6(plane, s5);
        hand.t6 = t6;
        const double a = s6 * plane.z[0] + c6 * plane.z[1];  // (P9)
        const double b = s6 * plane.x[0] + c6 * plane.x[1];
        hand.t234 = std::fabs(a) < 1e-6 ? std::asin(-sign(b)) : std::atan2(-b, -a);  // (P10)
        const double size = std::sqrt(a * a + b * b);
        hand.r = plane.r + d5_ * (b / size);  // (P11)
        hand.height = plane.height + d5_ * (a / size);
        return hand;
    }

    // Within two degrees of 0 and 180 the axis of joint 6 is parallel to those of joints 2 to 4: joint 6 stays.
    Turn joint6(const Plane<double>& plane, double s5) const {
        if (std::fabs(s5) < 0.034906585039887) return {seed6_, std::sin(seed6_), std::cos(seed6_)};
        const double y = -sign(s5) * plane.y[1], x = sign(s5) * plane.y[0];  // (P8)
        const double size = std::sqrt(x * x + y * y);
        return {std::atan2(y, x), y / size, x / size};
    }

    double elbow_cosine(const Hand& hand) const {
        return (hand.r * hand.r + hand.height * hand.height - a3_ * a3_ - a4_ * a4_) / (2 * a3_ * a4_);
    }

    void store(double* theta, const Plane<double>& plane, const Hand& hand, double t3, double c3, double s3) const {
        const double u = a3_ + a4_ * c3, w = a4_ * s3;
        const double e1 = hand.height * u + hand.r * w;  // (P14)
        const double e2 = hand.r * u - hand.height * w;
        const double t2 = std::fabs(e2) < 1e-7 ? std::asin(-sign(e1)) : std::atan2(-e1, e2);  // (P15)
        const double t4 = hand.t234 - t2 - t3;                                                // (P16)
        const double values[6] = {plane.t1, t2, t3, t4, hand.t5, hand.t6};
        std::copy_n(values, 6, theta);
    }

    // NaN for NaN, so that a dead candidate stays dead.
    static double sign(double v) { return v > 0 ? 1 : v < 0 ? -1 : v; }

    const Wrist<double>& wrist_;
    const double seed6_;
    const double d4_, d5_, a2_, a3_, a4_;
};

// Moves every joint of every entry by whole turns next to the seed. Returns the nearest entry, the first of equals.
int nearest_entry(double (&table)[8][6], const Seed<double>& seed, const Range& range) {
    static constexpr double kWeights[6] = {2.4, 2.4, 2.4, 1, 1, 1};
    double scores[8] = {};
    for (int i = 0; i < 8; ++i) {
        for (int j = 0; j < 6; ++j) {
            scores[i] += kWeights[j] * nearest(seed.theta[j], table[i][j], range.min[j], range.max[j]);
        }
    }
    return index_of_smallest(scores, 8);
}

int write_joints(const RobotModel& model, const double* theta, float turns, float* joint) {
    constexpr double kSlack = 0.008726646259972;
    const auto angle = [&](int j) { return theta[j] - model.dh.offset[j] + (j == 5 ? turns : 0); };
    return write_up_to_limit(model, Range(model), kSlack, std::min<int>(model.dof, 6), angle, joint);
}

}  // namespace

int solve_orb6(const RobotModel& model, const float* seed_joint, float* joint, const Matrix& world_T_tool) {
    const Seed<double> seed(model, seed_joint);
    const Wrist<double> wrist = shoulder_T_wrist<double>(model, world_T_tool);
    double table[8][6];
    if (!Orb6(model.dh, wrist, seed.theta[5]).fill(table)) return kUnreachable;
    const int nearest = nearest_entry(table, seed, Range::widened(model));
    return write_joints(model, table[nearest], seed.turns, joint);
}

}  // namespace zk

using namespace zk;

ZK_API double find_nearest_joint(const double* seed, double* candidate, const double* margin, double lower,
                                 double upper) {
    return nearest(*seed, *candidate, lower - *margin, upper + *margin);
}

ZK_API int find_min_index(const double* values, int length) { return index_of_smallest(values, length); }

ZK_API int inverse_kinematics_orb6(const float* seed, float* joint, Matrix world_T_tool) {
    return solve_orb6(robot, seed, joint, world_T_tool);
}
