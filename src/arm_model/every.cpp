#include "arm_model/every.h"

#include <algorithm>
#include <new>

#include "arm_model/circle.h"
#include "arm_model/solve.h"
#include "arm_model/zk_model.h"
#include "zk/status.h"

namespace zk::arm {
namespace {

struct Posture {
    double distance;
    Joints q;
};

// Keeps all postures, each with its whole turns where they are asked for.
class Every : public Placing {
 public:
    Every(const Arm& arm, const Wanted& wanted, bool whole_turns) : Placing(arm, wanted), whole_turns_(whole_turns) {}

    double bound() const { return kInfinity; }
    void offer(double distance) {
        if (distance < kInfinity) add_turns(whole_turns_ ? 0 : arm_.joints, q_);
    }
    std::vector<Posture>& postures() { return postures_; }

 private:
    // Goes through the whole turns of joint i and those after it.
    void add_turns(int i, Joints q) {
        if (i == arm_.joints) {
            double sum = 0;
            for (int j = 0; j < arm_.joints; ++j) sum += distance(j, q[j]);
            if (postures_.size() == kMost) throw std::bad_alloc();
            postures_.push_back({sum, q});
            return;
        }
        const double lo = wanted_.limits.lo[i], hi = wanted_.limits.hi[i];
        double angle = q_[i] - 2 * M_PI * std::floor((q_[i] - lo + kSlack) * (0.5 / M_PI));
        for (; angle <= hi + kSlack; angle += 2 * M_PI) {
            q[i] = std::clamp(angle, lo, hi);
            add_turns(i + 1, q);
        }
    }

    // Wide limits allow billions of whole turns.
    static constexpr std::size_t kMost = 1 << 21;

    const bool whole_turns_;
    std::vector<Posture> postures_;
};

bool is_before(const Posture& a, const Posture& b) {
    return a.distance != b.distance ? a.distance < b.distance : a.q < b.q;
}

// Two closed forms return one posture where they meet, at a straight elbow for example.
bool is_same(const Posture& a, const Posture& b) {
    constexpr double kSame = 1e-9;
    return std::equal(a.q.begin(), a.q.end(), b.q.begin(), [](double x, double y) { return std::fabs(x - y) < kSame; });
}

}  // namespace

std::vector<Joints> every_posture(const Arm& arm, const Frame& target, const Wanted& wanted, double max_step,
                                  double circle_step, bool whole_turns) try {
    Wanted within = wanted;
    within.limits = within_step(wanted.limits, wanted.seed, max_step);
    if (are_empty(within.limits)) return {};
    Every every(arm, within, whole_turns);
    if (arm.joints == 7) {
        const int places = std::max(1, static_cast<int>(rounded(2 * M_PI / circle_step)));
        try_circle(arm, target, place_of(arm, wanted.seed), places, every);
    } else {
        closed_form(arm, target, every);
    }
    auto& found = every.postures();
    std::sort(found.begin(), found.end(), is_before);
    found.erase(std::unique(found.begin(), found.end(), is_same), found.end());
    std::vector<Joints> postures;
    postures.reserve(found.size());
    for (const Posture& posture : found) postures.push_back(posture.q);
    return postures;
} catch (const std::bad_alloc&) {
    return {};
}

}  // namespace zk::arm

using namespace zk::arm;

ZK_API int ZK_Model_Inverse_All(const ZK_Model* model, const Pose* target, const float* seed,
                                const ZK_InverseOptions* options, float* joint, int capacity, int* count) {
    static constexpr ZK_InverseOptions kDefaults = {};
    if (!options) options = &kDefaults;
    Request request;
    if (!model || !target || !seed || !count || capacity < 0 || (capacity > 0 && !joint)) return ZK_BAD_ARGUMENT;
    if (!read(*model, seed, *options, request)) return ZK_BAD_ARGUMENT;
    ZK_InverseResult ignored;
    const int status = target_status(*target, *options, ignored);
    if (status == ZK_BAD_ARGUMENT) return status;
    *count = 0;
    if (status != ZK_OK) return ZK_OK;
    const double step = options->circle_step > 0 ? options->circle_step * kRadiansPerDegree : kCircleStep;
    const Frame tool = frame_of(*target, *options);
    for (const Joints& q :
         every_posture(model->arm, end_target(model->arm, tool), request.wanted, request.max_step, step, true)) {
        if (manipulability(model->arm, q) < request.min_manipulability) continue;
        float written[7];
        if (!checked(*model, tool, request.wanted, q, written, ignored)) continue;
        if (*count < capacity) std::copy_n(written, model->arm.joints, joint + *count * model->arm.joints);
        ++*count;
    }
    return ZK_OK;
}
