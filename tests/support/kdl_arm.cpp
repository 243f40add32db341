#include "support/kdl_arm.h"

#include <algorithm>
#include <cmath>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolverpos_lma.hpp>
#include <kdl/chainjnttojacsolver.hpp>
#include <kdl/utilities/svd_eigen_HH.hpp>
#include <ostream>
#include <stdexcept>

#include "zk/model.h"

namespace zk::test {
namespace {

using Vector = std::vector<double>;

double radians(double degrees) { return degrees * M_PI / 180; }

// J = U diag(s) V', by KDL, whose compiled code needs no template of Eigen here.
struct Svd {
    explicit Svd(const KDL::Jacobian& J)
        : u(6, J.columns()), v(J.columns(), J.columns()), s(J.columns()), scratch(J.columns()) {
        if (KDL::svd_eigen_HH(J.data, u, s, v, scratch) != 0) throw std::runtime_error("no singular values");
    }
    double sixth() const {
        Vector sorted(s.data(), s.data() + s.size());
        std::sort(sorted.rbegin(), sorted.rend());
        return sorted[5];
    }
    // The least joint steps for a motion of the flange.
    Vector pseudo_inverse_times(const KDL::Twist& motion) const {
        Vector step(static_cast<std::size_t>(s.size()));
        for (int k = 0; k < s.size(); ++k) {
            if (s(k) < 1e-9) continue;
            double along = 0;
            for (int i = 0; i < 6; ++i) along += u(i, k) * motion(i);
            for (int j = 0; j < s.size(); ++j) step[j] += v(j, k) * along / s(k);
        }
        return step;
    }

