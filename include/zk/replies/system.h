/* Replies: system and network. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_SYSTEM_H
#define ZK_REPLIES_SYSTEM_H

#include "zk/mailboxes.h"
#include "zk/system.h"

typedef struct ArmSoftwareInfoReply {
    int32_t count;
    int32_t result;
    ArmSoftwareInfo info;
    uint8_t reserved[1];
} ArmSoftwareInfoReply;

typedef struct WifiNetReply {
    int32_t count;
    int32_t result;
    WifiNet net;
} WifiNetReply;

typedef struct WiredNetReply {
    int32_t count;
    int32_t result;
    char ip[16];
    char mask[16];
    char mac[18];
    char reserved[2];
} WiredNetReply;

typedef struct HighEthernetReply {
    int32_t count;
    int32_t result;
    char ip[16];
    char mask[16];
    char gateway[16];
    char mac[18];
    char reserved[2];
} HighEthernetReply;

typedef struct ControllerStateReply {
    int32_t count;
    int32_t result;
    float voltage;
    float current;
    float temperature;
    int32_t err_flag;
} ControllerStateReply;

typedef struct SoftwareVersionReply {
    int32_t count;
    int32_t result;
    char plan[12];
    char ctrl[12];
    char kernel1[12];
    char kernel2[12];
    char product[20];
} SoftwareVersionReply;

typedef struct SystemRuntimeReply {
    int32_t count;
    int32_t result;
    int32_t day, hour, min, sec;
    int32_t known; /* 0 when the controller did not know */
} SystemRuntimeReply;

typedef struct JointOdomReply {
    int32_t count;
    int32_t result;
    float value[8];
    int32_t known; /* 0 when the controller did not know */
} JointOdomReply;

typedef struct Rs485Reply {
    int32_t count;
    int32_t result;
    int32_t mode;
    int32_t baudrate;
    int32_t timeout;
} Rs485Reply;

ZK_API AckReply Set_Arm_Power_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Arm_Power(const char* text);
ZK_API IntReply Get_Arm_Power_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Arm_Power_State(const char* text, int32_t* on);
ZK_API AckReply Clear_System_Err_Cmd[ZK_SLOTS];
ZK_API int Parser_Clear_System_Err(const char* text);
ZK_API ControllerStateReply Get_Controller_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Controller_State(const char* text, float* voltage, float* current, float* temperature,
                                   int32_t* err_flag);
ZK_API int Parser_Get_Arm_Hardware_Version(const char* text, char* version);
ZK_API SoftwareVersionReply Get_Arm_Software_Version_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Arm_Software_Version(const char* text, char* plan, char* ctrl, char* kernel1, char* kernel2,
                                           char* product);
ZK_API ArmSoftwareInfoReply Get_Arm_Software_Info_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Arm_Software_Info(const char* text, ArmSoftwareInfo* info);
ZK_API IntReply Get_Tool_SoftWare_Version_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Tool_Software_Version(const char* text, int32_t* version);
ZK_API SystemRuntimeReply Get_System_Runtime_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_System_Runtime(const char* text, int32_t* day, int32_t* hour, int32_t* min, int32_t* sec);
ZK_API AckReply Clear_System_Runtime_Cmd[ZK_SLOTS];
ZK_API JointOdomReply Get_Joint_Odom_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Joint_Odom(const char* text, float* odom); /* at most eight numbers */
ZK_API AckReply Clear_Joint_Odom_Cmd[ZK_SLOTS];
ZK_API AckReply Set_High_Speed_Eth_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_High_Speed_Eth(const char* text);
ZK_API AckReply Set_High_Ethernet_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_High_Ethernet(const char* text);
ZK_API HighEthernetReply Get_High_Ethernet_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_High_Ethernet(const char* text, char* ip, char* mask, char* gateway, char* mac);
ZK_API WiredNetReply Get_Wired_Net_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Wired_Net(const char* text, char* ip, char* mask, char* mac);
ZK_API WifiNetReply Get_Wifi_Net_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Wifi_Net(const char* text, WifiNet* net);
ZK_API AckReply Set_NetIP_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_NetIP(const char* text);
ZK_API AckReply Set_Net_Default_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Net_Default_Cmd(const char* text);
ZK_API AckReply Set_Controller_ResetIP_NC_Cmd[ZK_SLOTS];
ZK_API AckReply Save_Device_Info_All_Cmd[ZK_SLOTS];
ZK_API int Parser_Save_Device_Info_All(const char* text);
ZK_API Rs485Reply Get_Controller_RS485_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Controller_RS485_Mode(const char* text, int32_t* mode, int32_t* baudrate, int32_t* timeout);
ZK_API Rs485Reply Get_Tool_RS485_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Tool_RS485_Mode(const char* text, int32_t* mode, int32_t* baudrate, int32_t* timeout);
ZK_API AckReply Set_Arm_Run_Mode_NC_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Arm_Run_Mode_NC_E(const char* text);
ZK_API IntReply Get_Arm_Run_Mode_NC_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Arm_Run_Mode_NC_E(const char* text, int32_t* mode);

#endif
