#include "arm_model/beam.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <new>

#include "arm_model/circle.h"
#include "arm_model/solve.h"

namespace zk::arm {
namespace {

constexpr int kArmAngles = 120;                   // of arm angles that are kept apart, for either bend of the elbow
constexpr int kFreeJoint = 2;                     // the joint that is pulled aside to find the free motion
constexpr double kAside = 0.08, kFurthest = 0.8;  // radians of it

// How a posture came about: the number of the one at the pose before, and of the move from there. All that is kept of
// poses passed: the postures come back by going the way once more.
struct Step {
    std::uint8_t from, move;
};
static_assert(2 * kArmAngles <= 256);

struct Posture {
    Joints q;
    double cost;
    Step step;
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
    return turned_to(angle_of(arm_angle(arm, to)) - angle_of(arm_angle(arm, from)), 0.0);
}

// The moves from a posture: by the smallest steps, and about one place to either side of that. Calls at(move, q) with
// the number of each that leads to the target, and where it does.
template <class At>
void for_moves(const Arm& arm, const Frame& target, Wanted from, const Joints& q, double max_step, At at) {
    from.seed = q;
    from.limits = within_step(from.limits, q, max_step);
    if (are_empty(from.limits)) return;
    int move = 0;
    const auto go = [&](double aside, Joints& to) {
        Joints pull{};
        pull[kFreeJoint] = aside;
        to = q;
        const bool led = refined(arm, target, from, to, pull);
        if (led) at(move, to);
        ++move;
        return led;
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
        for_moves(arm, target, wanted, before[i].q, max_step, [&](int move, const Joints& q) {
            const Step step = {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(move)};
            kept.offer({q, before[i].cost + distance(from, q), step});
        });
    }
    return kept.layer;
}

// The moves to the cheapest of the last postures.
std::vector<int> cheapest_moves(const std::vector<std::vector<Step>>& steps, const Layer& last) {
    const auto cheaper = [](const Posture& a, const Posture& b) { return a.cost < b.cost; };
    auto at = std::min_element(last.begin(), last.end(), cheaper) - last.begin();
    std::vector<int> moves(steps.size());
    for (size_t t = steps.size(); t-- > 0;) {
        moves[t] = steps[t][at].move;
        at = steps[t][at].from;
    }
    return moves;
}

}  // namespace

std::vector<Joints> way_along(const Arm& arm, const std::vector<Frame>& targets, const Wanted& wanted,
                              double max_step) try {
    std::vector<std::vector<Step>> steps;
    Layer layer = {{wanted.seed, 0, {}}};
    for (const Frame& target : targets) {
        layer = next_layer(arm, layer, target, wanted, max_step);
        if (layer.empty()) return {};
        std::vector<Step>& taken = steps.emplace_back();
        for (const Posture& posture : layer) taken.push_back(posture.step);
    }
    std::vector<Joints> way;
    Joints at = wanted.seed, next;
    for (const int taken : cheapest_moves(steps, layer)) {
        for_moves(arm, targets[way.size()], wanted, at, max_step, [&](int move, const Joints& q) {
            if (move == taken) next = q;
        });
        way.push_back(at = next);
    }
    return way;
} catch (const std::bad_alloc&) {
    return {};
}

}  // namespace zk::arm
