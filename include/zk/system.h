/* System and network. */
#ifndef ZK_SYSTEM_H
#define ZK_SYSTEM_H

#include "zk/connection.h"
#include "zk/mailboxes.h"

/* What runs on the arm. All texts are ended. */
typedef struct ArmSoftwareInfo {
    char product_version[10]; /* model and sensor, such as "ZK65-B" */
    char algorithm_version[20];
    char ctrl_build_time[20];
    char ctrl_version[10];
    char dynamic_model_version[5];
    char plan_build_time[20];
    char plan_version[10];
} ArmSoftwareInfo;

typedef struct ArmSoftwareInfoReply {
    int32_t count;
    int32_t result;
    ArmSoftwareInfo info;
    uint8_t reserved[1];
} ArmSoftwareInfoReply;

/*
 * Asks what arm it is and what runs on it. A text of the reply that does not fit its field ends the process. Afterwards
 * the mailbox record of the first connection is wiped, whichever asked, and the status read after that: on the first
 * connection a broken reply gives 0 as well, with what the record held. Returns 0, 5, 7, 9, 11; the plain name adds
 * 18, 19. Application threads.
 */
ZK_API ArmSoftwareInfoReply Get_Arm_Software_Info_Cmd[ZK_SLOTS];
ZK_API int Get_Arm_Software_Info(ArmSocket socket, ArmSoftwareInfo* info);
ZK_API int Get_Arm_Software_Info_Block(ArmSocket socket, ArmSoftwareInfo* info);
ZK_API int Parser_Get_Arm_Software_Info(const char* text, ArmSoftwareInfo* info);

/* Acknowledgements: the mailboxes, and the parsers of their replies. A parser gives 0 for true, 1 for false, 9 for a
 * text that is not JSON or lacks the key, and 11 for another type (8 where told). Any thread. */
ZK_API AckReply Set_Arm_Power_Cmd[ZK_SLOTS];
ZK_API AckReply Clear_System_Err_Cmd[ZK_SLOTS];
ZK_API AckReply Clear_System_Runtime_Cmd[ZK_SLOTS];
ZK_API AckReply Clear_Joint_Odom_Cmd[ZK_SLOTS];
ZK_API AckReply Set_High_Speed_Eth_Cmd[ZK_SLOTS];
ZK_API AckReply Set_High_Ethernet_Cmd[ZK_SLOTS];
ZK_API AckReply Save_Device_Info_All_Cmd[ZK_SLOTS];
ZK_API AckReply Set_NetIP_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Net_Default_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_Arm_Power(const char* text);
ZK_API int Parser_Clear_System_Err(const char* text);
ZK_API int Parser_Set_High_Speed_Eth(const char* text);
ZK_API int Parser_Set_High_Ethernet(const char* text);
ZK_API int Parser_Save_Device_Info_All(const char* text);
ZK_API int Parser_Set_NetIP(const char* text);
ZK_API int Parser_Set_Net_Default_Cmd(const char* text);

#endif
