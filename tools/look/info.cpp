#include <array>

#include "look/look.h"
#include "report.h"

namespace tool {

void add_info(CLI::App& zk) {
    add_looking_at_arm(zk, "info", "which arm this is: model, versions, limits, frames", [](const zk::Arm& arm) {
        const ZK_ConnectionRecord connection = arm.connection().value();
        const ArmSoftwareInfo software = arm.software().value();
        const zk::Model model = arm.model().value();
        const zk::JointLimits limits = model.joint_limits().value();
        std::array<float, zk::Joints::kMost> speed{}, acceleration{};
        zk::call<ZK_Model_Get_Speed_Limits>(model.get(), speed, acceleration).value();
        const auto frame = [](const zk::Frame& of) { return Json{{"name", of.name}, {"pose", json_of(of.pose)}}; };
        return Json{{"model", software.product_version},
                    {"joints", arm.joint_count()},
                    {"address", connection.address},
                    {"port", connection.port},
                    {"controller_version", software.ctrl_version},
                    {"planner_version", software.plan_version},
                    {"algorithm_version", software.algorithm_version},
                    {"joint_min_deg", json_of(limits.min)},
                    {"joint_max_deg", json_of(limits.max)},
                    {"joint_speed_deg_s", json_of(zk::Joints::from_c(speed.data(), arm.joint_count()))},
                    {"joint_acceleration_deg_s2", json_of(zk::Joints::from_c(acceleration.data(), arm.joint_count()))},
                    {"tool", frame(arm.tool_frames().current().value())},
                    {"work_frame", frame(arm.work_frames().current().value())}};
    });
}

}  // namespace tool
