#include "view/geometry.h"

#include <cmath>

#include "geometry/skeleton.h"

namespace zk::view {
namespace {

Json vector(const tool::Vector& v, int decimals) {
    return {rounded(v.x, decimals), rounded(v.y, decimals), rounded(v.z, decimals)};
}

Result<Json> described(const Model& model) {
    const Result<tool::Chain> chain = tool::chain_of(model);
    const Result<JointLimits> limits = model.joint_limits();
    if (!chain) return Unexpected(chain.error());
    if (!limits) return Unexpected(limits.error());
    const tool::Skeleton skeleton = tool::skeleton_of(*chain);
    Json joints = Json::array(), bones = Json::array();
    for (std::size_t i = 0; i < model.joint_count(); ++i) {
        joints.push_back({{"axis", vector(chain->joints[i].axis, 9)},
                          {"point", vector(chain->joints[i].point, 7)},
                          {"centre", vector(skeleton.joints[i].centre, 7)},
                          {"inLine", skeleton.joints[i].is_in_line},
                          {"min", rounded(limits->min[i].degrees(), 2)},
                          {"max", rounded(limits->max[i].degrees(), 2)}});
    }
    for (const tool::Bone& bone : skeleton.bones)
        bones.push_back({{"link", bone.link}, {"from", vector(bone.from, 7)}, {"to", vector(bone.to, 7)}});
    return Json{{"name", model.name()},
                {"joints", joints},
                {"flange", pose(chain->flange)},
                {"bones", bones},
                {"reach", skeleton.reach}};
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

Json description(const Model* model, std::size_t joint_count) {
    float x = 0, y = 0, z = 0;
    if (model) ZK_Model_Get_Mounting(model->get(), &x, &y, &z);
    const auto turn = [](float angle) { return degrees(angle); };
    const auto frame = [](const Result<Pose>& frame) { return pose(frame ? *frame : Pose()); };
    return {{"chain", model ? chain(*model) : Json::object()},
            {"jointCount", joint_count},
            {"mounting", pose(Pose({}, Rotation::from_euler(turn(x), turn(y), turn(z))))},
            {"tool", frame(model ? model->tool() : Pose())},
            {"work", frame(model ? model->work_frame() : Pose())}};
}

}  // namespace zk::view
