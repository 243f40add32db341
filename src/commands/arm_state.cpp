// State of the arm.
#include "zk/arm_state.h"

#include <cstdio>

#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/algorithm.h"

using namespace zk;

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
    if (const Item word = reply.number(state, "arm_err")) *arm_err = static_cast<uint16_t>(word.integer());
    if (const Item word = reply.number(state, "sys_err")) *sys_err = static_cast<uint16_t>(word.integer());
    return reply.status();
}

InstallPoseReply Get_Install_Pose_Cmd[ZK_SLOTS];
ZK_API int Get_Install_Pose(ArmSocket s, float* x, float* y, float* z) {
    if (sending_file()) return ZK_SENDING_FILE;
    const int status = Get_Install_Pose_Block(s, x, y, z);
    std::fflush(stdout);
    if (status == ZK_OK) Algo_Set_Angle(*x, *y, *z);
    float held[3];
    Algo_Get_Angle(&held[0], &held[1], &held[2]);
    return *x == held[0] && *y == held[1] && *z == held[2] ? status : -1;
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

AckReply Set_Arm_Init_Pose_Cmd[ZK_SLOTS];
AckReply Set_Install_Pose_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_Arm_Init_Pose(const char* text) { return acknowledgement(text, "init_pose"); }
