/* Replies: trajectory control. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_TRAJECTORY_H
#define ZK_REPLIES_TRAJECTORY_H

#include "zk/mailboxes.h"
#include "zk/trajectory.h"

typedef struct TrajectoryReply {
    int32_t count;
    int32_t result;
    int32_t type;
    float data[7];
} TrajectoryReply;

ZK_API AckReply Set_Arm_Stop_Cmd[ZK_SLOTS];
ZK_API int Parser_Move_Stop(const char* text);
ZK_API AckReply Set_Arm_Slow_Stop_Cmd[ZK_SLOTS];
ZK_API int Parser_Move_Slow_Stop(const char* text);
ZK_API AckReply Set_Arm_Pause_Cmd[ZK_SLOTS];
ZK_API int Parser_Move_Pause(const char* text);
ZK_API AckReply Set_Arm_Continue_Cmd[ZK_SLOTS];
ZK_API int Parser_Move_Continue(const char* text);
ZK_API AckReply Clear_Current_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Parser_Clear_Current_Trajectory(const char* text);
ZK_API AckReply Clear_All_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Parser_Clear_All_Trajectory(const char* text);
ZK_API TrajectoryReply Get_Arm_Current_Trajectory_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Current_Trajectory(ArmSocket socket, const char* text, int32_t* type, float* data);

/* 1 for false, 0 for any other value. */
ZK_API int Parser_Add_Waypoint(const char* text);
ZK_API int Parser_Set_Gripper(const char* text);
ZK_API int Paser_Timer(const char* text);

#endif
