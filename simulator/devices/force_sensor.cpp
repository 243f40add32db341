#include "devices/force_sensor.h"

#include <Eigen/Dense>

namespace sim {
namespace {

// The zero offset of the electronics.
const KDL::Wrench kOffset(KDL::Vector(1.8, -2.3, 4.1), KDL::Vector(0.06, -0.04, 0.02));

constexpr double kMomentShare = 0.05;  // of the noise of a force
constexpr size_t kLast = 20;           // measurements that are averaged

Eigen::Vector3d eigen(const KDL::Vector& v) { return {v.x(), v.y(), v.z()}; }
KDL::Vector kdl(const Eigen::Vector3d& v) { return {v.x(), v.y(), v.z()}; }

// The direction of gravity in the axes of the flange.
Eigen::Vector3d gravity_in(const KDL::Rotation& flange) { return eigen(flange.Inverse(kGravity)); }

// v x for a vector v.
Eigen::Matrix3d cross(const Eigen::Vector3d& v) {
    Eigen::Matrix3d matrix;
    matrix << 0, -v.z(), v.y(), v.z(), 0, -v.x(), -v.y(), v.x(), 0;
    return matrix;
}

// The least-squares solution of A x = b; nothing if A is close to singular.
bool solve(const Eigen::MatrixXd& A, const Eigen::VectorXd& b, Eigen::VectorXd& x) {
    constexpr double kWorstCondition = 200;
    const Eigen::JacobiSVD<Eigen::MatrixXd> svd(A, Eigen::ComputeThinU | Eigen::ComputeThinV);
    const Eigen::VectorXd& values = svd.singularValues();
    if (!(values.minCoeff() * kWorstCondition > values.maxCoeff())) return false;
    x = svd.solve(b);
    return true;
}

}  // namespace

ForceSensor::ForceSensor(const Load& true_load, double noise, unsigned seed)
    : load(true_load), noise_(noise), random_(seed) {}

void ForceSensor::measure(const KDL::Frame& flange, const KDL::Wrench& contact) {
    flange_ = flange.M;
    measured_ = weight_of(load, flange_) + contact + kOffset + draw_noise();
    last_.push_back(measured_);
    if (last_.size() > kLast) last_.pop_front();
    sum_ += measured_;
    ++summed_;
}

KDL::Wrench ForceSensor::compensated() const { return measured_ - zero_ - weight_of(found_, flange_); }

void ForceSensor::clear() {
    KDL::Wrench sum = KDL::Wrench::Zero();
    for (const KDL::Wrench& wrench : last_) sum += wrench;
    zero_ = sum / static_cast<double>(last_.size()) - weight_of(found_, flange_);
}

void ForceSensor::begin_sample() {
    sum_ = KDL::Wrench::Zero();
    summed_ = 0;
}

ForceSensor::Sample ForceSensor::sample() const { return {flange_, sum_ / std::max(summed_, 1)}; }

// Forces: f = zero + m g(R), with zero and m unknown. Moments about the flange: t = zero' + (m c) x g(R), which is
// zero' - g(R) x (m c), with zero' and m c unknown.
bool ForceSensor::calibrate(const std::vector<Sample>& samples) {
    const auto rows = static_cast<Eigen::Index>(3 * samples.size());
    Eigen::MatrixXd A(rows, 4), B(rows, 6);
    Eigen::VectorXd f(rows), t(rows), x, y;
    for (Eigen::Index i = 0; i < rows; i += 3) {
        const Sample& sample = samples[static_cast<size_t>(i) / 3];
        const Eigen::Vector3d g = gravity_in(sample.flange);
        A.block<3, 3>(i, 0).setIdentity();
        A.block<3, 1>(i, 3) = g;
        f.segment<3>(i) = eigen(sample.mean.force);
        B.block<3, 3>(i, 0).setIdentity();
        B.block<3, 3>(i, 3) = -cross(g);
        t.segment<3>(i) = eigen(sample.mean.torque);
    }
    if (samples.size() < 4 || !solve(A, f, x) || !solve(B, t, y)) return false;
    constexpr double kNothing = 0.01;  // kilograms: a lighter load has no measurable centre
    zero_ = {kdl(x.head<3>()), kdl(y.head<3>())};
    found_.mass = x(3);
    found_.centre = found_.mass > kNothing ? kdl(y.tail<3>()) / found_.mass : KDL::Vector::Zero();
    return true;
}

bool ForceSensor::calibrate_z(const std::vector<Sample>& samples) {
    const auto rows = static_cast<Eigen::Index>(samples.size());
    Eigen::MatrixXd A(rows, 2);
    Eigen::VectorXd f(rows), x;
    for (Eigen::Index i = 0; i < rows; ++i) {
        const Sample& sample = samples[static_cast<size_t>(i)];
        A(i, 0) = 1;
        A(i, 1) = gravity_in(sample.flange).z();
        f(i) = sample.mean.force.z();
    }
    if (samples.size() < 2 || !solve(A, f, x)) return false;
    zero_ = KDL::Wrench::Zero();
    zero_.force.z(x(0));
    found_ = {x(1), KDL::Vector::Zero()};
    return true;
}

KDL::Wrench ForceSensor::draw_noise() {
    std::normal_distribution<double> normal(0, 1);
    KDL::Wrench noise;
    for (int i = 0; i < 3; ++i) {
        noise.force(i) = noise_ * normal(random_);
        noise.torque(i) = kMomentShare * noise_ * normal(random_);
    }
    return noise;
}

}  // namespace sim
