// Models of one's own: their life, what they describe, and forward kinematics.
#include "zk/arm_model.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "algorithm/units.h"
#include "arm_model/chain.h"
#include "arm_model/pose.h"
#include "arm_model/zk_model.h"
#include "model/robot_model.h"
#include "zk/status.h"

namespace zk::arm {
namespace {

constexpr const char* kNames[] = {
    "65", "75", "", "63", "63, later", "parallel-axis 65", "parallel-axis 62", "72", "parallel-axis 63"};
constexpr float kLargestLimit = 3600;

// Limits as the record has them, rounded to degrees once.
void take_limits(ZK_Model& model) {
    for (int i = 0; i < 7; ++i) {
        model.lowest[i] = degrees(model.record.joint_config[i].pos_min);
        model.highest[i] = degrees(model.record.joint_config[i].pos_max);
    }
}

ZK_Model* on_heap(const ZK_Model& model) {
    return model.arm.build == Build::kNone ? nullptr : new (std::nothrow) ZK_Model(model);
}

using Change = void (*)(RobotModel&, const float*);

int set_frame(ZK_Model* model, const Pose* pose, Change change) {
    if (!model || !pose) return ZK_BAD_ARGUMENT;
    const auto& [p, q, e] = *pose;
    const float params[6] = {p.x, p.y, p.z, e.rx, e.ry, e.rz};
    if (!are_finite(params, 6)) return ZK_BAD_ARGUMENT;
    change(model->record, params);
    prepare(*model);
    return ZK_OK;
}

int get_frame(const float* params, Pose* pose) {
    const Position p = {params[0], params[1], params[2]};
    const Euler e = {params[3], params[4], params[5]};
    *pose = {p, quat_of(frame_of(p, e)), e};
    return ZK_OK;
}

bool are_limits(const float* min, const float* max, int count) {
    for (int i = 0; i < count; ++i) {
        if (!(min[i] >= -kLargestLimit && min[i] <= max[i] && max[i] <= kLargestLimit)) return false;
    }
    return true;
}

}  // namespace

void prepare(ZK_Model& model) {
    model.arm = prepared(model.record);
    for (int i = 0; i < model.arm.joints; ++i) {
        model.arm.limits.lo[i] = model.lowest[i] * kRadiansPerDegree;
        model.arm.limits.hi[i] = model.highest[i] * kRadiansPerDegree;
    }
}

ZK_Model current_model() {
    ZK_Model model = {robot, {}, {}, {}};
    take_limits(model);
    prepare(model);
    return model;
}

bool are_finite(const float* values, int count) {
    return std::all_of(values, values + count, [](float value) { return std::isfinite(value); });
}

Joints radians_of(const ZK_Model& model, const float* degrees) {
    Joints q{};
    for (int i = 0; i < model.arm.joints; ++i) q[i] = degrees[i] * kRadiansPerDegree;
    return q;
}

void write_degrees(const ZK_Model& model, const Joints& q, float* degrees) {
    for (int i = 0; i < model.arm.joints; ++i) {
        const float angle = static_cast<float>(q[i] * (1 / kRadiansPerDegree));
        degrees[i] = std::max(model.lowest[i], std::min(model.highest[i], angle));
    }
}

double manipulability(const Arm& arm, const Joints& q) {
    const Jacobian J = tool_jacobian(arm, q);
    // det(J J') by Cholesky's method: the product of the squares of its diagonal.
    double L[6][6], product = 1;
    for (int i = 0; i < 6; ++i) {
        for (int j = 0; j <= i; ++j) {
            double sum = 0;
            for (int k = 0; k < 7; ++k) sum += J[i][k] * J[j][k];
            for (int k = 0; k < j; ++k) sum -= L[i][k] * L[j][k];
            if (i != j) {
                L[i][j] = sum / L[j][j];
                continue;
            }
            if (!(sum > 0)) return sum <= 0 ? 0 : sum;  // NaN passes
            L[i][i] = std::sqrt(sum);
            product *= L[i][i];
        }
    }
    return product;
}

}  // namespace zk::arm

using namespace zk;
using namespace zk::arm;

// ------------------------------------------------------------------------------------------------- Life of a model --

ZK_API ZK_Model* ZK_Model_New(int model, int sensor) {
    ZK_Model made{};
    if (!select_arm(made.record, model, sensor)) return nullptr;
    take_limits(made);
    prepare(made);
    return on_heap(made);
}

ZK_API ZK_Model* ZK_Model_Copy_Current(void) { return on_heap(current_model()); }
ZK_API ZK_Model* ZK_Model_Clone(const ZK_Model* model) { return model ? on_heap(*model) : nullptr; }
ZK_API void ZK_Model_Free(ZK_Model* model) { delete model; }

// ------------------------------------------------------------------------------------------ What a model describes --

ZK_API int ZK_Model_Joint_Count(const ZK_Model* model) { return model ? model->arm.joints : 0; }
ZK_API const char* ZK_Model_Name(const ZK_Model* model) { return model ? kNames[model->record.robot_type] : ""; }

