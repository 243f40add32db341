// Payload, link inertia and the values of the dynamics identification: stored for callers, unused by the library.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "zk/model.h"

ZK_API void libalgo_set_payload_params(const float* params) {
    std::memcpy(&robot.payload, params, sizeof robot.payload);
}
ZK_API void libalgo_get_payload_params(float* params) { std::memcpy(params, &robot.payload, sizeof robot.payload); }

ZK_API void libalgo_set_link_dynamics_params(const LinkDynamics* links) {
    std::copy_n(links, robot.dof, robot.dynamics_params.link);
}
ZK_API void libalgo_get_link_dynamics_params(LinkDynamics* links) {
    std::copy_n(robot.dynamics_params.link, robot.dof, links);
}
ZK_API void libalgo_set_link_dynamics_params_default(void) { libalgo_set_link_dynamics_params(dyn_param_default.link); }
ZK_API void libalgo_get_link_dynamics_params_default(LinkDynamics* links) {
    std::copy_n(dyn_param_default.link, robot.dof, links);
}

ZK_API void libalgo_get_dynamics_params(DynamicsParams* params) { *params = robot.dynamics_params; }

ZK_API void libalgo_set_dynamics_identification_params(const float* params) {
    std::copy_n(params, 35, robot.dynamics_params.identification_block);
    std::copy_n(params + 35, 7, robot.dynamics_params.identification_d);
    std::copy_n(params + 42, 7, robot.dynamics_params.identification_c);
}

ZK_API void libalgo_set_drag_regulation_factor(const float* factors) {
    float* factor_a = robot.dynamics_params.drag_factor_a;
    std::copy_n(factors, 7, factor_a);
    std::copy_n(factors + 7, 7, robot.dynamics_params.drag_factor_b);
    for (int joint = 0; joint < std::min<int>(robot.dof, 8); ++joint) {
        if (std::fabs(static_cast<double>(factor_a[joint])) < 0.001) factor_a[joint] = 1;
    }
}

ZK_API void libalgo_set_dynamics_model_type(int type) { robot.dynamics_model_type = type == 2 ? 2 : 1; }
ZK_API int libalgo_get_dynamics_model_type(void) { return robot.dynamics_model_type; }
