// Built with AVX2 instructions. Everything here is local, or a template of a local type: nothing of it must be taken
// for another source's function by the linker.
#include "arm_model/four.h"

#include "arm_model/chain.h"
#include "arm_model/circle.h"
#include "arm_model/pose.h"
#include "arm_model/postures.h"
#include "arm_model/zk_model.h"
#include "zk/status.h"

#ifdef __AVX2__
#include "arm_model/four_numbers.h"

namespace zk::arm {
namespace {

// A product with a transform that all four share.
template <class A, class B>
Transform<Four> operator*(const Transform<A>& a, const Transform<B>& b) {
    Transform<Four> c;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 4; ++j) {
            c.m[i][j] = Four(a.m[i][0]) * b.m[0][j] + Four(a.m[i][1]) * b.m[1][j] + Four(a.m[i][2]) * b.m[2][j];
        }
        c.m[i][3] = c.m[i][3] + a.m[i][3];
    }
    return c;
}

// Writes a column of rows of floats.
void write(__m128 values, float* column, int stride) {
    float four[kFour];
    _mm_storeu_ps(four, values);
    for (int k = 0; k < kFour; ++k) column[k * stride] = four[k];
}

// The nearest posture of the closed form is mostly that of the nearest direction at each turning, and the first step of
// every other way is longer than all of it. Such rows are ordinary; what else there is, the closed form by itself does.
class FourPlacing {
 public:
    FourPlacing(const Arm& arm, const Wanted& wanted, const std::array<Four, 7>& seed)
        : arm_(arm), wanted_(wanted), seed_(seed) {}

    // As Placing::place for a joint that needs no whole turns to be within its limits.
    Four place(int i, Four turn) {
        const Four q = near_seed(i, turn);
        demand((q <= hi(i) + Placing::kSlack) && (q >= lo(i) - Placing::kSlack));
        q_[i] = on_limit(i, q);
        return distance(i, q_[i]);
    }
    // What the joint adds to the distance at least.
    Four least(int i, Four turn) const {
        const Four q = near_seed(i, turn);
        const Mask is_within = (q <= hi(i) + Placing::kSlack) && (q >= lo(i) - Placing::kSlack);
        return distance(i, select(is_within, on_limit(i, q), q));
    }
    Mask is_nearer(int i, Four first, Four second) const {
        const Four seed = arm_.sign[i] * seed_[i] + arm_.shift[i];
        return fabs(turned_to(second - seed, Four(0))) < fabs(turned_to(first - seed, Four(0)));
    }
    void demand(Mask condition) { ordinary_ = ordinary_ && condition; }

    Mask ordinary() const { return ordinary_; }
    const std::array<Four, 7>& q() const { return q_; }

 private:
    Four lo(int i) const { return wanted_.limits.lo[i]; }
    Four hi(int i) const { return wanted_.limits.hi[i]; }
    Four near_seed(int i, Four turn) const { return turned_to(arm_.sign[i] * (turn - arm_.shift[i]), seed_[i]); }
    Four on_limit(int i, Four q) const { return select(q > hi(i), hi(i), select(q < lo(i), lo(i), q)); }
    Four distance(int i, Four q) const {
        const Four e = q - seed_[i];
        return wanted_.weight[i] * e * e;
    }

    const Arm& arm_;
    const Wanted& wanted_;
    const std::array<Four, 7>& seed_;
    std::array<Four, 7> q_;
    Mask ordinary_ = Four(0) <= Four(0);
};

// The direction of joint 1 nearer to the seed, and the turn of the other.
struct FourShoulders {
    ShoulderOf<Four> nearer;
    Four other;
};
FourShoulders shoulders(const Vec3Of<Four>& w, double aside, FourPlacing& placing) {  // (C4)
    constexpr double kOnAxis = 1e-7;
    const Four squares = w[0] * w[0] + w[1] * w[1], distance = sqrt(squares), square = squares - aside * aside;
    placing.demand((distance >= kOnAxis) && (square > 0));
    const Four along = sqrt(square), scale = 1 / (distance * sqrt(along * along + aside * aside));
    const ShoulderOf<Four> a = shoulder_of(w, aside, along, scale), b = shoulder_of(w, aside, -along, scale);
    const Mask swap = placing.is_nearer(0, a.angle, b.angle);
    return {{select(swap, b.turn, a.turn), select(swap, b.angle, a.angle), select(swap, b.along, a.along)},
            select(swap, a.angle, b.angle)};
}

TurnOf<Four> bend(const Arm& arm, Four distance_squared, FourPlacing& placing) {
    const TurnOf<Four> bend = bounded_bend(arm.upper, arm.fore, distance_squared);
    placing.demand(fabs(bend.c) <= 1);
    return bend;
}

