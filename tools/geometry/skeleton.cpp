#include "geometry/skeleton.h"

#include <cmath>
#include <utility>

namespace tool {
namespace {

Vector vector_of(const zk::Position& p) { return {p.x.metres(), p.y.metres(), p.z.metres()}; }

// A joint's column of the Jacobian holds the velocity of the tip, the axis crossed with the way from the axis to the
// tip. That way is the velocity crossed with the axis.
JointAxis axis_of(const zk::Jacobian& jacobian, std::size_t joint, Vector tip) {
    const Vector velocity{jacobian[0][joint], jacobian[1][joint], jacobian[2][joint]};
    const Vector axis{jacobian[3][joint], jacobian[4][joint], jacobian[5][joint]};
    return {axis, tip - cross(velocity, axis)};
}

// The feet of the shortest way between two lines. Of parallel lines: the way that begins at `near` on the first.
std::pair<Vector, Vector> shortest(const JointAxis& a, const JointAxis& b, Vector near) {
    const Vector across = cross(a.axis, b.axis);
    const double square = dot(across, across);
    if (square < 1e-6) return {near, b.point + b.axis * dot(near - b.point, b.axis)};
    const Vector way = b.point - a.point;
    return {a.point + a.axis * (dot(cross(way, b.axis), across) / square),
            b.point + b.axis * (dot(cross(way, a.axis), across) / square)};
}

}  // namespace

double dot(Vector a, Vector b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vector cross(Vector a, Vector b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
double norm(Vector a) { return std::sqrt(dot(a, a)); }

zk::Result<Chain> chain_of(const zk::Model& model) {
    zk::Result<zk::Model> bare = model.clone();
    if (!bare) return zk::Unexpected(bare.error());
    for (const zk::Result<void>& done : {bare->set_tool({}), bare->set_work_frame({}), bare->set_mounting({})}) {
        if (!done) return zk::Unexpected(done.error());
    }
    const zk::Joints zero = zk::Joints::from_degrees(std::vector<int>(model.joint_count()));
    const zk::Result<zk::Pose> flange = bare->forward(zero);
    const zk::Result<zk::Jacobian> jacobian = bare->jacobian(zero);
    if (!flange) return zk::Unexpected(flange.error());
    if (!jacobian) return zk::Unexpected(jacobian.error());
    Chain chain{{}, *flange};
    for (std::size_t i = 0; i < model.joint_count(); ++i)
        chain.joints.push_back(axis_of(*jacobian, i, vector_of(flange->position)));
    return chain;
}

// From joint to joint the way goes along one axis and straight over to the next.
Skeleton skeleton_of(const Chain& chain) {
    Skeleton skeleton;
    Vector arrived;
    constexpr double kShortest = 1e-3;
    const auto add = [&skeleton](std::size_t link, Vector from, Vector to) {
        if (norm(to - from) < kShortest) return;
        skeleton.bones.push_back({link, from, to});
        skeleton.reach += norm(to - from);
    };
    for (std::size_t i = 0; i < chain.joints.size(); ++i) {
        const bool last = i + 1 == chain.joints.size();
        const Vector end = vector_of(chain.flange.position);
        const auto [leaves, next] =
            last ? std::pair{end, end} : shortest(chain.joints[i], chain.joints[i + 1], arrived);
        const Vector centre = arrived + (leaves - arrived) * (last ? 0.35 : 0.5);
        add(i, arrived, centre);
        add(i + 1, centre, leaves);
        add(i + 1, leaves, next);
        skeleton.joints.push_back({centre, norm(leaves - arrived) >= kShortest});
        arrived = next;
    }
    return skeleton;
}

}  // namespace tool
