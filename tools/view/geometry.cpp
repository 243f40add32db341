#include "view/geometry.h"

#include <cmath>

namespace zk::view {
namespace {

// Where the axis of a joint is nearest to the tip, from the joint's column of the Jacobian: the velocity v of the tip
// is the axis crossed with the way from the axis, so that the way is v crossed with the axis.
Json axis_of(const Jacobian& jacobian, std::size_t joint, const Position& tip) {
    const auto v = [&](std::size_t k) { return jacobian[k % 3][joint]; };
    const auto a = [&](std::size_t k) { return jacobian[3 + k % 3][joint]; };
    const double at[] = {tip.x.metres(), tip.y.metres(), tip.z.metres()};
    Json axis = Json::array(), point = Json::array();
    for (std::size_t k = 0; k < 3; ++k) {
        axis.push_back(rounded(a(k), 9));
        point.push_back(rounded(at[k] - (v(k + 1) * a(k + 2) - v(k + 2) * a(k + 1)), 7));
    }
    return {{"axis", axis}, {"point", point}};
}

Result<Json> described(const Model& model) {
    Result<Model> bare = model.clone();
    if (!bare) return Unexpected(bare.error());
    for (const Result<void>& done : {bare->set_tool({}), bare->set_work_frame({}), bare->set_mounting({})}) {
        if (!done) return Unexpected(done.error());
    }
    const Joints zero = Joints::from_degrees(std::vector<int>(model.joint_count()));
    const Result<Pose> flange = bare->forward(zero);
    const Result<Jacobian> jacobian = bare->jacobian(zero);
    const Result<JointLimits> limits = model.joint_limits();
    if (!flange) return Unexpected(flange.error());
    if (!jacobian) return Unexpected(jacobian.error());
    if (!limits) return Unexpected(limits.error());
    Json joints = Json::array();
    for (std::size_t i = 0; i < model.joint_count(); ++i) {
        Json joint = axis_of(*jacobian, i, flange->position);
        joint["min"] = rounded(limits->min[i].degrees(), 2);
        joint["max"] = rounded(limits->max[i].degrees(), 2);
        joints.push_back(joint);
    }
    return Json{{"name", model.name()}, {"joints", joints}, {"flange", pose(*flange)}};
}

}  // namespace

double rounded(double value, int decimals) {
    const double scale = std::pow(10, decimals);
    return std::isfinite(value) ? std::round(value * scale) / scale : 0;
}

Json numbers(const float* values, std::size_t count, int decimals) {
    Json all = Json::array();
    for (std::size_t i = 0; i < count; ++i) all.push_back(rounded(static_cast<double>(values[i]), decimals));
    return all;
}

Json numbers(const Joints& joints) {
    Json all = Json::array();
    for (const Angle angle : joints) all.push_back(rounded(angle.degrees()));
    return all;
}

Json pose(const Pose& pose) {
    const Position& at = pose.position;
    Json turn = Json::array();
    for (const double part : pose.rotation.quaternion()) turn.push_back(rounded(part, 7));
    return {{"p", {rounded(at.x.metres(), 6), rounded(at.y.metres(), 6), rounded(at.z.metres(), 6)}}, {"q", turn}};
}

Json chain(const Model& model) {
    Result<Json> chain = described(model);
    return chain ? *std::move(chain) : Json::object();
}

}  // namespace zk::view