// As zk::arm::spherical_wrist.
void spherical_wrist(const Arm& arm, const Transform<Four>& target, FourPlacing& placing) {
    const FourShoulders both = shoulders(translation_of<Four>(target), arm.link[1][1], placing);
    const Four r = both.nearer.along - arm.link[0][0], h = target.m[2][3];
    const TurnOf<Four> first = bend(arm, r * r + h * h, placing);
    const Four d1 = placing.place(0, both.nearer.angle), e = angle_of(first);
    const Mask swap = placing.is_nearer(2, e - arm.lean, -e - arm.lean);
    const TurnOf<Four> elbow = select(swap, -first, first);
    const Four bent = select(swap, -e, e), d3 = d1 + placing.place(2, bent - arm.lean);
    const TurnOf<Four> t2 = toward(r, h, arm.upper, arm.fore, elbow);
    const Four d2 = d3 + placing.place(1, angle_of(t2));
    const TurnOf<Four> t23 = t2 + elbow + TurnOf<Four>{arm.unlean.s, arm.unlean.c};
    const Mat3Of<Four> in_plane = turned_back_z(both.nearer.turn, rotation_of<Four>(target));  // (L2)
    const Zyz<Four> wrist = zyz(turned_back_y(t23, in_plane));                                 // (L3)
    placing.demand(wrist.middle.s >= kAligned);
    const Four t4 = angle_of(wrist.first), t5 = angle_of(wrist.middle), t6 = angle_of(wrist.last);
    const Mask flip = placing.is_nearer(4, t5, -t5);
    Four d = d2 + placing.place(4, select(flip, -t5, t5));
    d = d + placing.place(3, select(flip, t4 + M_PI, t4));
    d = d + placing.place(5, select(flip, t6 + M_PI, t6));
    placing.demand(d2 + placing.least(4, select(flip, t5, -t5)) >= d);
    placing.demand(d1 + placing.least(2, -bent - arm.lean) >= d);
    placing.demand(placing.least(0, both.other) >= d);
}

// As zk::arm::parallel_axes.
void parallel_axes(const Arm& arm, const Transform<Four>& target, FourPlacing& placing) {
    const FourShoulders both = shoulders(translation_of<Four>(target), arm.link[3][1], placing);
    const Mat3Of<Four> in_plane = turned_back_z(both.nearer.turn, rotation_of<Four>(target));  // (P2)
    const Four d1 = placing.place(0, both.nearer.angle);
    const auto& across = in_plane[1];
    const Four s5 = sqrt(across[0] * across[0] + across[2] * across[2]);
    placing.demand(s5 >= kAligned);
    const TurnOf<Four> first6 = {across[2] / s5, across[0] / s5};  // (P8)
    const Four t5 = angle_of(s5, across[1]), t6 = angle_of(first6);
    const Mask flip = placing.is_nearer(4, t5, -t5);
    Four d5 = d1 + placing.place(4, select(flip, -t5, t5));
    d5 = d5 + placing.place(5, select(flip, t6 + M_PI, t6));
    const TurnOf<Four> t234 = sum_of(in_plane, select(flip, opposite(first6), first6));
    const double hand = arm.link[3][2];
    const Four r = both.nearer.along - arm.link[0][0] - hand * t234.s, h = target.m[2][3] - hand * t234.c;  // (P11)
    const TurnOf<Four> first = bend(arm, r * r + h * h, placing);
    const Four e = angle_of(first), sum = angle_of(t234);
    const Mask swap = placing.is_nearer(2, e, -e);
    const Four t3 = select(swap, -e, e), d3 = d5 + placing.place(2, t3);
    const Four t2 = angle_of(toward(r, h, arm.upper, arm.fore, select(swap, -first, first)));
    Four d = d3 + placing.place(1, t2);
    d = d + placing.place(3, sum - t2 - t3);  // (P16)
    placing.demand(d5 + placing.least(2, -t3) >= d);
    placing.demand(d1 + placing.least(4, select(flip, t5, -t5)) >= d);
    placing.demand(placing.least(0, both.other) >= d);
}

// As zk::axis_times_angle for less than half a turn.
Vec3Of<Four> axis_times_angle(const Mat3Of<Four>& R, Mask& ordinary) {
    constexpr double kNoDirection = 1e-9;
    const Vec3Of<Four> l = {R[2][1] - R[1][2], R[0][2] - R[2][0], R[1][0] - R[0][1]};
    const Four n = norm(l), trace = R[0][0] + R[1][1] + R[2][2];
    const Mask has_direction = n > kNoDirection;
    ordinary = ordinary && (has_direction || trace > 0);
    double y[kFour], x[kFour];
    _mm256_storeu_pd(y, n.v);
    _mm256_storeu_pd(x, (trace - 1).v);
    for (int k = 0; k < kFour; ++k) y[k] = std::atan2(y[k], x[k]);
    return scaled(select(has_direction, Four(_mm256_loadu_pd(y)) / n, Four(0.5)), l);
}

