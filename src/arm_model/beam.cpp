#include "arm_model/beam.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>

#include "arm_model/circle.h"
#include "arm_model/solve.h"

namespace zk::arm {
namespace {

constexpr int kArmAngles = 120;                   // of arm angles that are kept apart, for either bend of the elbow
constexpr int kFreeJoint = 2;                     // the joint that is pulled aside to find the free motion
constexpr double kAside = 0.08, kFurthest = 0.8;  // radians of it

struct Posture {
    Joints q;
    double cost;
    int from;  // in the layer before
};
using Layer = std::vector<Posture>;

// The cheapest posture at each arm angle.
class Kept {
 public:
    explicit Kept(const Arm& arm) : arm_(arm) { at_.fill(-1); }

    void offer(const Posture& posture) {
        const double turns = angle_of(arm_angle(arm_, posture.q)) * (0.5 / M_PI), share = turns - std::floor(turns);
        const int place = std::min(kArmAngles - 1, static_cast<int>(share * kArmAngles));
        int& at = at_[2 * place + (posture.q[3] > 0)];
        if (at < 0) {
            at = static_cast<int>(layer.size());
            layer.push_back(posture);
        } else if (posture.cost < layer[at].cost) {
            layer[at] = posture;
        }
    }

    Layer layer;

 private:
    const Arm& arm_;
    std::array<int, 2 * kArmAngles> at_;
};

double arm_angle_between(const Arm& arm, const Joints& from, const Joints& to) {
    return turned_to(angle_of(arm_angle(arm, to)) - angle_of(arm_angle(arm, from)), 0);
}

// Where the smallest steps lead from a posture, and about one place to either side of that.
void lead_on(const Arm& arm, const Frame& target, const Wanted& from, const Posture& before, int index, Kept& kept) {
    const auto go = [&](double aside, Joints& q) {
        Joints pull{};
        pull[kFreeJoint] = aside;
        q = from.seed;
        if (!refined(arm, target, from, q, pull)) return false;
        kept.offer({q, before.cost + distance(from, q), index});
        return true;
    };
    Joints straight, aside;
    if (!go(0, straight)) return;
    for (const double side : {kAside, -kAside}) {
        if (!go(side, aside)) continue;
        // That shows how far to pull.
        const double moved = std::fabs(arm_angle_between(arm, straight, aside));
        const double enough = kAside * 1.2 * (2 * M_PI / kArmAngles) / (moved + 1e-9);
        go(std::copysign(std::min(kFurthest, enough), side), aside);
    }
}

Layer next_layer(const Arm& arm, const Layer& before, const Frame& target, const Wanted& wanted, double max_step) {
    Kept kept(arm);
    Wanted from = wanted;
    for (size_t i = 0; i < before.size(); ++i) {
        from.seed = before[i].q;
        from.limits = within_step(wanted.limits, from.seed, max_step);
        if (are_empty(from.limits)) continue;
        lead_on(arm, target, from, before[i], static_cast<int>(i), kept);
    }
    return kept.layer;
}

std::vector<Joints> cheapest_way(const std::vector<Layer>& layers) {
    const auto cheaper = [](const Posture& a, const Posture& b) { return a.cost < b.cost; };
    std::vector<Joints> way(layers.size());
    Posture posture = *std::min_element(layers.back().begin(), layers.back().end(), cheaper);
    for (size_t t = layers.size(); t-- > 0;) {
        way[t] = posture.q;
        if (t > 0) posture = layers[t - 1][posture.from];
    }
    return way;
}

}  // namespace

std::vector<Joints> way_along(const Arm& arm, const std::vector<Frame>& targets, const Wanted& wanted,
                              double max_step) try {
    std::vector<Layer> layers;
    const Layer start = {{wanted.seed, 0, -1}};
    for (const Frame& target : targets) {
        layers.push_back(next_layer(arm, layers.empty() ? start : layers.back(), target, wanted, max_step));
        if (layers.back().empty()) return {};
    }
    return layers.empty() ? std::vector<Joints>() : cheapest_way(layers);
} catch (const std::bad_alloc&) {
    return {};
}

}  // namespace zk::arm
