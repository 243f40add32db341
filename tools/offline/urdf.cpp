#include <array>
#include <cmath>
#include <iostream>
#include <memory>
#include <sstream>

#include "geometry/skeleton.h"
#include "offline/offline.h"
#include "report.h"

namespace tool {
namespace {

using Shapes = std::vector<std::string>;

std::string text_of(Vector v) {
    constexpr int kDecimals = 7;  // the flange is known in single precision
    std::ostringstream text;
    text.precision(10);
    text << rounded(v.x, kDecimals) << ' ' << rounded(v.y, kDecimals) << ' ' << rounded(v.z, kDecimals);
    return text.str();
}

std::string origin(Vector at, Vector turn = {}) {
    return "<origin xyz=\"" + text_of(at) + "\" rpy=\"" + text_of(turn) + "\"/>";
}

std::string origin(const zk::Pose& pose) {
    const zk::Position& p = pose.position;
    const zk::EulerAngles turn = pose.rotation.euler();
    return origin({p.x.metres(), p.y.metres(), p.z.metres()},
                  {turn.rx.radians(), turn.ry.radians(), turn.rz.radians()});
}

std::string sphere(Vector centre, double radius) {
    std::ostringstream text;
    text << origin(centre) << "<geometry><sphere radius=\"" << radius << "\"/></geometry>";
    return text.str();
}

std::string cylinder(Vector from, Vector to, double radius) {
    const Vector way = to - from;
    const Vector turn{0, std::atan2(std::hypot(way.x, way.y), way.z), std::atan2(way.y, way.x)};
    std::ostringstream text;
    text << origin((from + to) * 0.5, turn) << "<geometry><cylinder radius=\"" << radius << "\" length=\"" << norm(way)
         << "\"/></geometry>";
    return text.str();
}

// Capsules along the bones of a link, thinner towards the flange. That of the base has no round end in the ground.
Shapes shapes_of(const Skeleton& skeleton, std::size_t link, Vector at) {
    const double radius = rounded(
        skeleton.reach * (0.056 - 0.026 * static_cast<double>(link) / static_cast<double>(skeleton.joints.size())));
    Shapes shapes;
    if (link > 0) shapes.push_back(sphere({}, radius));
    for (const Bone& bone : skeleton.bones) {
        if (bone.link != link) continue;
        shapes.push_back(cylinder(bone.from - at, bone.to - at, radius));
        shapes.push_back(sphere(bone.to - at, radius));
    }
    return shapes;
}

void write_link(std::ostream& out, const std::string& name, const Shapes& shapes) {
    out << "  <link name=\"" << name << "\">\n";
    for (const char* use : {"visual", "collision"}) {
        for (const std::string& shape : shapes) out << "    <" << use << '>' << shape << "</" << use << ">\n";
    }
    out << "  </link>\n";
}

void write_joint(std::ostream& out, const std::string& name, const char* type, const std::string& parent,
                 const std::string& child, const std::string& rest) {
    out << "  <joint name=\"" << name << "\" type=\"" << type << "\">\n    <parent link=\"" << parent
        << "\"/>\n    <child link=\"" << child << "\"/>\n    " << rest << "\n  </joint>\n";
}

std::string limit(zk::Angle min, zk::Angle max, double degrees_per_second) {
    std::ostringstream text;
    text.precision(7);
    text << "<limit lower=\"" << rounded(min.radians(), 6) << "\" upper=\"" << rounded(max.radians(), 6)
         << "\" velocity=\"" << rounded(zk::degrees(degrees_per_second).radians(), 6) << "\" effort=\"0\"/>";
    return text.str();
}

// With all joints at 0 each link's frame is parallel to the base, on the axis of the link's joint.
void write_urdf(const zk::Model& model, std::ostream& out) {
    const Chain chain = chain_of(model).value();
    const Skeleton skeleton = skeleton_of(chain);
    const zk::JointLimits limits = model.joint_limits().value();
    std::array<float, zk::Joints::kMost> speed{}, acceleration{};
    zk::call<ZK_Model_Get_Speed_Limits>(model.get(), speed, acceleration).value();
    out << "<?xml version=\"1.0\"?>\n<!-- Metres, radians. The efforts and the inertias are not known: an effort of 0 "
           "stands for that. -->\n<robot name=\"arm_"
        << model.name() << "\">\n";
    write_link(out, "base_link", shapes_of(skeleton, 0, {}));
    std::string parent = "base_link";
    Vector at;
    for (std::size_t i = 0; i < chain.joints.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        const std::string place = origin(skeleton.joints[i].centre - at) + "<axis xyz=\"" +
                                  text_of(chain.joints[i].axis) + "\"/>" +
                                  limit(limits.min[i], limits.max[i], static_cast<double>(speed[i]));
        at = skeleton.joints[i].centre;
        write_link(out, "link_" + number, shapes_of(skeleton, i + 1, at));
        write_joint(out, "joint_" + number, "revolute", parent, "link_" + number, place);
        parent = "link_" + number;
    }
    zk::Pose flange = chain.flange;
    flange.position = flange.position - zk::Position{zk::metres(at.x), zk::metres(at.y), zk::metres(at.z)};
    const std::vector<std::pair<const char*, zk::Pose>> ends{{"flange", flange}, {"tool", model.tool().value()}};
    for (const auto& [name, pose] : ends) {
        write_link(out, name, {});
        write_joint(out, name + std::string("_joint"), "fixed", parent, name, origin(pose));
        parent = name;
    }
    out << "</robot>\n";
}

}  // namespace

void add_urdf(CLI::App& zk) {
    const auto model = std::make_shared<ModelOption>();
    CLI::App* command = zk.add_subcommand("urdf", "print a model as a robot description (URDF)");
    model->add_to(*command);
    command->callback([model] { write_urdf(model->load(), std::cout); });
}

}  // namespace tool
