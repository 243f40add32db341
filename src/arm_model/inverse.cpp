// Inverse kinematics of a model: what a caller may ask for, and what becomes of the answer.
#include <algorithm>
#include <cmath>

#include "arm_model/chain.h"
#include "arm_model/circle.h"
#include "arm_model/every.h"
#include "arm_model/pose.h"
#include "arm_model/solve.h"
#include "arm_model/zk_model.h"
#include "zk/status.h"

namespace zk::arm {
namespace {

bool is_seed(const ZK_Model& model, const float* seed) {
    for (int i = 0; i < model.arm.joints; ++i) {
        if (!(seed[i] >= lowest_seed(model, i) && seed[i] <= highest_seed(model, i))) return false;
    }
    return true;
}

// All zero counts as equal weights. The solvers' thresholds are for weights about 1: their geometric mean becomes 1.
bool read_weights(const float* weight, int joints, Joints& weights) {
    weights.fill(1);
    if (std::all_of(weight, weight + joints, [](float w) { return w == 0; })) return true;
    if (!std::all_of(weight, weight + joints, [](float w) { return w > 0 && std::isfinite(w); })) return false;
    double logarithms = 0;
    for (int i = 0; i < joints; ++i) logarithms += std::log(weight[i]);
    for (int i = 0; i < joints; ++i) weights[i] = weight[i] / std::exp(logarithms / joints);
    return true;
}

bool is_bound(float value) { return value >= 0 && std::isfinite(value); }
bool is_circle_step(float degrees) { return degrees == 0 || (degrees >= 0.1f && degrees <= 360); }

// Whatever is wrong with the answer of the closed form, a step from there mends it: a long tool makes much of little.
bool checked_or_refined(const ZK_Model& model, const Frame& target, const Request& request, Joints& q, float* joint,
                        ZK_InverseResult& result) {
    if (checked(model, target, request.wanted, q, joint, result)) return true;
    Wanted within = request.wanted;
    within.limits = within_step(within.limits, within.seed, request.max_step);
    return refined(model.arm, end_target(model.arm, target), within, q) &&
           checked(model, target, request.wanted, q, joint, result);
}

ZK_Cause cause_of(Refusal refusal) {
    switch (refusal) {
        case Refusal::kBeyondLimits:
            return ZK_CAUSE_BEYOND_LIMITS;
        case Refusal::kLargerStep:
            return ZK_CAUSE_LARGER_STEP;
        default:
            return ZK_CAUSE_OUT_OF_REACH;
    }
}

// The nearest of all postures that is not singular.
bool replace_singular(const ZK_Model& model, const Frame& target, const Request& request, Joints& q) {
    for (const Joints& other : every_posture(model.arm, end_target(model.arm, target), request.wanted, request.max_step,
                                             kCircleStep, false)) {
        if (manipulability(model.arm, other) < request.min_manipulability) continue;
        q = other;
        return true;
    }
    return false;
}

}  // namespace

int target_status(const Pose& target, const ZK_InverseOptions& options, ZK_InverseResult& result) {
    const auto& [p, q, e] = target;
    const bool by_euler = options.orientation == ZK_BY_EULER;
    const float values[] = {
        p.x, p.y, p.z, by_euler ? e.rx : q.w, by_euler ? e.ry : q.x, by_euler ? e.rz : q.y, by_euler ? 0 : q.z};
    if (!are_finite(values, 7)) {
        result.cause = ZK_CAUSE_BAD_TARGET;
        return ZK_NO_SOLUTION;
    }
    const double squared = double{q.w} * q.w + double{q.x} * q.x + double{q.y} * q.y + double{q.z} * q.z;
    return by_euler || (squared >= 0.99 && squared <= 1.01) ? ZK_OK : ZK_BAD_ARGUMENT;
}

bool read(const ZK_Model& model, const float* seed, const ZK_InverseOptions& options, Request& request) {
    if (!is_seed(model, seed) || !read_weights(options.joint_weight, model.arm.joints, request.wanted.weight))
        return false;
    if (!is_bound(options.max_step) || !is_bound(options.min_manipulability) || !is_circle_step(options.circle_step))
        return false;
    if (options.orientation != ZK_BY_EULER && options.orientation != ZK_BY_QUATERNION) return false;
    request.wanted.seed = radians_of(model, seed);
    request.wanted.limits = model.arm.limits;
    request.max_step = options.max_step > 0 ? options.max_step * kRadiansPerDegree : kInfinity;
    request.min_manipulability = options.min_manipulability;
    return true;
}

Frame frame_of(const Pose& target, const ZK_InverseOptions& options) {
    return options.orientation == ZK_BY_EULER ? frame_of(target.position, target.euler)
                                              : frame_of(target.position, target.quaternion);
}

Frame end_target(const Arm& arm, const Frame& work_T_tool) { return arm.root_T_work * work_T_tool * arm.tool_T_end; }

bool checked(const ZK_Model& model, const Frame& target, const Wanted& wanted, const Joints& q, float* joint,
             ZK_InverseResult& result) {
    float written[7];
    write_degrees(model, q, written);
    const Joints at = radians_of(model, written);
    const auto [metres, radians] = miss_of(work_T_tool(model.arm, at), target);
    if (!(metres < ZK_INVERSE_METRES && radians < ZK_INVERSE_RADIANS)) return false;
    double largest = 0;
    for (int i = 0; i < model.arm.joints; ++i) largest = std::max(largest, std::fabs(at[i] - wanted.seed[i]));
    std::copy_n(written, model.arm.joints, joint);
    result = {ZK_CAUSE_NONE, 0, static_cast<float>(metres), static_cast<float>(radians),
              static_cast<float>(largest / kRadiansPerDegree)};
    return true;
}

bool take(const ZK_Model& model, const Frame& target, const Request& request, Answer& answer, float* joint,
          ZK_InverseResult& result) {
    result = {};
    if (answer.refusal != Refusal::kNone) {
        result.cause = cause_of(answer.refusal);
        if (answer.refusal == Refusal::kBeyondLimits) result.joint = answer.joint + 1;
        return false;
    }
    if (request.min_manipulability > 0 && manipulability(model.arm, answer.q) < request.min_manipulability &&
        !replace_singular(model, target, request, answer.q)) {
        result.cause = ZK_CAUSE_SINGULAR;
        return false;
    }
    if (checked_or_refined(model, target, request, answer.q, joint, result)) return true;
    result.cause = ZK_CAUSE_OUT_OF_REACH;
    return false;
}

int inverse(const ZK_Model& model, const Frame& target, const Request& request, float* joint,
            ZK_InverseResult& result) {
    Answer answer = solve(model.arm, end_target(model.arm, target), request.wanted, request.max_step);
    return take(model, target, request, answer, joint, result) ? ZK_OK : ZK_NO_SOLUTION;
}

}  // namespace zk::arm

using namespace zk::arm;

ZK_API int ZK_Model_Inverse(const ZK_Model* model, const Pose* target, const float* seed,
                            const ZK_InverseOptions* options, float* joint, ZK_InverseResult* result) {
    static constexpr ZK_InverseOptions kDefaults = {};
    ZK_InverseResult unwanted;
    ZK_InverseResult& outcome = result ? *result : unwanted;
    outcome = {};
    if (!options) options = &kDefaults;
    Request request;
    if (!model || !target || !seed || !joint || !read(*model, seed, *options, request)) return ZK_BAD_ARGUMENT;
    const int status = target_status(*target, *options, outcome);
    if (status != ZK_OK) return status;
    return inverse(*model, frame_of(*target, *options), request, joint, outcome);
}
