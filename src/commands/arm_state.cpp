// State of the arm as a whole: its pose, the measurements of its joints, and the poses that the controller stores.
#include "zk/replies/arm_state.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <type_traits>

#include "commands/twin.h"
#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/algorithm.h"

using namespace zk;

namespace {

// Thousandths, at most one for each of the connection's joints; a longer array is a wrong type.
int measured_joints(ArmSocket s, const char* text, const char* key, float* out) {
    Reply reply(text);
    const Item array = reply.array(reply.root(), key);
    if (reply.require(array.size() <= joint_count(s), ZK_WRONG_TYPE)) scaled(array, array.size(), 1000.0f, out);
    return reply.status();
}

}  // namespace

ArmStateReply Arm_Current_State_Cmd[ZK_SLOTS];
ZK_API int Get_Current_Arm_State(ArmSocket s, float* joint, Pose* pose, uint16_t* arm_err, uint16_t* sys_err) {
    if (!sending_file() && any_null(joint, arm_err, sys_err)) return ZK_BAD_ARGUMENT;
    return guarded(Get_Current_Arm_State_Block, s, joint, pose, arm_err, sys_err);
}
ZK_API int Get_Current_Arm_State_Block(ArmSocket s, float* joint, Pose* pose, uint16_t* arm_err, uint16_t* sys_err) {
    return query({s, "get_current_arm_state"}, Arm_Current_State_Cmd, [&](const ArmStateReply& reply) {
        copy_joints(s, reply.joint, joint);
        pose->position = reply.pose.position;
        pose->euler = reply.pose.euler;
        *arm_err = reply.arm_err;
        *sys_err = reply.sys_err;
    });
}
ZK_API int Parser_Arm_State(ArmSocket s, const char* text, float* joint, Pose* pose, uint16_t* arm_err,
                            uint16_t* sys_err) {
    Reply reply(text);
    const Item state = reply.object(reply.root(), "arm_state");
    wire_pose(reply.array(state, "pose", 6), pose->position, pose->euler);
    scaled(reply.array(state, "joint", joint_count(s), ZK_WRONG_TYPE), joint_count(s), 1000.0f, joint);
    reply.take(state, "arm_err", *arm_err);
    reply.take(state, "sys_err", *sys_err);
    return reply.status();
}
ZK_TWIN(Parser_Arm_State);

// What the joints measure.
JointReply Get_Joint_Temperature_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Temperature(ArmSocket s, float* out) { return checked(Get_Joint_Temperature_Block, s, out); }
ZK_API int Get_Joint_Temperature_Block(ArmSocket s, float* out) {
    return query_joints(s, "get_current_joint_temperature", Get_Joint_Temperature_Cmd, out);
}
ZK_API int Parser_Joint_Temperature(ArmSocket s, const char* text, float* out) {
    return measured_joints(s, text, "joint_temperature", out);
}
ZK_TWIN(Parser_Joint_Temperature);

JointReply Get_Joint_Current_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Current(ArmSocket s, float* out) { return checked(Get_Joint_Current_Block, s, out); }
ZK_API int Get_Joint_Current_Block(ArmSocket s, float* out) {
    return query_joints(s, "get_current_joint_current", Get_Joint_Current_Cmd, out);
}
ZK_API int Parser_Joint_Current(ArmSocket s, const char* text, float* out) {
    return measured_joints(s, text, "joint_current", out);
}
ZK_TWIN(Parser_Joint_Current);

JointReply Get_Joint_Voltage_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Voltage(ArmSocket s, float* out) { return checked(Get_Joint_Voltage_Blcok, s, out); }
ZK_API int Get_Joint_Voltage_Blcok(ArmSocket s, float* out) {
    return query_joints(s, "get_current_joint_voltage", Get_Joint_Voltage_Cmd, out);
}
ZK_API int Parser_Joint_Voltage(ArmSocket s, const char* text, float* out) {
    return measured_joints(s, text, "joint_voltage", out);
}
ZK_TWIN(Parser_Joint_Voltage);

// As many angles as the reply holds, up to seven.
JointReply Get_Joint_Degree_Cmd[ZK_SLOTS];
ZK_API int Get_Joint_Degree(ArmSocket s, float* out) { return checked(Get_Joint_Degree_Block, s, out); }
ZK_API int Get_Joint_Degree_Block(ArmSocket s, float* out) {
    return query_joints(s, "get_joint_degree", Get_Joint_Degree_Cmd, out);
}
ZK_API int Paser_Get_Joint_Degree(const char* text, float* out) {
    Reply reply(text);
    const Item array = reply.array(reply.root(), "joint");
    scaled(array, std::min(array.size(), 7), 1000.0f, out);
    return reply.status();
}

ArmAllStateReply Get_Joint_All_State_Cmd[ZK_SLOTS];
ZK_API int Get_Arm_All_State(ArmSocket s, ArmAllState* state) { return checked(Get_Arm_All_State_Block, s, state); }
ZK_API int Get_Arm_All_State_Block(ArmSocket s, ArmAllState* state) {
    return query({s, "get_arm_all_state"}, Get_Joint_All_State_Cmd,
                 [&](const ArmAllStateReply& reply) { *state = reply.state; });
}
ZK_API int Parser_Arm_All_State(ArmSocket s, const char* text, ArmAllState* state) {
    Reply reply(text);
    const int joints = joint_count(s);
    const Item all = reply.find("all_state");
    reply.require(bool(all), ZK_BAD_REPLY);
    const auto array = [&](const char* key) { return reply.array(all, key, joints, ZK_WRONG_TYPE); };
    const auto words = [&](const char* key, auto* out) {
        const Item values = array(key);
        for (int i = 0; i < values.size(); ++i)
            out[i] = static_cast<std::remove_pointer_t<decltype(out)>>(values[i].integer());
    };
    scaled(array("temperature"), joints, 1000.0f, state->temperature);
    scaled(array("current"), joints, 1000.0f, state->current);
    scaled(array("voltage"), joints, 1000.0f, state->voltage);
    words("en_flag", state->en_state);
    words("err_flag", state->err_flag);
    reply.take(all, "sys_err", state->sys_err);
    return reply.status();
}
ZK_TWIN(Parser_Arm_All_State);

