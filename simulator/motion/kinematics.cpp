#include "motion/kinematics.h"

#include <cmath>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolverpos_lma.hpp>

namespace sim {
namespace {

// Metres and radians have equal weights. The solver iterates to a hundredth of the wire's resolution; if it stalls
// earlier, an error below the second number is accepted.
const Eigen::Matrix<double, 6, 1> kWeights = Eigen::Matrix<double, 6, 1>::Ones();
constexpr double kWanted = 1e-8;
constexpr double kAccepted = 1e-5;
constexpr int kMaxIterations = 100;

KDL::JntArray radians(const JointVector& degrees) {
    KDL::JntArray joints(static_cast<unsigned>(degrees.size()));
    for (size_t i = 0; i < degrees.size(); ++i) joints(i) = degrees[i] * kRadians;
    return joints;
}

// Adds the whole turns that bring the angle nearest to the seed.
double nearest_turn(double joint, double seed) { return joint - 360 * std::round((joint - seed) / 360); }

// Equal within the wire's resolution.
bool within(const JointLimits& limits, double joint) {
    return joint * 1000 >= limits.min_pos - 0.5 && joint * 1000 <= limits.max_pos + 0.5;
}

}  // namespace

struct Kinematics::Solvers {
    explicit Solvers(const RobotModel& model)
        : chain(*model.chain),
          elbow(model.joint_count() == 7 ? 3 : 2),
          forward(chain),
          inverse(chain, kWeights, kWanted, kMaxIterations) {}

    std::optional<JointVector> solve_from(const KDL::JntArray& start, const KDL::Frame& flange, const JointVector& seed,
                                          const std::vector<JointLimits>& limits);

    KDL::Chain chain;
    size_t elbow;
    KDL::ChainFkSolverPos_recursive forward;
    KDL::ChainIkSolverPos_LMA inverse;
};

std::optional<JointVector> Kinematics::Solvers::solve_from(const KDL::JntArray& start, const KDL::Frame& flange,
                                                           const JointVector& seed,
                                                           const std::vector<JointLimits>& limits) {
    KDL::JntArray found(start.rows());
    if (inverse.CartToJnt(start, flange, found) != 0 && !(inverse.lastDifference <= kAccepted)) return std::nullopt;
    JointVector joints(seed.size());
    for (size_t i = 0; i < joints.size(); ++i) {
        joints[i] = nearest_turn(found(i) / kRadians, seed[i]);
        // A joint with a range of more than one turn may reach the angle one turn away.
        if (!within(limits[i], joints[i])) joints[i] += joints[i] > 0 ? -360 : 360;
        if (!within(limits[i], joints[i])) return std::nullopt;
    }
    return joints;
}

Kinematics::Kinematics(const RobotModel& model) : solvers_(std::make_unique<Solvers>(model)) {}

Kinematics::~Kinematics() = default;

KDL::Frame Kinematics::flange_at(const JointVector& joints) const {
    KDL::Frame flange;
    solvers_->forward.JntToCart(radians(joints), flange);
    return flange;
}

std::vector<KDL::Frame> Kinematics::frames_at(const JointVector& joints) const {
    std::vector<KDL::Frame> frames{KDL::Frame::Identity()};
    size_t joint = 0;
    for (const KDL::Segment& segment : solvers_->chain.segments) {
        const bool turns = segment.getJoint().getType() != KDL::Joint::None;
        frames.push_back(frames.back() * segment.pose(turns ? joints[joint++] * kRadians : 0));
    }
    return frames;
}

// When the solver stalls, a start with a slightly turned elbow often succeeds.
std::optional<JointVector> Kinematics::joints_at(const KDL::Frame& flange, const JointVector& seed,
                                                 const std::vector<JointLimits>& limits) const {
    const KDL::JntArray start = radians(seed);
    for (const double aside : {0.0, 0.05, -0.05, 0.1, -0.1, 0.2, -0.2, 0.3, -0.3}) {
        KDL::JntArray moved(start);
        moved(solvers_->elbow) += aside;
        if (auto joints = solvers_->solve_from(moved, flange, seed, limits)) return joints;
    }
    return std::nullopt;
}

}  // namespace sim
