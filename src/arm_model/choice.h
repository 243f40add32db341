// Which of an arm's postures to take: those within the limits, and of them the nearest to the seed.
#pragma once

#include <cmath>
#include <limits>

#include "arm_model/arm.h"

namespace zk::arm {

inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The whole number nearest to x, for |x| below 2^51. Without a call.
template <class Real>
inline Real rounded(Real x) {
    constexpr double kToInteger = 6755399441055744.0;  // 1.5 * 2^52
    return (x + kToInteger) - kToInteger;
}

// The angle moved by whole turns next to `near`.
template <class Real>
inline Real turned_to(Real angle, Real near) {
    return angle + 2 * M_PI * rounded((near - angle) * (0.5 / M_PI));
}

// What is sought: joints near the seed, within the limits.
struct Wanted {
    Joints seed;
    Joints weight;  // of each joint's square in the distance to the seed
    Limits limits;
    double beyond = kInfinity;  // cost of a squared radian beyond a limit; infinite to refuse it
};

// The weighted sum of squared differences from the seed.
inline double distance(const Wanted& wanted, const Joints& q) {
    double sum = 0;
    for (int i = 0; i < 7; ++i) sum += wanted.weight[i] * (q[i] - wanted.seed[i]) * (q[i] - wanted.seed[i]);
    return sum;
}

// Collects postures joint by joint. Turns come in the chain's angles.
class Placing {
 public:
    // Rounding may take a joint this far beyond its limit. It is put on the limit.
    static constexpr double kSlack = 2e-6;

    Placing(const Arm& arm, const Wanted& wanted) : arm_(arm), wanted_(wanted) {}

    // Puts joint i to the turn, moved by whole turns within the limits and there next to the seed. Returns its share of
    // the distance, and the cost of what it is beyond the limits when no whole turn brings it within.
    double place(int i, double turn) {
        const double seed = wanted_.seed[i], lo = wanted_.limits.lo[i], hi = wanted_.limits.hi[i];
        double q = turned_to(arm_.sign[i] * (turn - arm_.shift[i]), seed);
        if (q > hi + kSlack) q -= 2 * M_PI * std::ceil((q - hi - kSlack) * (0.5 / M_PI));
        if (q < lo - kSlack) q += 2 * M_PI * std::ceil((lo - kSlack - q) * (0.5 / M_PI));
        if (!(q <= hi + kSlack)) return place_beyond(i, q);
        q_[i] = q > hi ? hi : q < lo ? lo : q;
        return distance(i, q_[i]);
    }

    // Whether the second turn of joint i is nearer to the seed than the first, whole turns left out.
    bool is_nearer(int i, double first, double second) const {
        const double seed = seed_turn(i);
        return std::fabs(turned_to(second - seed, 0.0)) < std::fabs(turned_to(first - seed, 0.0));
    }

    // The turn of joint i at the seed.
    double seed_turn(int i) const { return arm_.sign[i] * wanted_.seed[i] + arm_.shift[i]; }

    // Joints i and i + 2 on one line, where only turn i + side * turn (i + 2) = sum is defined. They share the way from
    // the seed by their weights, as far as their limits let them.
    double place_aligned(int i, double sum, double side) {
        const double to = turned_to(sum - seed_turn(i) - side * seed_turn(i + 2), 0.0);
        double best = kInfinity;
        Joints placed = q_;
        for (const double way : {to, to > 0 ? to - 2 * M_PI : to + 2 * M_PI}) {
            const double cost = place_shared(i, way, side);
            if (cost < best) {
                best = cost;
                placed = q_;
            }
        }
        q_ = placed;
        return best;
    }

 protected:
    double distance(int i, double q) const {
        const double e = q - wanted_.seed[i];
        return wanted_.weight[i] * e * e;
    }

    const Arm& arm_;
    const Wanted& wanted_;
    Joints q_{};

 private:
    // The joint is above its limits here, and a turn less would be below.
    double place_beyond(int i, double q) {
        const double above = q - wanted_.limits.hi[i], below = wanted_.limits.lo[i] - (q - 2 * M_PI);
        q_[i] = above <= below ? q : q - 2 * M_PI;
        const double excess = above <= below ? above : below;
        return wanted_.beyond < kInfinity ? distance(i, q_[i]) + wanted_.beyond * excess * excess : kInfinity;
    }

    double place_shared(int i, double way, double side) {
        const Joints &seed = wanted_.seed, &weight = wanted_.weight;
        const Limits& limits = wanted_.limits;
        const int k = i + 2;
        const auto within = [&](int j, double q) { return std::fmax(limits.lo[j], std::fmin(limits.hi[j], q)); };
        const double si = arm_.sign[i], sk = arm_.sign[k] * side;
        q_[i] = within(i, seed[i] + si * way * weight[k] / (weight[i] + weight[k]));
        q_[k] = within(k, seed[k] + sk * (way - si * (q_[i] - seed[i])));
        q_[i] = within(i, seed[i] + si * (way - sk * (q_[k] - seed[k])));
        const double missing = way - si * (q_[i] - seed[i]) - sk * (q_[k] - seed[k]);
        return std::fabs(missing) < kSlack ? distance(i, q_[i]) + distance(k, q_[k]) : kInfinity;
    }
};

// Keeps the posture nearest to the seed, the first of equals.
class Nearest : public Placing {
 public:
    using Placing::Placing;

    // A posture whose distance is not below this is not looked for.
    double bound() const { return distance_; }
    void offer(double distance) {
        if (!(distance < distance_)) return;
        distance_ = distance;
        best_ = q_;
    }
    // A posture that was found in another way.
    void offer(const Joints& q) {
        q_ = q;
        offer(zk::arm::distance(wanted_, q));
    }
    bool found() const { return distance_ < kInfinity; }
    const Joints& best() const { return best_; }

 private:
    double distance_ = kInfinity;
    Joints best_;
};

}  // namespace zk::arm