// As zk::arm::refined in less than ten rounds and with no joint stopped at a limit.
std::array<Four, 7> refined(const Arm& arm, const Transform<Four>& target, const Wanted& wanted,
                            const std::array<Four, 7>& start, Mask& ordinary) {
    constexpr int kRounds = 10;
    std::array<Four, 7> q, scaled_q;
    Joints scale, unscale;
    for (int i = 0; i < 7; ++i) {
        scale[i] = std::sqrt(wanted.weight[i]);
        unscale[i] = 1 / scale[i];
        scaled_q[i] = start[i] * scale[i];
    }
    Mask done = !ordinary;
    for (int round = 0; round < kRounds; ++round) {
        for (int i = 0; i < 7; ++i) q[i] = scaled_q[i] * unscale[i];
        Axes<Four> axes;
        zk::Jacobian<Four> J;
        const Transform<Four> end = root_T_end(arm, q, axes);
        fill_jacobian(arm, axes, translation_of<Four>(end), J);
        for (auto& row : J) {
            for (int i = 0; i < 7; ++i) row[i] = row[i] * unscale[i];
        }
        const Vec3Of<Four> p = minus(translation_of<Four>(target), translation_of<Four>(end));
        const Vec3Of<Four> a =
            axis_times_angle(product(rotation_of<Four>(target), transposed(rotation_of<Four>(end))), ordinary);
        const damped::ErrorOf<Four> e = {p[0], p[1], p[2], a[0], a[1], a[2]};
        if (round > 0) done = done || damped::all_below(e, kConverged, kConverged);
        if (done.all()) return q;
        const std::array<Four, 7> step = damped::free_step(J, e, damped::damping(e), {}, {}, {});
        for (int i = 0; i < 7; ++i) {
            const Four below = wanted.limits.lo[i] * scale[i] - scaled_q[i];
            const Four above = wanted.limits.hi[i] * scale[i] - scaled_q[i];
            ordinary = ordinary && (done || (step[i] <= above && step[i] >= below));
            scaled_q[i] = select(done, scaled_q[i], scaled_q[i] + step[i]);
        }
        done = done || !ordinary;
    }
    ordinary = ordinary && done;
    return q;
}

// Seven joints near the seed. As zk::arm::found_on_circle.
std::array<Four, 7> near_seed(const Arm& arm, const Transform<Four>& target, const Wanted& wanted,
                              const std::array<Four, 7>& seed, Mask& ordinary) {
    std::array<Four, 7> start;
    for (int i = 0; i < 7; ++i) {
        const Four lo = wanted.limits.lo[i], hi = wanted.limits.hi[i];
        start[i] = select(seed[i] < lo, lo, select(hi < seed[i], hi, seed[i]));
    }
    ordinary = ordinary && may_reach(arm, target) && !is_about_straight(arm, seed);
    const std::array<Four, 7> q = refined(arm, target, wanted, start, ordinary);
    Four distance = 0;
    for (int i = 0; i < 7; ++i) distance += wanted.weight[i] * (q[i] - seed[i]) * (q[i] - seed[i]);
    ordinary = ordinary && distance < kNearSeed;
    return q;
}

// Six joints.
std::array<Four, 7> by_closed_form(const Arm& arm, const Transform<Four>& target, const Wanted& wanted,
                                   const std::array<Four, 7>& seed, Mask& ordinary) {
    FourPlacing placing(arm, wanted, seed);
    if (arm.build == Build::kSphericalWrist) {
        spherical_wrist(arm, target, placing);
    } else {
        parallel_axes(arm, target, placing);
    }
    ordinary = ordinary && placing.ordinary() && !is_left_to_rounding(arm, target, placing.q(), seed);
    return placing.q();
}

Mask is_finite(Four x) { return fabs(x) <= std::numeric_limits<double>::max(); }

