// Inverse kinematics that is checked: the solver of zk/arm_model.h on the process-wide model.
#include "zk/checked_inverse.h"

#include <array>
#include <cstdint>
#include <cstring>

#include "arm_model/zk_model.h"
#include "zk/algorithm.h"
#include "zk/model.h"
#include "zk/status.h"

namespace zk::checked {
namespace {

// What of the process-wide model decides an answer.
struct Described {
    std::int32_t number = robot.robot_type;
    std::int16_t dof = robot.dof;
    std::array<float, 64> dh;  // DhParams
    std::array<float, 8> min, max;
    std::array<float, 6> tool, work;
    std::array<float, 3> mounting;

    Described() {
        static_assert(sizeof dh == sizeof robot.dh);
        std::memcpy(dh.data(), &robot.dh, sizeof robot.dh);
        libalgo_get_jointlim_min(min.data());
        libalgo_get_jointlim_max(max.data());
        libalgo_get_tool_cs_params(tool.data());
        libalgo_get_work_cs_params(work.data());
        libalgo_get_robot_install_angle(mounting.data());
    }
    bool operator==(const Described&) const = default;
};

// The process-wide model, prepared anew when it has changed since this thread's last call.
const ZK_Model& current() {
    thread_local Described described;
    thread_local ZK_Model model = arm::current_model();
    const Described now;
    if (!(now == described)) {
        model = arm::current_model();
        described = now;
    }
    return model;
}

}  // namespace
}  // namespace zk::checked

ZK_API int ZK_Inverse_Kinematics_Checked(const float* seed, const Pose* target, float* joint, uint8_t flag) {
    if (!seed || !target || !joint || zk_algo_judgment_overpos(seed) != 0) return ZK_BAD_ARGUMENT;
    const ZK_Model& model = zk::checked::current();
    if (model.arm.joints == 0) return ZK_NO_SOLUTION;
    ZK_InverseOptions options{};
    options.orientation = flag == 1 ? ZK_BY_EULER : ZK_BY_QUATERNION;
    return ZK_Model_Inverse(&model, target, seed, &options, joint, nullptr);
}
