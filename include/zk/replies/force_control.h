/* Replies: force sensors and force control. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_FORCE_CONTROL_H
#define ZK_REPLIES_FORCE_CONTROL_H

#include "zk/force_control.h"
#include "zk/mailboxes.h"

typedef struct ForceDataReply {
    int32_t count;
    int32_t result;
    float force_data[6];
    float zero_force_data[6];
    float work_zero_force_data[6];
    float tool_zero_force_data[6];
} ForceDataReply;

typedef struct FzReply {
    int32_t count;
    int32_t result;
    float fz;
    float zero_fz;
    float work_zero_fz;
    float tool_zero_fz;
} FzReply;

ZK_API AckReply Set_Force_Postion_Cmd[ZK_SLOTS];
ZK_API AckReply Stop_Force_Postion_Cmd[ZK_SLOTS];
ZK_API ForceDataReply Get_Force_Data_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Force_Data(const char* text, float* force, float* zero_force, float* work_zero_force,
                                 float* tool_zero_force);
ZK_API AckReply Clear_Force_Data_Cmd[ZK_SLOTS];
ZK_API int Parser_Clear_Force_Data(const char* text);
ZK_API AckReply Set_Force_Sensor_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Force_Sensor(const char* text);
ZK_API AckReply Stop_Set_Force_Sensor_Cmd[ZK_SLOTS];
ZK_API int Parser_Stop_Force_Sensor(const char* text);
ZK_API FzReply Get_FZ_Data_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Fz(const char* text, float* fz, float* zero_fz, float* work_zero_fz, float* tool_zero_fz);
ZK_API AckReply Clear_Fz_Cmd[ZK_SLOTS];
ZK_API AckReply Auto_Set_Fz_Cmd[ZK_SLOTS];

/* Replies about the force thresholds of drag teaching, for which there is no command. Parser_Set_IO_Mode reads those of
 * the first. */
ZK_API AckReply Set_Force_Drag_Threshold_Cmd[ZK_SLOTS];
ZK_API AckReply Init_Force_Drag_Threshold_Cmd[ZK_SLOTS];
ZK_API IntReply Get_Force_Drag_Threshold_Cmd[ZK_SLOTS];
ZK_API int Parser_init_force_drag_threshold(const char* text);
ZK_API int Parser_Get_Force_Drag_Threshold(const char* text, int32_t* threshold);

#endif
