#include "arm_model/solve.h"

#include <algorithm>
#include <array>

#include "arm_model/chain.h"
#include "arm_model/circle.h"
#include "kinematics/rotation_difference.h"

namespace zk::arm {
namespace {

// The n-th of points that spread evenly over the limits. Method: Roberts, The Unreasonable Effectiveness of
// Quasirandom Sequences (2018), for seven dimensions.
Joints spread(const Limits& limits, int n) {
    constexpr double kRoot = 1.0970017794609055;  // of x^8 = x + 1
    Joints q;
    double stride = 1;
    for (int i = 0; i < 7; ++i) {
        stride /= kRoot;
        const double point = 0.5 + n * stride;
        q[i] = limits.lo[i] + (point - std::floor(point)) * (limits.hi[i] - limits.lo[i]);
    }
    return q;
}

}  // namespace

damped::Error difference(const Frame& from, const Frame& to) {
    const Vector p = minus(translation_of<double>(to), translation_of<double>(from));
    const Vector a = axis_times_angle(product(rotation_of<double>(to), transposed(rotation_of<double>(from))));
    return {p[0], p[1], p[2], a[0], a[1], a[2]};
}

bool refined(const Arm& arm, const Frame& target, const Wanted& wanted, Joints& q, const Joints& pull) {
    // In joints scaled by the roots of their weights the steps of least length are those of least weight.
    Joints scale, unscale, scaled, scaled_pull;
    Limits limits;
    for (int i = 0; i < 7; ++i) {
        scale[i] = std::sqrt(wanted.weight[i]);
        unscale[i] = 1 / scale[i];
        limits.lo[i] = wanted.limits.lo[i] * scale[i];
        limits.hi[i] = wanted.limits.hi[i] * scale[i];
        scaled[i] = q[i] * scale[i];
        scaled_pull[i] = pull[i] * scale[i];
    }
    const auto at = [&](const Joints& from, Jacobian& J) {
        for (int i = 0; i < 7; ++i) q[i] = from[i] * unscale[i];
        Axes<double> axes;
        const Frame end = root_T_end(arm, q, axes);
        J = {};
        fill_jacobian(arm, axes, translation_of<double>(end), J);
        for (auto& row : J) {
            for (int i = 0; i < 7; ++i) row[i] *= unscale[i];
        }
        return difference(end, target);
    };
    return damped::converge(at, limits, scaled_pull, kConverged, kConverged, scaled);
}

namespace {

// Moves the nearest posture along the circle while that brings it nearer to the seed.
void slide(const Arm& arm, const Frame& target, Nearest& nearest) {
    constexpr double kStart = M_PI / kPlaces, kEnd = 0.002;
    double at = place_of(arm, nearest.best());
    for (double step = kStart; step > kEnd; step /= 2) {
        for (const double side : {step, -step}) {
            const double before = nearest.bound();
            postures_at(arm, target, at + side, nearest);
            if (!(nearest.bound() < before)) continue;
            at += side;
            break;
        }
    }
}

// Pulls the nearest posture towards the seed while that brings it nearer.
void pull_nearer(const Arm& arm, const Frame& target, const Wanted& wanted, Nearest& nearest) {
    constexpr int kRounds = 4;
    constexpr double kNearer = 0.99;
    for (int round = 0; round < kRounds; ++round) {
        Joints q = nearest.best(), pull;
        for (int i = 0; i < 7; ++i) pull[i] = wanted.seed[i] - q[i];
        if (!refined(arm, target, wanted, q, pull)) return;
        const double before = nearest.bound();
        nearest.offer(q);
        if (!(nearest.bound() < kNearer * before)) return;
    }
}

// --------------------------------------------------------------------------------------------- When all else fails --

Joints clamped(const Joints& q, const Limits& limits) {
    Joints result;
    for (int i = 0; i < 7; ++i) result[i] = std::clamp(q[i], limits.lo[i], limits.hi[i]);
    return result;
}

struct Excess {
    int joint;
    double by;
};
Excess excess_of(const Joints& q, const Limits& limits) {
    Excess worst = {0, 0};
    for (int i = 0; i < 7; ++i) {
        const double by = std::max(q[i] - limits.hi[i], limits.lo[i] - q[i]);
        if (by > worst.by) worst = {i, by};
    }
    return worst;
}

// Where axes are on one line, the closed form takes one of many postures by the seed; another seed may keep the limits.
bool try_other_seeds(const Arm& arm, const Frame& target, const Wanted& wanted, Joints& q) {
    constexpr int kSeeds = 24;
    Wanted other = wanted;
    double least = kInfinity;
    for (int n = 1; n <= kSeeds; ++n) {
        other.seed = spread(wanted.limits, n);
        Nearest nearest(arm, other);
        closed_form(arm, target, nearest);
        if (!nearest.found() || !(distance(wanted, nearest.best()) < least)) continue;
        least = distance(wanted, nearest.best());
        q = nearest.best();
    }
    return least < kInfinity;
}

constexpr double kBeyond = 1e10;  // a hundred-thousandth of a radian beyond weighs as much as a radian of distance

// The postures least beyond the limits, apart from each other.
class LeastBeyond : public Placing {
 public:
    using Placing::Placing;