    Eigen::MatrixXd u, v;
    Eigen::VectorXd s, scratch;
};

}  // namespace

std::ostream& operator<<(std::ostream& out, const Arm& arm) {
    return out << "model " << arm.model << " sensor " << arm.sensor;
}

const std::vector<Arm>& arms() {
    static const std::vector<Arm> all = [] {
        // The flange is the last length; what depends on the sensor is filled in below.
        constexpr float F = -1;
        // clang-format off
        const Arm arms[] = {
            {0, 0, 6, false, {.2405f, 0, 0, .21f, 0, F}, {0, 0, .256f}, {0, 90, 0, 90, -90, 90}, {0, 90, 90},
             {178, 130, 135, 178, 128, 360}, {-178, -130, -135, -178, -128, -360}},
            {1, 0, 7, true, {.2405f, 0, .256f, 0, .21f, 0, F}, {}, {-90, 90, -90, 90, -90, 90, 0}, {},
             {178, 130, 178, 135, 178, 128, 360}, {-178, -130, -178, -135, -178, -128, -360}},
            {3, 0, 6, false, {.172f, 0, 0, .405f, 0, F}, {0, -.086f, .38f, .069f}, {0, -90, 0, 90, -90, -90}, {0, -90, 90, 0, 180, 180},
             {178, 178, 145, 178, 178, 360}, {-178, -178, -178, -178, -178, -360}},
            // Its wrist is wired with a last twist of +90 and no offsets, whatever its alpha row says.
            {4, 0, 6, false, {.172f, -.0084f, 0, .405f, 0, F}, {0, -.086f, .38f, .069f}, {0, -90, 0, 90, -90, 90}, {0, -90, 90},
             {178, 178, 145, 178, 178, 360}, {-178, -178, -178, -178, -178, -360}},
            {5, 0, 6, false, {.1625f, 0, 0, -.05888f, .11f, F}, {0, -.086f, .26f, .24f}, {0, -90, 0, 0, 90, -90}, {0, -90, 0, 90},
             {180, 180, 145, 140, 180, 180}, {-180, -180, -160, -140, -180, -180}},
            {6, 0, 6, false, {.136f, 0, 0, -.0585f, .071f, .0707f}, {0, -.07f, .148f, .136f}, {0, -90, 0, 0, 90, -90}, {0, -90, 0, 90},
             {180, 180, 145, 140, 180, 180}, {-180, -180, -160, -140, -180, -180}},
            {7, 0, 7, false, {.218f, 0, .28f, 0, .2525f, 0, .0905f}, {0, 0, 0, .04f, -.019f, 0, .067f},
             {0, -90, 90, 90, -90, 90, 90}, {0, 0, 0, 0, 0, 90}, {172, 105, 172, 55, 172, 120, 172}, {-172, -105, -172, -170, -172, -90, -172}},
            {8, 0, 6, false, {.1625f, 0, 0, -.0589f, .11f, F}, {0, -.086f, .41f, .38f}, {0, -90, 0, 0, 90, -90}, {0, -90, 0, 90},
             {180, 180, 145, 140, 180, 180}, {-180, -180, -160, -140, -180, -180}},
            // No lengths at all: the wrist of model 0 on its shoulder.
            {9, 0, 7, false, {}, {}, {0, 90, 0, 90, -90, 90}, {}, {360, 360, 360, 360, 360, 360, 360}, {-360, -360, -360, -360, -360, -360, -360}},
        };
        // clang-format on
        const auto flange = [](int model, int sensor) {
            constexpr float on_65[] = {.144f, .152f, .1725f}, on_63[] = {.115f, .123f, .1435f};
            constexpr float on_parallel[] = {.0795f, .0875f, .108f};
            return model <= 1 ? on_65[sensor] : model <= 4 ? on_63[sensor] : on_parallel[sensor];
        };
        std::vector<Arm> result;
        for (Arm arm : arms) {
            const bool takes_sensors = arm.d[arm.joints - 1] == F;
            for (arm.sensor = 0; arm.sensor < (takes_sensors ? 3 : 1); ++arm.sensor) {
                if (takes_sensors) arm.d[arm.joints - 1] = flange(arm.model, arm.sensor);
                if (arm.model == 4) arm.d[0] = arm.sensor == 0 ? .162f : .172f;
                result.push_back(arm);
            }
        }
        return result;
    }();
    return all;
}

const Arm& arm_of(int model, int sensor) {
    for (const Arm& arm : arms()) {
        if (arm.model == model && arm.sensor == sensor) return arm;
    }
    throw std::out_of_range("no such arm");
}

KDL::Chain kdl_chain(const Arm& arm) {
    const auto fixed = [](const KDL::Frame& f) { return KDL::Segment(KDL::Joint(KDL::Joint::None), f); };
    KDL::Chain chain;
    for (int i = 0; i < (arm.model == 9 ? 6 : arm.joints); ++i) {
        const KDL::Frame twist(KDL::Rotation::RotX(radians(arm.twist[i])));
        const KDL::Frame length(KDL::Vector(arm.a[i], 0, 0));
        const KDL::Frame rest(KDL::Rotation::RotZ(radians(arm.offset[i])), KDL::Vector(0, 0, arm.d[i]));
        if (!arm.standard) chain.addSegment(fixed(twist * length));
        chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::RotZ), rest));
        if (arm.standard) chain.addSegment(fixed(length * twist));
    }
    return chain;
}

Joints random_joints(const Arm& arm, std::mt19937& generator, double share) {
    Joints q{};
    for (int i = 0; i < arm.joints; ++i) {
        const double middle = (arm.max[i] + arm.min[i]) / 2.0, half = (arm.max[i] - arm.min[i]) / 2.0 * share;
        q[i] = static_cast<float>(
            radians(std::uniform_real_distribution<double>(middle - half, middle + half)(generator)));
    }
    return q;
}

RandomFrame::RandomFrame(std::mt19937& generator) {
    std::uniform_real_distribution<float> metres(-0.57f, 0.57f), angle(-3.1f, 3.1f);
    for (int i = 0; i < 6; ++i) params[i] = i < 3 ? metres(generator) : angle(generator);
}

KDL::Frame RandomFrame::frame() const {
    return {KDL::Rotation::RPY(params[3], params[4], params[5]), KDL::Vector(params[0], params[1], params[2])};
}

double largest_difference(const Joints& a, const Joints& b) {
    double largest = 0;
    for (int i = 0; i < 7; ++i) largest = std::max(largest, std::fabs(static_cast<double>(a[i]) - b[i]));
    return largest;
}

struct KdlArm::Solvers {
    explicit Solvers(const Arm& arm) : chain(kdl_chain(arm)) {}

