// The record behind ZK_Model, and what its functions share.
#pragma once

#include <array>

#include "arm_model/arm.h"
#include "arm_model/choice.h"
#include "arm_model/solve.h"
#include "zk/arm_model.h"

struct ZK_Model {
    RobotModel record;                     // frames and DH parameters; its limits are those below
    std::array<float, 7> lowest, highest;  // joint limits, degrees
    zk::arm::Arm arm;                      // the record prepared
};

namespace zk::arm {

// The model's record and limits, prepared.
void prepare(ZK_Model& model);

// The model that describes what the process-wide one does now; its build is kNone without geometry.
ZK_Model current_model();

inline constexpr double kRadiansPerDegree = M_PI / 180;

bool are_finite(const float* values, int count);

// Joints of the interface and of the solvers. The way back keeps the limits in single precision.
Joints radians_of(const ZK_Model& model, const float* degrees);
void write_degrees(const ZK_Model& model, const Joints& q, float* degrees);

// A seed may stand a whole turn beyond the limits, degrees.
inline float lowest_seed(const ZK_Model& model, int i) { return model.lowest[i] - 360; }
inline float highest_seed(const ZK_Model& model, int i) { return model.highest[i] + 360; }

// A request of the inverse kinematics that is found to be in order.
struct Request {
    Wanted wanted;
    double max_step;  // radians, infinite for no bound
    double min_manipulability;
};

// False for a seed or options that are not in order.
bool read(const ZK_Model& model, const float* seed, const ZK_InverseOptions& options, Request& request);

// ZK_OK, ZK_BAD_ARGUMENT for a quaternion that is not unit, ZK_NO_SOLUTION and its cause for a target that is not
// finite. Looks at what the options use.
int target_status(const Pose& target, const ZK_InverseOptions& options, ZK_InverseResult& result);

// work_T_tool that the target asks for.
Frame frame_of(const Pose& target, const ZK_InverseOptions& options);
Frame end_target(const Arm& arm, const Frame& work_T_tool);

double manipulability(const Arm& arm, const Joints& q);

// Writes the degrees of q and what they are worth. False when they miss the target by too much.
bool checked(const ZK_Model& model, const Frame& target, const Wanted& wanted, const Joints& q, float* joint,
             ZK_InverseResult& result);

// Replaces an answer that does not hold what the request asks for, and writes it; else the cause. True when it was
// written.
bool take(const ZK_Model& model, const Frame& target, const Request& request, Answer& answer, float* joint,
          ZK_InverseResult& result);

// ZK_Model_Inverse, its arguments in order.
int inverse(const ZK_Model& model, const Frame& target, const Request& request, float* joint, ZK_InverseResult& result);

}  // namespace zk::arm
