#include "recording/arm_description.h"

#include <sstream>

namespace tool {
namespace {

// Metres, and a quaternion whose scalar is first.
std::string text_of(const zk::Pose& pose) {
    const zk::Position& at = pose.position;
    std::ostringstream text;
    text.precision(9);
    text << at.x.metres() << ' ' << at.y.metres() << ' ' << at.z.metres();
    for (const double part : pose.rotation.quaternion()) text << ' ' << part;
    return text.str();
}

// No pose where there is none in the text.
std::optional<zk::Pose> pose_of(const ArmDescription& description, const std::string& name) {
    const auto found = description.find(name);
    if (found == description.end()) return std::nullopt;
    std::istringstream text(found->second);
    std::array<double, 7> n{};
    for (double& number : n) text >> number;
    if (!text) return std::nullopt;
    return zk::Pose({zk::metres(n[0]), zk::metres(n[1]), zk::metres(n[2])},
                    zk::Rotation::from_quaternion(n[3], n[4], n[5], n[6]));
}

}  // namespace

ArmDescription describe(const zk::Arm& arm) {
    const ArmSoftwareInfo software = arm.software().value();
    ArmDescription description{{"model", software.product_version},
                               {"joints", std::to_string(arm.joint_count())},
                               {"controller_version", software.ctrl_version}};
    const zk::Result<zk::Model> model = arm.model();
    if (!model) return description;
    float x = 0, y = 0, z = 0;
    ZK_Model_Get_Mounting(model->get(), &x, &y, &z);
    const auto turn = [](float angle) { return zk::degrees(angle); };
    description["mounting"] = text_of({{}, zk::Rotation::from_euler(turn(x), turn(y), turn(z))});
    description["tool"] = text_of(model->tool().value());
    description["work_frame"] = text_of(model->work_frame().value());
    return description;
}

std::optional<zk::Model> model_of(const ArmDescription& description) {
    const auto name = description.find("model");
    if (name == description.end()) return std::nullopt;
    zk::Result<zk::Model> model = zk::Model::named(name->second.c_str());
    if (!model) return std::nullopt;
    if (const auto tool = pose_of(description, "tool")) model->set_tool(*tool).value();
    if (const auto work = pose_of(description, "work_frame")) model->set_work_frame(*work).value();
    if (const auto mounting = pose_of(description, "mounting")) model->set_mounting(mounting->rotation.euler()).value();
    return std::move(*model);
}

}  // namespace tool