IntReply Get_Arm_Plan_Num_Cmd[ZK_SLOTS];
ZK_API int Get_Arm_Plan_Num(ArmSocket s, int32_t* number) { return checked(Get_Arm_Plan_Num_Block, s, number); }
ZK_API int Get_Arm_Plan_Num_Block(ArmSocket s, int32_t* number) {
    return query_value(s, "get_arm_plan_num", Get_Arm_Plan_Num_Cmd, number);
}
ZK_API int Parser_Get_Arm_Plan_Num(const char* text, int32_t* number) {
    return integer_value(text, "plan_num", number);
}
ZK_TWIN(Parser_Get_Arm_Plan_Num);

static Request init_pose(ArmSocket s, const float* joint) {
    return Request(s, "set_init_pose").joints("init_pose", joint);
}
AckReply Set_Arm_Init_Pose_Cmd[ZK_SLOTS];
ZK_API int Set_Arm_Init_Pose(ArmSocket s, const float* joint, bool block) {
    return checked(block ? Set_Arm_Init_Pose_Block : Set_Arm_Init_Pose_NonBlock, s, joint);
}
ZK_API int Set_Arm_Init_Pose_Block(ArmSocket s, const float* joint) {
    return set(init_pose(s, joint), Set_Arm_Init_Pose_Cmd);
}
ZK_API int Set_Arm_Init_Pose_NonBlock(ArmSocket s, const float* joint) { return post(init_pose(s, joint)); }
ZK_API int Parser_Set_Arm_Init_Pose(const char* text) { return acknowledgement(text, "init_pose"); }
ZK_TWIN(Parser_Set_Arm_Init_Pose);

JointReply Get_Arm_Init_Pose_Cmd[ZK_SLOTS];
ZK_API int Get_Arm_Init_Pose(ArmSocket s, float* joint) { return checked(Get_Arm_Init_Pose_Block, s, joint); }
ZK_API int Get_Arm_Init_Pose_Block(ArmSocket s, float* joint) {
    return query_joints(s, "get_init_pose", Get_Arm_Init_Pose_Cmd, joint);
}
ZK_API int Parser_Get_Arm_Init_Pose(ArmSocket s, const char* text, float* joint) {
    return joint_array(s, text, {.key = "init_pose", .wrong_size = ZK_WRONG_TYPE}, joint);
}
ZK_TWIN(Parser_Get_Arm_Init_Pose);

// Puts the mounting into the local model: at once in the non-blocking form, after an accepted reply in the blocking
// one.
static Request install_pose(ArmSocket s, float x, float y, float z) {
    return Request(s, "set_install_pose").numbers("pose", {x, y, z});
}
AckReply Set_Install_Pose_Cmd[ZK_SLOTS];
ZK_API int Set_Install_Pose(ArmSocket s, bool block, float x, float y, float z) {
    if (sending_file()) return ZK_SENDING_FILE;
    if (!block) Algo_Set_Angle(x, y, z);
    const int status = (block ? Set_Install_Pose_Block : Set_Install_Pose_NonBlock)(s, x, y, z);
    if (block && status == ZK_OK) Algo_Set_Angle(x, y, z);
    return status;
}
ZK_API int Set_Install_Pose_Block(ArmSocket s, float x, float y, float z) {
    return set(install_pose(s, x, y, z), Set_Install_Pose_Cmd);
}
ZK_API int Set_Install_Pose_NonBlock(ArmSocket s, float x, float y, float z) { return post(install_pose(s, x, y, z)); }

// The model keeps the angles in single-precision radians, from which not all of them return to the last bit.
static constexpr double kMountingDegrees = 0.001;

InstallPoseReply Get_Install_Pose_Cmd[ZK_SLOTS];
ZK_API int Get_Install_Pose(ArmSocket s, float* x, float* y, float* z) {
    if (sending_file()) return ZK_SENDING_FILE;
    const int status = Get_Install_Pose_Block(s, x, y, z);
    std::fflush(stdout);
    if (status == ZK_OK) Algo_Set_Angle(*x, *y, *z);
    float held[3];
    Algo_Get_Angle(&held[0], &held[1], &held[2]);
    const auto agree = [](float angle, float read_back) {
        return std::fabs(double{angle} - double{read_back}) <= kMountingDegrees;
    };
    return agree(*x, held[0]) && agree(*y, held[1]) && agree(*z, held[2]) ? status : -1;
}
ZK_API int Get_Install_Pose_Block(ArmSocket s, float* x, float* y, float* z) {
    return query({s, "get_install_pose"}, Get_Install_Pose_Cmd, [&](const InstallPoseReply& reply) {
        *x = reply.x;
        *y = reply.y;
        *z = reply.z;
    });
}
ZK_API int Parser_Get_Install_Pose(const char* text, float* x, float* y, float* z) {
    Reply reply(text);
    if (const Item pose = reply.array(reply.root(), "pose")) {
        *x = static_cast<float>(pose[0].number());
        *y = static_cast<float>(pose[1].number());
        *z = static_cast<float>(pose[2].number());
    }
    return reply.status();
}
