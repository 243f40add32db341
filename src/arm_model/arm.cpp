#include "arm_model/arm.h"

#include <algorithm>

#include "arm_model/pose.h"

namespace zk::arm {
namespace {

constexpr double kHalfTurn = M_PI;

Frame lifted(double z) { return {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, z}}}; }

Frame frame_at(const float* params) {
    return frame_of(Position{params[0], params[1], params[2]}, Euler{params[3], params[4], params[5]});
}

// The signs and shifts that the twists leave, and the links of the build (A2) to (A6). The offsets come on top.
struct Layout {
    Build build;
    Joints sign, shift;
    Vector link[7];
    Frame last;  // from the last turn to the flange
};

Layout layout_of(const RobotModel& model) {
    const auto& [d, a, alpha, offset, d_comp, a_comp, alpha_comp, offset_comp] = model.dh;
    const Frame flange6 = lifted(d[5]), flange7 = lifted(d[6]);
    const Joints as_it_is = {1, 1, 1, 1, 1, 1, 1};
    switch (model.robot_type) {
        case 0:
            return {Build::kSphericalWrist,
                    {1, -1, -1, 1, 1, 1},
                    {0, 0, kHalfTurn, kHalfTurn, 0, 0},
                    {{}, {a[2], 0, 0}, {0, 0, d[3]}},
                    flange6};
        case 3:
            return {Build::kSphericalWrist,
                    as_it_is,
                    {0, 0, 0, 0, kHalfTurn, kHalfTurn},
                    {{a[1], 0, 0}, {a[2], 0, 0}, {a[3], 0, d[3]}},
                    flange6};
        case 4:
            return {Build::kSphericalWrist, as_it_is, {}, {{a[1], 0, 0}, {a[2], d[1], 0}, {a[3], 0, d[3]}}, flange6};
        case 5:
        case 6:
        case 8:
            return {Build::kParallelAxes,
                    as_it_is,
                    {},
                    {{a[1], 0, 0}, {a[2], 0, 0}, {a[3], 0, 0}, {0, d[3], d[4]}},
                    {{{1, 0, 0, 0}, {0, 0, 1, d[5]}, {0, -1, 0, 0}}}};
        case 1:
            return {Build::kSphericalSeven, as_it_is, {}, {{}, {}, {0, 0, d[2]}, {}, {0, 0, d[4]}}, flange7};
        case 7:
            return {Build::kOffsetSeven,
                    {1, 1, 1, -1, 1, -1, 1},
                    {0, 0, 0, 0, 0, kHalfTurn, kHalfTurn},
                    {{}, {}, {a[3], 0, d[2]}, {a[4], 0, 0}, {0, 0, d[4]}, {-a[6], 0, 0}},
                    flange7};
        default:
            return {};
    }
}

// The elbow's triangle (A6): the lengths of its sides and the angle that the offsets add to it.
void prepare_elbow(Arm& arm) {
    const auto& link = arm.link;
    double lean_s = 0, lean_c = 1;
    switch (arm.build) {
        case Build::kSphericalWrist:
            arm.upper = link[1][0];
            arm.fore = std::hypot(link[2][0], link[2][2]);
            lean_s = -link[2][2];
            lean_c = link[2][0];
            break;
        case Build::kParallelAxes:
            arm.upper = link[1][0];
            arm.fore = link[2][0];
            break;
        default:
            arm.upper = std::hypot(link[2][0], link[2][2]);
            arm.fore = std::hypot(link[3][0], link[4][2]);
            lean_s = link[3][0] * link[2][2] - link[4][2] * link[2][0];
            lean_c = link[3][0] * link[2][0] + link[4][2] * link[2][2];
    }
    arm.lean = std::atan2(lean_s, lean_c);
    arm.unlean = turn_of(-arm.lean);
}

}  // namespace

Arm prepared(const RobotModel& model) {
    Arm arm{};
    if (model.dof == 0) return arm;
    const Layout layout = layout_of(model);
    arm.build = layout.build;
    if (arm.build == Build::kNone) return arm;
    arm.joints = model.dof;
    arm.sign = layout.sign;
    std::copy_n(layout.link, 7, arm.link);
    for (int i = 0; i < arm.joints; ++i) {
        const bool has_offset = arm.build != Build::kSphericalSeven;
        arm.shift[i] = layout.shift[i] + (has_offset ? layout.sign[i] * model.dh.offset[i] : 0);
        arm.limits.lo[i] = model.joint_config[i].pos_min;
        arm.limits.hi[i] = model.joint_config[i].pos_max;
    }
    prepare_elbow(arm);
    const float mounting[6] = {0, 0, 0, model.install_angle[0], model.install_angle[1], model.install_angle[2]};
    arm.work_T_root = inverse(frame_at(model.work_cs)) * frame_at(mounting) * lifted(model.dh.d[0]);
    arm.root_T_work = inverse(arm.work_T_root);
    arm.end_T_tool = layout.last * frame_at(model.tool_cs);
    arm.tool_T_end = inverse(arm.end_T_tool);
    return arm;
}

}  // namespace zk::arm