    double bound() const { return bound_; }
    void offer(double cost) {
        int at = 0;
        while (at < count_ && !are_close(kept_[at].q, q_)) ++at;
        if (at == kMost) at = worst();
        if (at < count_ && !(cost < kept_[at].cost)) return;
        kept_[at] = {cost, q_};
        count_ = std::max(count_, at + 1);
        if (count_ == kMost) bound_ = kept_[worst()].cost;
    }

    // Calls f(posture) for each, the least beyond first.
    template <class F>
    void for_each(F f) {
        std::sort(kept_.begin(), kept_.begin() + count_, is_less);
        for (int i = 0; i < count_; ++i) f(kept_[i].q);
    }

 private:
    struct Posture {
        double cost;
        Joints q;
    };
    static constexpr int kMost = 24;

    static bool is_less(const Posture& a, const Posture& b) { return a.cost < b.cost; }
    static bool are_close(const Joints& a, const Joints& b) {
        constexpr double kClose = 0.3;
        return std::equal(a.begin(), a.end(), b.begin(), [](double x, double y) { return std::fabs(x - y) < kClose; });
    }
    int worst() const {
        return static_cast<int>(std::max_element(kept_.begin(), kept_.begin() + count_, is_less) - kept_.begin());
    }

    std::array<Posture, kMost> kept_;
    int count_ = 0;
    double bound_ = kBeyond;  // at first a radian beyond is too much
};

// Narrow limits leave less of the circle than lies between two places, a locked joint leaves points of it. The least
// squares find them from the postures about there.
bool try_about_limits(const Arm& arm, const Frame& target, const Wanted& wanted, int places, Joints& q) {
    constexpr double kMuchFurther = 2;
    constexpr int kMostFailures = 8;
    Wanted beyond = wanted;
    beyond.beyond = kBeyond;
    LeastBeyond starts(arm, beyond);
    try_circle(arm, target, 0, places, starts);
    Nearest nearest(arm, wanted);
    int failures = 0;
    starts.for_each([&](const Joints& start) {
        Joints from = clamped(start, wanted.limits);
        if (failures == kMostFailures || distance(wanted, from) > kMuchFurther * nearest.bound()) return;
        if (refined(arm, target, wanted, from)) {
            nearest.offer(from);
        } else {
            ++failures;
        }
    });
    if (nearest.found()) pull_nearer(arm, target, wanted, nearest);
    q = nearest.best();
    return nearest.found();
}

bool try_harder(const Arm& arm, const Frame& target, const Wanted& wanted, Joints& q) {
    if (arm.joints < 7) return try_other_seeds(arm, target, wanted, q);
    return try_about_limits(arm, target, wanted, kPlaces, q) || try_about_limits(arm, target, wanted, kManyPlaces, q);
}

// The posture that is least beyond the limits. False when there is no posture at all.
bool least_beyond(const Arm& arm, const Frame& target, Wanted wanted, Joints& q) {
    wanted.beyond = kBeyond;
    Nearest nearest(arm, wanted);
    if (!closed_form(arm, target, nearest) && arm.joints == 7) try_circle(arm, target, 0, kManyPlaces, nearest);
    q = nearest.best();
    return nearest.found();
}

// Six joints may meet the target although the posture is a little beyond a limit: the others make up for it.
bool refined_at_limit(const Arm& arm, const Frame& target, const Wanted& wanted, Joints& q) {
    constexpr double kNear = 0.003;
    if (arm.joints == 7 || excess_of(q, wanted.limits).by > kNear) return false;
    q = clamped(q, wanted.limits);
    return refined(arm, target, wanted, q);
}

// From the seed, an iteration takes the smallest steps there are. Near the seed nothing is nearer; further away the
// circle is searched for what is nearer.
bool found_on_circle(const Arm& arm, const Frame& target, const Wanted& wanted, bool& reached, Joints& q) {
    reached = false;
    if (!may_reach(arm, target)) return false;
    q = clamped(wanted.seed, wanted.limits);
    Nearest nearest(arm, wanted);
    if (refined(arm, target, wanted, q)) nearest.offer(q);
    if (nearest.bound() < kNearSeed) {
        if (is_about_straight(arm, wanted.seed)) pull_nearer(arm, target, wanted, nearest);
        q = nearest.best();
        return true;
    }
    reached = closed_form(arm, target, nearest) || nearest.found();
    // At the edge of its reach model 7 keeps less of the circle than lies between two places.
    if (arm.build == Build::kOffsetSeven) reached = true;
    if (nearest.found()) {
        slide(arm, target, nearest);
        pull_nearer(arm, target, wanted, nearest);
    }
    q = nearest.best();
    return nearest.found();
}

// From the seed, the iteration may come to a nearer posture than the closed form.
void look_from_seed(const Arm& arm, const Frame& target, const Wanted& wanted, Nearest& nearest) {
    constexpr double kNear = 0.3;
    Joints q = clamped(wanted.seed, wanted.limits);
    if (!damped::all_below(difference(root_T_end(arm, q), target), kNear, kNear)) return;
    if (refined(arm, target, wanted, q)) nearest.offer(q);
}

bool found_by_closed_form(const Arm& arm, const Frame& target, const Wanted& wanted, bool& reached, Joints& q) {
    Nearest nearest(arm, wanted);
    reached = closed_form(arm, target, nearest);
    if (!nearest.found()) return false;
    if (is_left_to_rounding(arm, target, nearest.best(), wanted.seed)) look_from_seed(arm, target, wanted, nearest);
    q = nearest.best();
    return true;
}

// Sets reached to false where the target is certainly out of reach.
bool found(const Arm& arm, const Frame& target, const Wanted& wanted, bool& reached, Joints& q) {
    if ((arm.joints == 7 ? found_on_circle : found_by_closed_form)(arm, target, wanted, reached, q)) return true;
    return reached && try_harder(arm, target, wanted, q);
}

Answer solve_within(const Arm& arm, const Frame& target, const Wanted& wanted) {
    Answer answer{};
    bool reached = false;
    if (found(arm, target, wanted, reached, answer.q)) return answer;
    if (!reached || !least_beyond(arm, target, wanted, answer.q)) return {Refusal::kOutOfReach, 0, {}};
    const int joint = excess_of(answer.q, wanted.limits).joint;
    if (refined_at_limit(arm, target, wanted, answer.q)) return answer;
    return {Refusal::kBeyondLimits, joint, {}};
}

}  // namespace

Limits within_step(const Limits& limits, const Joints& from, double max_step) {
    Limits cut;
    for (int i = 0; i < 7; ++i) {
        cut.lo[i] = std::max(limits.lo[i], from[i] - max_step);
        cut.hi[i] = std::min(limits.hi[i], from[i] + max_step);
    }
    return cut;
}

bool are_empty(const Limits& limits) {
    for (int i = 0; i < 7; ++i) {
        if (limits.lo[i] > limits.hi[i]) return true;
    }
    return false;
}

Answer solve(const Arm& arm, const Frame& target, const Wanted& wanted, double max_step) {
    if (max_step == kInfinity) return solve_within(arm, target, wanted);
    Wanted within = wanted;
    within.limits = within_step(wanted.limits, wanted.seed, max_step);
    if (!are_empty(within.limits)) {
        const Answer answer = solve_within(arm, target, within);
        if (answer.refusal != Refusal::kBeyondLimits) return answer;
    }
    // Of the limits, or of the step?
    const Answer further = solve_within(arm, target, wanted);
    return further.refusal == Refusal::kNone ? Answer{Refusal::kLargerStep, 0, {}} : further;
}

}  // namespace zk::arm
