#include "motion/curve.h"

#include <cmath>
#include <numbers>

#include "motion/move.h"
#include "motion/spline.h"

namespace sim {
namespace {

// Of the two quaternions of a rotation, the one nearer to `before`.
Spline::Point quaternion(const KDL::Rotation& rotation, const Spline::Point& before) {
    Spline::Point q(4);
    rotation.GetQuaternion(q[0], q[1], q[2], q[3]);
    double cosine = 0;
    for (size_t i = 0; i < before.size(); ++i) cosine += q[i] * before[i];
    if (cosine < 0) {
        for (double& part : q) part = -part;
    }
    return q;
}

// A spline of quaternions leaves the unit sphere between its points.
KDL::Rotation rotation(const double* q) {
    const double norm = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    return KDL::Rotation::Quaternion(q[0] / norm, q[1] / norm, q[2] / norm, q[3] / norm);
}

}  // namespace

double distance_between(const KDL::Frame& from, const KDL::Frame& to) {
    constexpr double kMetresPerRadian = 0.2;
    const KDL::Twist difference = KDL::diff(from, to);
    return std::hypot(difference.vel.Norm(), kMetresPerRadian * difference.rot.Norm());
}

Curve line(const KDL::Frame& from, const KDL::Frame& to) {
    return [from, difference = KDL::diff(from, to)](double s) { return KDL::addDelta(from, difference, s); };
}

Curve circle(const KDL::Frame& from, const KDL::Frame& via, const KDL::Frame& to, int turns) {
    const KDL::Vector a = via.p - from.p, b = to.p - from.p, normal = a * b;
    constexpr double kStraight = 1e-4;  // the sine of an angle too small to define a circle
    if (!(normal.Norm() > kStraight * a.Norm() * b.Norm())) throw NoPath("the three points make no circle");
    const KDL::Vector to_centre = (KDL::dot(a, a) * b - KDL::dot(b, b) * a) * normal / (2 * KDL::dot(normal, normal));
    const KDL::Vector centre = from.p + to_centre, x = -to_centre, y = normal * x / normal.Norm();
    // Seen from the side where the arc turns left, `via` comes before `to`.
    const auto angle_of = [&](const KDL::Vector& point) {
        const double angle = std::atan2(KDL::dot(point - centre, y), KDL::dot(point - centre, x));
        return angle < 0 ? angle + 2 * std::numbers::pi : angle;
    };
    const double angle = angle_of(to.p) + 2 * std::numbers::pi * turns;
    const Spline::Point first = quaternion(from.M, {}), second = quaternion(via.M, first);
    const Spline turn({0, angle_of(via.p) / angle, 1}, {first, second, quaternion(to.M, second)});
    return [=](double s) {
        return KDL::Frame(rotation(turn.at(s).data()), centre + std::cos(s * angle) * x + std::sin(s * angle) * y);
    };
}

Curve spline(const std::vector<KDL::Frame>& poses) {
    std::vector<double> lengths;
    std::vector<Spline::Point> points;
    const KDL::Frame* before = nullptr;
    for (const KDL::Frame& pose : poses) {
        const double step = before ? distance_between(*before, pose) : 0;
        if (before && step < 1e-6) continue;
        lengths.push_back(before ? lengths.back() + step : 0);
        const Spline::Point q = quaternion(
            pose.M, before ? Spline::Point(points.back().begin() + 3, points.back().end()) : Spline::Point());
        points.push_back({pose.p.x(), pose.p.y(), pose.p.z(), q[0], q[1], q[2], q[3]});
        before = &pose;
    }
    if (points.size() <= 2) return line(poses.front(), poses.back());
    for (double& length : lengths) length /= std::max(lengths.back(), length);
    return [course = Spline(lengths, points)](double s) {
        const Spline::Point point = course.at(s);
        return KDL::Frame(rotation(&point[3]), KDL::Vector(point[0], point[1], point[2]));
    };
}

}  // namespace sim