ZK_API int ZK_Model_Set_Tool(ZK_Model* model, const Pose* flange_T_tool) {
    return set_frame(model, flange_T_tool, set_tool);
}
ZK_API int ZK_Model_Get_Tool(const ZK_Model* model, Pose* flange_T_tool) {
    if (!model || !flange_T_tool) return ZK_BAD_ARGUMENT;
    return get_frame(model->record.tool_cs, flange_T_tool);
}
ZK_API int ZK_Model_Set_Work_Frame(ZK_Model* model, const Pose* world_T_work) {
    return set_frame(model, world_T_work, set_work_frame);
}
ZK_API int ZK_Model_Get_Work_Frame(const ZK_Model* model, Pose* world_T_work) {
    if (!model || !world_T_work) return ZK_BAD_ARGUMENT;
    return get_frame(model->record.work_cs, world_T_work);
}

ZK_API int ZK_Model_Set_Mounting(ZK_Model* model, float x, float y, float z) {
    const float angles[3] = {radians(x), radians(y), radians(z)};
    if (!model || !are_finite(angles, 3)) return ZK_BAD_ARGUMENT;
    set_mounting(model->record, angles);
    prepare(*model);
    return ZK_OK;
}
ZK_API int ZK_Model_Get_Mounting(const ZK_Model* model, float* x, float* y, float* z) {
    if (!model || !x || !y || !z) return ZK_BAD_ARGUMENT;
    const auto& angles = model->record.install_angle;
    *x = degrees(angles[0]);
    *y = degrees(angles[1]);
    *z = degrees(angles[2]);
    return ZK_OK;
}

ZK_API int ZK_Model_Set_Joint_Limits(ZK_Model* model, const float* min, const float* max) {
    if (!model || !min || !max || !are_limits(min, max, model->arm.joints)) return ZK_BAD_ARGUMENT;
    std::copy_n(min, model->arm.joints, model->lowest.begin());
    std::copy_n(max, model->arm.joints, model->highest.begin());
    prepare(*model);
    return ZK_OK;
}
ZK_API int ZK_Model_Get_Joint_Limits(const ZK_Model* model, float* min, float* max) {
    if (!model || !min || !max) return ZK_BAD_ARGUMENT;
    std::copy_n(model->lowest.begin(), model->arm.joints, min);
    std::copy_n(model->highest.begin(), model->arm.joints, max);
    return ZK_OK;
}

ZK_API int ZK_Model_Get_Speed_Limits(const ZK_Model* model, float* speed, float* acceleration) {
    if (!model || !speed || !acceleration) return ZK_BAD_ARGUMENT;
    for (int i = 0; i < model->arm.joints; ++i) {
        speed[i] = degrees(model->record.joint_config[i].vel_max);
        acceleration[i] = degrees(model->record.joint_config[i].acc_max);
    }
    return ZK_OK;
}

// --------------------------------------------------------------------------------------------------------- Forward --

ZK_API int ZK_Model_Forward(const ZK_Model* model, const float* joint, Pose* pose) {
    if (!model || !joint || !pose || !are_finite(joint, model->arm.joints)) return ZK_BAD_ARGUMENT;
    *pose = pose_of(work_T_tool(model->arm, radians_of(*model, joint)));
    return ZK_OK;
}

ZK_API int ZK_Model_Jacobian(const ZK_Model* model, const float* joint, ZK_Axes axes, double* jacobian) {
    if (!model || !joint || !jacobian || !are_finite(joint, model->arm.joints)) return ZK_BAD_ARGUMENT;
    if (axes != ZK_BASE_AXES && axes != ZK_TOOL_AXES) return ZK_BAD_ARGUMENT;
    const Arm& arm = model->arm;
    const zk::arm::Joints q = radians_of(*model, joint);
    const zk::arm::Jacobian J = tool_jacobian(arm, q);
    Rotation to_axes = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    if (axes == ZK_TOOL_AXES) to_axes = transposed(rotation_of<double>(root_T_end(arm, q) * arm.end_T_tool));
    for (int i = 0; i < arm.joints; ++i) {
        const Vector velocity = product(to_axes, Vector{J[0][i], J[1][i], J[2][i]});
        const Vector turn = product(to_axes, Vector{J[3][i], J[4][i], J[5][i]});
        for (int k = 0; k < 3; ++k) {
            jacobian[k * arm.joints + i] = velocity[k];
            jacobian[(k + 3) * arm.joints + i] = turn[k];
        }
    }
    return ZK_OK;
}

ZK_API int ZK_Model_Manipulability(const ZK_Model* model, const float* joint, double* value) {
    if (!model || !joint || !value || !are_finite(joint, model->arm.joints)) return ZK_BAD_ARGUMENT;
    *value = manipulability(model->arm, radians_of(*model, joint));
    return ZK_OK;
}

ZK_API int ZK_Model_Limit_Distance(const ZK_Model* model, const float* joint, float* distance, int* which_joint) {
    if (!model || !joint || !distance || !are_finite(joint, model->arm.joints)) return ZK_BAD_ARGUMENT;
    int nearest = 0;
    const auto room = [&](int i) { return std::min(joint[i] - model->lowest[i], model->highest[i] - joint[i]); };
    for (int i = 1; i < model->arm.joints; ++i) {
        if (room(i) < room(nearest)) nearest = i;
    }
    *distance = room(nearest);
    if (which_joint) *which_joint = nearest + 1;
    return ZK_OK;
}
