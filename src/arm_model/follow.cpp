// Joints for a path of poses.
#include <algorithm>
#include <cmath>
#include <new>
#include <optional>
#include <vector>

#include "arm_model/beam.h"
#include "arm_model/circle.h"
#include "arm_model/solve.h"
#include "arm_model/zk_model.h"
#include "zk/status.h"

namespace zk::arm {
namespace {

constexpr float kLargestStep = 10;  // degrees, unless the caller says otherwise

double turn_between(double from, double to) { return turned_to(to - from, 0.0); }

// The arm along a path: where it stands, and where it goes on to if it moves as it did.
class Follower {
 public:
    Follower(const Arm& arm, const Request& request)
        : arm_(arm), request_(request), at_(request.wanted.seed), ahead_(at_) {
        if (arm.joints == 7) held_ = angle_of(arm_angle(arm, at_));
    }

    const Joints& at() const { return at_; }

    // The posture for the next pose. Seven joints hold their arm angle where that takes no joint much further than it
    // has to go.
    Answer next(const Frame& target) const {
        Wanted wanted = request_.wanted;
        wanted.seed = at_;
        const auto least = [&] { return solve(arm_, target, wanted, request_.max_step); };
        Wanted onward = wanted;
        onward.seed = ahead_;
        onward.limits = within_step(wanted.limits, at_, request_.max_step);
        if (arm_.joints < 7) {
            const auto q = nearest(target, onward);
            return q ? Answer{{}, 0, *q} : least();
        }
        const Answer other = least();
        const auto held = at_angle(target, onward, held_);
        if (!held) return other;
        const bool is_far = largest_step(*held) > kLittle + kFurther * largest_step(other.q);
        return other.refusal == Refusal::kNone && is_far ? other : Answer{{}, 0, *held};
    }

    void go(const Joints& q) {
        for (int i = 0; i < 7; ++i) ahead_[i] = 2 * q[i] - at_[i];
        at_ = q;
        if (arm_.joints == 7) held_ = angle_of(arm_angle(arm_, at_));
    }

 private:
    // How far a joint may go to hold the arm angle: as many times as far as it has to, and a little, radians.
    static constexpr double kFurther = 1.5, kLittle = 0.005;

    std::optional<Joints> nearest(const Frame& target, const Wanted& wanted) const {
        Nearest nearest(arm_, wanted);
        closed_form(arm_, target, nearest);
        if (!nearest.found()) return {};
        return nearest.best();
    }

    double largest_step(const Joints& q) const {
        double largest = 0;
        for (int i = 0; i < 7; ++i) largest = std::max(largest, std::fabs(q[i] - at_[i]));
        return largest;
    }

    std::optional<Joints> at_place(const Frame& target, const Wanted& wanted, double place) const {
        Nearest nearest(arm_, wanted);
        postures_at(arm_, target, place, nearest);
        if (!nearest.found()) return {};
        return nearest.best();
    }

    // The posture with the arm angle. Where the circle counts the turn of joint 7, by the secant method.
    std::optional<Joints> at_angle(const Frame& target, const Wanted& wanted, double angle) const {
        if (arm_.build == Build::kSphericalSeven) return at_place(target, wanted, angle);
        constexpr double kAside = 0.01, kClose = 1e-6, kLongest = 0.3;
        constexpr int kRounds = 8;
        const auto miss = [&](const Joints& q) { return turn_between(angle, angle_of(arm_angle(arm_, q))); };
        double place = place_of(arm_, wanted.seed);
        std::optional<Joints> q = at_place(target, wanted, place);
        if (!q) return {};
        double error = miss(*q), other = place + kAside;
        std::optional<Joints> p = at_place(target, wanted, other);
        for (int round = 0; p && round < kRounds; ++round) {
            const double before = error, from = place;
            error = miss(*p);
            place = other;
            if (std::fabs(error) < kClose) return p;
            other = place - std::clamp(error * (place - from) / (error - before), -kLongest, kLongest);
            if (!std::isfinite(other)) return {};
            p = at_place(target, wanted, other);
        }
        return {};
    }

    const Arm& arm_;
    const Request& request_;
    Joints at_, ahead_;
    double held_ = 0;
};

int follow(const ZK_Model& model, const Pose& pose, const ZK_InverseOptions& options, Request& request,
           Follower& follower, float* joint, ZK_InverseResult& result) {
    const int status = target_status(pose, options, result);
    if (status != ZK_OK) return status;
    const Frame target = frame_of(pose, options);
    request.wanted.seed = follower.at();
    Answer answer = follower.next(end_target(model.arm, target));
    if (!take(model, target, request, answer, joint, result)) return ZK_NO_SOLUTION;
    follower.go(answer.q);
    return ZK_OK;
}

// Looks for a way along all poses when pose by pose came to a place from where no small step goes on.
bool found_as_a_whole(const ZK_Model& model, const Pose* poses, int count, const ZK_InverseOptions& options,
                      Request request, float* joint) try {
    const int joints = model.arm.joints;
    ZK_InverseResult ignored;
    std::vector<Frame> tools, ends;
    for (int i = 0; i < count; ++i) {
        if (target_status(poses[i], options, ignored) != ZK_OK) return false;
        tools.push_back(frame_of(poses[i], options));
        ends.push_back(end_target(model.arm, tools.back()));
    }
    const std::vector<Joints> way = way_along(model.arm, ends, request.wanted, request.max_step);
    std::vector<float> rows(way.size() * joints);
    for (size_t i = 0; i < way.size(); ++i) {
        Answer answer = {Refusal::kNone, 0, way[i]};
        if (!take(model, tools[i], request, answer, &rows[i * joints], ignored)) return false;
        request.wanted.seed = answer.q;
    }
    std::copy(rows.begin(), rows.end(), joint);
    return !way.empty();
} catch (const std::bad_alloc&) {
    return false;
}

}  // namespace
}  // namespace zk::arm

using namespace zk::arm;

ZK_API int ZK_Model_Follow(const ZK_Model* model, const Pose* poses, int count, const float* seed,
                           const ZK_InverseOptions* options, float* joint, ZK_FollowResult* result) {
    ZK_FollowResult unwanted;
    ZK_FollowResult& outcome = result ? *result : unwanted;
    outcome = {};
    ZK_InverseOptions chosen = options ? *options : ZK_InverseOptions{};
    if (chosen.max_step == 0) chosen.max_step = kLargestStep;
    Request request;
    if (!model || count < 0 || !seed || (count > 0 && (!poses || !joint))) return ZK_BAD_ARGUMENT;
    if (!read(*model, seed, chosen, request)) return ZK_BAD_ARGUMENT;
    const Request start = request;
    Follower follower(model->arm, request);
    for (; outcome.followed < count; ++outcome.followed) {
        const Pose& pose = poses[outcome.followed];
        float* row = joint + std::ptrdiff_t{outcome.followed} * model->arm.joints;
        const int status = follow(*model, pose, chosen, request, follower, row, outcome.refusal);
        if (status == ZK_OK) continue;
        // Another way to come here helps only where the limits allow a posture at all.
        const bool may_help = model->arm.joints == 7 && outcome.refusal.cause == ZK_CAUSE_LARGER_STEP;
        if (!may_help || !found_as_a_whole(*model, poses, count, chosen, start, joint)) return status;
        outcome.followed = count;
        break;
    }
    outcome.refusal = {};
    return ZK_OK;
}
