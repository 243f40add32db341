/* Force control. */
#ifndef ZK_FORCE_CONTROL_H
#define ZK_FORCE_CONTROL_H

#include "zk/connection.h"
#include "zk/mailboxes.h"

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a
 * text that is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Set_Force_Postion_Cmd[ZK_SLOTS];
ZK_API AckReply Stop_Force_Postion_Cmd[ZK_SLOTS];
ZK_API AckReply Clear_Force_Data_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Force_Sensor_Cmd[ZK_SLOTS];
ZK_API AckReply Auto_Set_Fz_Cmd[ZK_SLOTS];
ZK_API AckReply Stop_Set_Force_Sensor_Cmd[ZK_SLOTS];
ZK_API AckReply Clear_Fz_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Force_Drag_Threshold_Cmd[ZK_SLOTS];
ZK_API AckReply Init_Force_Drag_Threshold_Cmd[ZK_SLOTS];

ZK_API int Parser_Clear_Force_Data(const char* text);
ZK_API int Parser_Set_Force_Sensor(const char* text);
ZK_API int Parser_Stop_Force_Sensor(const char* text);
ZK_API int Parser_Set_IO_Mode(const char* text);
ZK_API int Parser_init_force_drag_threshold(const char* text);

#endif
