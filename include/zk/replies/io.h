/* Replies: inputs, outputs and supply voltages. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_IO_H
#define ZK_REPLIES_IO_H

#include "zk/io.h"
#include "zk/mailboxes.h"

/* All inputs, or all outputs, of the controller. */
typedef struct IoBankReply {
    int32_t count;
    int32_t result;
    int32_t digital[4];
    float analogue[4]; /* volts */
} IoBankReply;

typedef struct IoStateReply {
    int32_t count;
    int32_t result;
    int32_t state;
    int32_t mode; /* of the last reply with a mode */
} IoStateReply;

typedef struct ToolIoReply {
    int32_t count;
    int32_t result;
    float mode[2];
    float state[2];
} ToolIoReply;

ZK_API AckReply Set_DO_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_DO_State(const char* text);
ZK_API AckReply Set_AO_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_AO_State(const char* text);
ZK_API IntReply Get_DO_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_DO_State(const char* text, int32_t* state);
ZK_API IntReply Get_DI_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_DI_State(const char* text, int32_t* state);
ZK_API FloatReply Get_AO_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_AO_State(const char* text, float* volts);
ZK_API FloatReply Get_AI_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_AI_State(const char* text, float* volts);
ZK_API IoBankReply Get_IO_State_Cmd[ZK_SLOTS];
ZK_API int Parser_IO_Input(const char* text, int32_t* digital, float* analogue);
ZK_API IoBankReply Get_IO_Output_State_Cmd[ZK_SLOTS];
ZK_API int Parser_IO_Output(const char* text, int32_t* digital, float* analogue);
ZK_API IoStateReply Get_DIO_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_IO_State(const char* text, int32_t* state, int32_t* mode);
ZK_API AckReply Set_IO_Mode_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_IO_Mode(const char* text);
ZK_API AckReply Set_Voltage_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Voltage(const char* text);
ZK_API IntReply Get_Voltage_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Voltage(const char* text, int32_t* type);
ZK_API AckReply Set_Tool_DO_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Tool_DO_State_2(const char* text);
ZK_API AckReply Set_Tool_IO_Mode_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Tool_DO_State(const char* text);
ZK_API ToolIoReply Get_Tool_IO_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Tool_IO_State(const char* text, float* mode, float* state);
ZK_API AckReply Set_Tool_Voltage_Cmd[ZK_SLOTS];
ZK_API int Parser_Set_Tool_Voltage(const char* text);
ZK_API IntReply Get_Tool_Voltage_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Tool_Voltage(const char* text, int32_t* type);
ZK_API AckReply Set_IO_Mode_NC_Cmd[ZK_SLOTS];
ZK_API AckReply Set_IO_State_NC_Cmd[ZK_SLOTS];
ZK_API IoStateReply Get_IO_State_NC_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_IO_State_NC_E(const char* text, int32_t* state, int32_t* mode);
ZK_API IntReply Get_Controller_Voltage_NC_Cmd[ZK_SLOTS];
ZK_API AckReply Set_Controller_Voltage_NC_Cmd[ZK_SLOTS];

#endif
