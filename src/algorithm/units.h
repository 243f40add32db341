// Degrees above, radians below. Each conversion is one operation in double precision, rounded once. A round trip is not
// exact to the bit.
#pragma once

#include <array>

#include "zk/model.h"

namespace zk {

constexpr double kRadiansPerDegree = 0.017453292519943295;

constexpr float radians(float degrees) { return static_cast<float>(degrees * kRadiansPerDegree); }
constexpr float degrees(float radians) { return static_cast<float>(radians / kRadiansPerDegree); }
constexpr float degrees_of_solution(float radians) { return static_cast<float>(radians * 57.29577951308232); }

// Speeds and accelerations count in revolutions per minute, of 6 degrees per second each.
constexpr float radians_of_turns(float turns) { return radians(turns * 6.0f); }
constexpr float turns(float radians) { return static_cast<float>(radians / kRadiansPerDegree / 6.0); }

using Joints = std::array<float, 8>;

// The arm's joints converted, the rest zero.
template <float (*convert)(float)>
Joints converted(const RobotModel& model, const float* values) {
    Joints result{};
    for (int joint = 0; joint < model.dof; ++joint) result[joint] = convert(values[joint]);
    return result;
}

}  // namespace zk
