/* Replies: file transfer. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_FILE_TRANSFER_H
#define ZK_REPLIES_FILE_TRANSFER_H

#include "zk/file_transfer.h"
#include "zk/mailboxes.h"

ZK_API AckReply Run_Project_Cmd[ZK_SLOTS];
ZK_API IntReply Send_Project_Cmd[ZK_SLOTS]; /* the value is the rejected line */
ZK_API int Parser_RunProject(const char* text);
ZK_API int Parser_SendFile(const char* text, int32_t* err_line);
ZK_API AckReply Run_Update_Software_Project_Cmd[ZK_SLOTS];
ZK_API int Parser_Run_UpdateSoftware_E(const char* text);
ZK_API IntReply Save_Trajectory_Cmd[ZK_SLOTS]; /* the value is the announced total */
ZK_API int Parser_Save_Drag_Teach_File_Block_NC_E(const char* text, int32_t* total);
ZK_API AckReply Set_Popup_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Popup(const char* text);
ZK_API AckReply Set_Online_Start_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Online_Start(const char* text);
ZK_API AckReply Set_Lift_Version_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Lift_Version_E(const char* text); /* 0 also for a type other than boolean */
ZK_API AckReply Set_Sale_Version_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Sale_Version_E(const char* text); /* 0 also for a type other than boolean */
ZK_API IntReply Get_Tool_Hardware_Version_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Controller_IP_NC_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Net_State_E(const char* text);

#endif
