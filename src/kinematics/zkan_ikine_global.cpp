// The search of the seven-joint solvers. Range and strategy are one setting.
#include "zk/inverse_kinematics.h"

namespace {

constexpr float kNarrow = 0.013f, kWide = 3.14f;

}

float theta_v = kNarrow;
int global_is_movl = 1;

ZK_API void ikine_set_7dof_solver_search_strategy(int strategy) {
    global_is_movl = strategy;
    theta_v = strategy == 1 ? kNarrow : kWide;
}
ZK_API int ikine_get_7dof_solver_search_strategy(void) { return global_is_movl; }

ZK_API int ikine_set_solution_range_zk75(float range) {
    theta_v = range;
    return global_is_movl = range > 1.0f ? 0 : 1;
}
ZK_API float ikine_get_solution_range_zk75(void) { return theta_v; }