    KDL::JntArray array(const Joints& q) const {
        KDL::JntArray angles(chain.getNrOfJoints());
        for (unsigned i = 0; i < angles.rows(); ++i) angles(i) = q[i];
        return angles;
    }
    KDL::Jacobian jacobian_at(const Joints& q) {
        KDL::Jacobian J(chain.getNrOfJoints());
        if (jacobian.JntToJac(array(q), J) < 0) throw std::runtime_error("no Jacobian");
        return J;
    }

    const KDL::Chain chain;
    KDL::ChainFkSolverPos_recursive forward{chain};
    KDL::ChainJntToJacSolver jacobian{chain};
    KDL::ChainIkSolverPos_LMA inverse{chain, Eigen::Matrix<double, 6, 1>::Ones(), 1e-5, 100};
};

KdlArm::KdlArm(const Arm& arm) : arm(arm), solvers_(std::make_unique<Solvers>(arm)) {}
KdlArm::~KdlArm() = default;

KDL::Frame KdlArm::forward(const Joints& q) const {
    KDL::Frame f;
    if (solvers_->forward.JntToCart(solvers_->array(q), f) < 0) throw std::runtime_error("no forward kinematics");
    return f;
}

std::vector<KDL::Twist> KdlArm::jacobian(const Joints& q) const {
    std::vector<KDL::Twist> columns;
    const KDL::Jacobian J = solvers_->jacobian_at(q);
    for (unsigned i = 0; i < J.columns(); ++i) columns.push_back(J.getColumn(i));
    return columns;
}

double KdlArm::smallest_singular_value(const Joints& q) const { return Svd(solvers_->jacobian_at(q)).sixth(); }

Joints KdlArm::pseudo_inverse_step(const Joints& q, const KDL::Frame& target) const {
    const Vector step = Svd(solvers_->jacobian_at(q)).pseudo_inverse_times(KDL::diff(forward(q), target));
    Joints moved = q;
    for (int i = 0; i < arm.joints; ++i) moved[i] = static_cast<float>(q[i] + step[i]);
    return moved;
}

Joints KdlArm::pull_to_mid_range(const Joints& q) const {
    const KDL::Jacobian J = solvers_->jacobian_at(q);
    Vector pull(arm.joints);
    KDL::Twist moves;
    for (int i = 0; i < arm.joints; ++i) {
        const double range = static_cast<double>(upper(i)) - lower(i);
        pull[i] = -(q[i] - (static_cast<double>(upper(i)) + lower(i)) / 2) / 70 / (range * range);
        moves += J.getColumn(i) * pull[i];
    }
    const Vector back = Svd(J).pseudo_inverse_times(moves);
    Joints moved{};
    for (int i = 0; i < arm.joints; ++i) moved[i] = static_cast<float>(pull[i] - back[i]);
    return moved;
}

bool KdlArm::solve(const KDL::Frame& target, const Joints& from, Joints& found) const {
    KDL::JntArray angles(solvers_->chain.getNrOfJoints());
    if (solvers_->inverse.CartToJnt(solvers_->array(from), target, angles) < 0) return false;
    for (unsigned i = 0; i < angles.rows(); ++i) found[i] = static_cast<float>(angles(i));
    return true;
}

double KdlArm::metres_off(const Joints& q, const KDL::Frame& target) const { return (forward(q).p - target.p).Norm(); }

double KdlArm::radians_off(const Joints& q, const KDL::Frame& target) const {
    return KDL::diff(forward(q).M, target.M).Norm();
}

bool KdlArm::within_limits(const Joints& q) const {
    for (int i = 0; i < arm.joints; ++i) {
        if (!(q[i] >= lower(i) && q[i] <= upper(i))) return false;
    }
    return true;
}

void KdlArm::set_limits(int joint, float min, float max) {
    robot.joint_config[joint].pos_min = min;
    robot.joint_config[joint].pos_max = max;
}

Joints KdlArm::seed_near(const Joints& q, double distance, std::mt19937& generator) const {
    constexpr float kInside = 1e-4f;  // conversions to degrees and back stay within the limits
    std::uniform_real_distribution<double> off(-distance, distance);
    Joints seed{};
    for (int i = 0; i < arm.joints; ++i) {
        seed[i] = std::clamp(static_cast<float>(q[i] + off(generator)), lower(i) + kInside, upper(i) - kInside);
    }
    return seed;
}

}  // namespace zk::test
