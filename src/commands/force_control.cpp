// Force control.
#include "zk/force_control.h"

#include "connection/reply.h"
#include "zk/arm_limits.h"
#include "zk/drag_teach.h"
#include "zk/system.h"

using namespace zk;

AckReply Set_Force_Postion_Cmd[ZK_SLOTS];
AckReply Stop_Force_Postion_Cmd[ZK_SLOTS];
AckReply Clear_Force_Data_Cmd[ZK_SLOTS];
AckReply Set_Force_Sensor_Cmd[ZK_SLOTS];
AckReply Auto_Set_Fz_Cmd[ZK_SLOTS];
AckReply Stop_Set_Force_Sensor_Cmd[ZK_SLOTS];
AckReply Clear_Fz_Cmd[ZK_SLOTS];
AckReply Set_Force_Drag_Threshold_Cmd[ZK_SLOTS];
AckReply Init_Force_Drag_Threshold_Cmd[ZK_SLOTS];

ZK_API int Parser_Clear_Force_Data(const char* text) { return Parser_Clear_System_Err(text); }
ZK_API int Parser_Set_Force_Sensor(const char* text) { return Parser_Set_DH_Data(text); }
ZK_API int Parser_Stop_Force_Sensor(const char* text) { return Parser_Stop_Drag_Trajectory(text); }
ZK_API int Parser_Set_IO_Mode(const char* text) { return Parser_Set_DH_Data(text); }
ZK_API int Parser_init_force_drag_threshold(const char* text) { return acknowledgement(text, "init_state"); }
