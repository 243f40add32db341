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

// A shoulder with its wrist bent to one side, and what of the distance to the seed joints 1 and 5 are.
struct Side {
    const Plane<double>* plane;
    double t5, s5;
    double distance;
};

// What follows from joints 5 and 6.
struct Hand {
    double t5, t6, t234;
    double r, height;  // of joint 4 in the plane
};

// Two shoulders, two wrists, two elbows make eight candidates, the last changing fastest; the nearest to the seed is
// the answer, the first of equals.
class Orb6 {
 public:
    Orb6(const RobotModel& model, const Wrist<double>& wrist, const Seed<double>& seed)
        : wrist_(wrist),
          seed_(seed),
          range_(Range::widened(model)),
          d4_(model.dh.d[3]),
          d5_(model.dh.d[4]),
          a2_(model.dh.a[1]),
          a3_(model.dh.a[2]),
          a4_(model.dh.a[3]) {}

    // The model angles of the nearest candidate, within the limits if one is; null when no candidate reaches.
    const double* solve() {
        const double root = shoulder_root();
        if (std::isnan(root)) return nullptr;
        const Plane<double> planes[2] = {plane_at(root), plane_at(-root)};
        Side sides[4];
        for (int i = 0; i < 2; ++i) {
            const double c5 = cosine_within(3e-7, planes[i].y[2]);  // (P7)
            const double t5 = angle_of_cosine(c5), s5 = sine_of_cosine(c5);
            sides[2 * i] = side_of(planes[i], t5, s5);
            sides[2 * i + 1] = side_of(planes[i], -t5, -s5);
        }
        nearest_first(sides, [this](const Side& side, int order) { try_side(side, order); });
        return reached_ ? best_.theta : nullptr;
    }

 private:
    Plane<double> plane_at(double shoulder) const {
        const double t1 = std::atan2(wrist_.y, wrist_.x) - std::atan2(d4_, shoulder);  // (P6)
        return plane_of(wrist_, t1, std::sin(t1), std::cos(t1), a2_);
    }

    Side side_of(const Plane<double>& plane, double t5, double s5) const {
        return {&plane, t5, s5, distance(0, plane.t1) + distance(4, t5)};
    }

    // The weighted distance of a joint to the seed, once it is moved by whole turns next to it.
    double moved(int j, double& theta) const {
        constexpr double kWeights[6] = {2.4, 2.4, 2.4, 1, 1, 1};
        return kWeights[j] * nearest(seed_.theta[j], theta, range_.min[j], range_.max[j]);
    }
    double distance(int j, double theta) const { return moved(j, theta); }

    // Whether no candidate of at least this distance is the nearest. The margin is for a distance that is not added up
    // in the order of the joints.
    bool excludes(double distance) const { return best_.distance < 0.999999 * distance; }

    void try_side(const Side& side, int order) {
        if (excludes(side.distance)) return;
        const Plane<double>& plane = *side.plane;
        const Turn six = joint6(plane, side.s5);
        const double to_hand = side.distance + distance(5, six.t);
        if (excludes(to_hand)) return;
        const Hand hand = hand_of(plane, side.t5, six);
        const double c3 = cosine_within(0.01, elbow_cosine(hand));  // (P13)
        const double t3 = angle_of_cosine(c3), s3 = sine_of_cosine(c3);
        if (!std::isnan(t3)) reached_ = true;
        const double up = to_hand + distance(2, t3), down = to_hand + distance(2, -t3);
        if (!excludes(up)) offer(2 * order, plane, hand, t3, c3, s3);
        if (!excludes(down)) offer(2 * order + 1, plane, hand, -t3, c3, -s3);
    }

    // Root of the squared distance of the wrist point, seen from above, beyond the cylinder of radius d4.  (P5)
    double shoulder_root() const {
        const double q = wrist_.x * wrist_.x + wrist_.y * wrist_.y - d4_ * d4_;
        if (q <= -1e-7) return NAN;
        if (q < 1e-7) return std::fabs(q) <= 1e-12 ? 0 : std::sqrt(std::fabs(q));
        return std::sqrt(q);
    }

    Hand hand_of(const Plane<double>& plane, double t5, const Turn& six) const {
        const auto [t6, s6, c6] = six;
        Hand hand;
        hand.t5 = t5;
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
        const double seed6 = seed_.theta[5];
        if (std::fabs(s5) < 0.034906585039887) return {seed6, std::sin(seed6), std::cos(seed6)};
        const double y = -sign(s5) * plane.y[1], x = sign(s5) * plane.y[0];  // (P8)
        const double size = std::sqrt(x * x + y * y);
        return {std::atan2(y, x), y / size, x / size};
    }

    double elbow_cosine(const Hand& hand) const {
        return (hand.r * hand.r + hand.height * hand.height - a3_ * a3_ - a4_ * a4_) / (2 * a3_ * a4_);
    }

    void offer(int order, const Plane<double>& plane, const Hand& hand, double t3, double c3, double s3) {
        const double u = a3_ + a4_ * c3, w = a4_ * s3;
        const double e1 = hand.height * u + hand.r * w;  // (P14)
        const double e2 = hand.r * u - hand.height * w;
        const double t2 = std::fabs(e2) < 1e-7 ? std::asin(-sign(e1)) : std::atan2(-e1, e2);  // (P15)
        const double t4 = hand.t234 - t2 - t3;                                                // (P16)
        double theta[6] = {plane.t1, t2, t3, t4, hand.t5, hand.t6};
        double distance = 0;
        for (int j = 0; j < 6; ++j) distance += moved(j, theta[j]);
        if (!best_.farther_than(distance, order)) return;
        std::copy_n(theta, 6, best_.theta);
        best_.distance = distance;
        best_.order = order;
    }

    // NaN for NaN, so that a dead candidate stays dead.
    static double sign(double v) { return v > 0 ? 1 : v < 0 ? -1 : v; }

    const Wrist<double>& wrist_;
    const Seed<double>& seed_;
    const Range range_;
    const double d4_, d5_, a2_, a3_, a4_;
    bool reached_ = false;
    Best<double> best_ = {{}, INFINITY};
};

int write_joints(const RobotModel& model, const double* theta, float turns, float* joint) {
    constexpr double kSlack = 0.008726646259972;
    const auto angle = [&](int j) { return theta[j] - model.dh.offset[j] + (j == 5 ? turns : 0); };
    return write_up_to_limit(model, Range(model), kSlack, std::min<int>(model.dof, 6), angle, joint);
}

}  // namespace

int solve_orb6(const RobotModel& model, const float* seed_joint, float* joint, const Matrix& world_T_tool) {
    const Seed<double> seed(model, seed_joint);
    const Wrist<double> wrist = shoulder_T_wrist<double>(model, world_T_tool);
    Orb6 arm(model, wrist, seed);
    const double* theta = arm.solve();
    return theta ? write_joints(model, theta, seed.turns, joint) : kUnreachable;
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
