// The inverse kinematics on a model that is handed in. zk/inverse_kinematics.h and zk/seven_axis.h describe each
// solver, its status and what it leaves in `joint`. Radians, metres; `seed` and `joint` may be one array.
#pragma once

#include <cstdint>

#include "kinematics/small_matrix.h"
#include "zk/model.h"
#include "zk/transform_types.h"

namespace zk {

// How the solvers of seven joints search.
struct Search {
    float range;
    bool is_wide() const { return range > 1.0f; }
};

int solve_zk6(const RobotModel& model, const float* seed, float* joint, const Matrix& world_T_tool);
int solve_zkl63_2(const RobotModel& model, const float* seed, float* joint, const Matrix& world_T_tool);
int solve_zkl63_3(const RobotModel& model, const float* seed, float* joint, const Matrix& world_T_tool);
int solve_orb6(const RobotModel& model, const float* seed, float* joint, const Matrix& world_T_tool);

// The model's offsets stay added to the seed of solve_zk75.
int solve_zk75(const RobotModel& model, const Search& search, float* seed, float* joint,
               const Transform<float>& base_T_flange);
int solve_tau7(const RobotModel& model, const Search& search, const float* seed, float* joint,
               const Transform<float>& base_T_flange);

// The solver of the model's arm, for the tool at a pose of the work frame.
int solve_model(const RobotModel& model, const Search& search, const float* seed, const Pose& pose, float* joint,
                std::uint8_t flag);

// world_T_tool at a pose of the work frame.
Matrix tool_target(const RobotModel& model, const Pose& pose, int flag);

// The number, from 1, of the first joint whose step is too fast for one control period; 0 for none.
int first_too_fast(const RobotModel& model, const float* from, const float* to, float scale);

}  // namespace zk