// The targets, and which of them are in order.
Transform<Four> frames_of(const Pose* poses, bool by_euler, Mask& in_order) {
    constexpr int kStride = sizeof(Pose) / sizeof(float);
    constexpr double kLargest = 1e5;  // radians, as in turn_of
    const auto column = [&](const float& field) { return Four(&field, kStride); };
    const auto& [p, q, e] = *poses;
    const Vec3Of<Four> at = {column(p.x), column(p.y), column(p.z)};
    in_order = in_order && is_finite(at[0]) && is_finite(at[1]) && is_finite(at[2]);
    if (by_euler) {
        const EulerOf<Four> angles = {column(e.rx), column(e.ry), column(e.rz)};
        for (const Four angle : {angles.x, angles.y, angles.z}) in_order = in_order && (fabs(angle) < kLargest);
        return frame_of(at, angles);
    }
    const QuatOf<Four> quat = {column(q.w), column(q.x), column(q.y), column(q.z)};
    const Four squared = quat.w * quat.w + quat.x * quat.x + quat.y * quat.y + quat.z * quat.z;
    in_order = in_order && (squared >= 0.99) && (squared <= 1.01);
    return frame_of(at, quat);
}

// Rows whose answers, written, meet the targets. As zk::arm::checked.
Mask meet(const ZK_Model& model, const Transform<Four>& target, const std::array<Four, 7>& q, __m128* degrees) {
    std::array<Four, 7> at;
    for (int i = 0; i < model.arm.joints; ++i) {
        const __m128 angle = _mm256_cvtpd_ps((q[i] * (1 / kRadiansPerDegree)).v);
        degrees[i] = _mm_max_ps(_mm_min_ps(angle, _mm_set1_ps(model.highest[i])), _mm_set1_ps(model.lowest[i]));
        at[i] = Four(_mm256_cvtps_pd(degrees[i])) * kRadiansPerDegree;
    }
    const auto [metres, radians] = miss_of(work_T_tool(model.arm, at), target);
    return (metres < ZK_INVERSE_METRES) && (radians < ZK_INVERSE_RADIANS);
}

}  // namespace

bool can_do_four() { return __builtin_cpu_supports("avx2"); }

bool forward_four(const ZK_Model& model, const float* joint, Pose* pose) {
    constexpr double kLargest = 1e6;  // degrees; the turns of larger angles need the C library
    constexpr int kStride = sizeof(Pose) / sizeof(float);
    const Arm& arm = model.arm;
    std::array<Four, 7> q;
    for (int i = 0; i < arm.joints; ++i) {
        const Four degrees(joint + i, arm.joints);
        if (!(fabs(degrees) < kLargest).all()) return false;
        q[i] = degrees * kRadiansPerDegree;
    }
    const Transform<Four> t = work_T_tool(arm, q);
    const Four level = level_of(t);
    if ((level < kUpright).any()) return false;
    const EulerOf<Four> e = euler_of(t, level);
    const QuatOf<Four> r = quaternion_of(t);
    const Four fields[] = {t.m[0][3], t.m[1][3], t.m[2][3], r.w, r.x, r.y, r.z, e.x, e.y, e.z};
    for (int i = 0; i < kStride; ++i) write(_mm256_cvtpd_ps(fields[i].v), &pose->position.x + i, kStride);
    return true;
}

int inverse_four(const ZK_Model& model, const Pose* target, const float* seed, const ZK_InverseOptions& options,
                 float* joint) {
    const Arm& arm = model.arm;
    Request request;
    if (!read(model, seed, options, request)) return 0;
    if (request.max_step < kInfinity || request.min_manipulability > 0) return 0;
    std::array<Four, 7> seeds{};
    Mask ordinary = Four(0) <= Four(0);
    for (int i = 0; i < arm.joints; ++i) {
        const Four degrees(seed + i, arm.joints);
        ordinary = ordinary && degrees >= lowest_seed(model, i) && degrees <= highest_seed(model, i);
        seeds[i] = degrees * kRadiansPerDegree;
    }
    const Transform<Four> tool = frames_of(target, options.orientation == ZK_BY_EULER, ordinary);
    const Transform<Four> end = arm.root_T_work * tool * arm.tool_T_end;
    const auto q = (arm.joints == 7 ? near_seed : by_closed_form)(arm, end, request.wanted, seeds, ordinary);
    if (!ordinary.any()) return 0;
    __m128 degrees[7];
    const int rows = (ordinary && meet(model, tool, q, degrees)).rows();
    for (int i = 0; i < arm.joints; ++i) {
        float four[kFour];
        _mm_storeu_ps(four, degrees[i]);
        for (int k = 0; k < kFour; ++k) {
            if (rows & (1 << k)) joint[k * arm.joints + i] = four[k];
        }
    }
    return rows;
}

}  // namespace zk::arm

#else

namespace zk::arm {

bool can_do_four() { return false; }
bool forward_four(const ZK_Model&, const float*, Pose*) { return false; }
int inverse_four(const ZK_Model&, const Pose*, const float*, const ZK_InverseOptions&, float*) { return 0; }

}  // namespace zk::arm

#endif
