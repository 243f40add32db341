/*
 * Inputs, outputs and supply voltages: of the controller, and of the tool flange.
 *
 * The forms: the plain name takes a flag, where there is one, and calls <name>_Block, which waits for the controller's
 * reply, or <name>_NonBlock, which only queues the request and returns 0. Statuses: 0; 1 refused; 5 not an open
 * connection; 7 no reply within m_nOutTime; 9, 11 a reply that is broken or of the wrong type. The plain names add 18
 * during a file transfer, and 19 for a null pointer, where not told otherwise. Application threads.
 *
 * `number` is that of the input or output, counted by the controller. What the modes and the types of voltage mean is
 * the controller's.
 */
#ifndef ZK_IO_H
#define ZK_IO_H

#include <stdbool.h>

#include "zk/connection.h"
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
    int32_t mode; /* of the last reply that told one */
} IoStateReply;

typedef struct ToolIoReply {
    int32_t count;
    int32_t result;
    float mode[2];
    float state[2];
} ToolIoReply;

/* --------------------------------------------------------------------------------------- Inputs, outputs, singly -- */

/*
 * Set an output, digital (any non-zero state is 1) or analogue (in volts, sent in millivolts). These plain names, and
 * those of the four queries below, test neither for a file transfer nor a pointer: during one they queue their request,
 * which goes out behind it, and wait for their reply as ever.
 */
ZK_API AckReply Set_DO_State_Cmd[ZK_SLOTS];
ZK_API int Set_DO_State(ArmSocket socket, uint8_t number, uint8_t state, bool block);
ZK_API int Set_DO_State_Block(ArmSocket socket, uint8_t number, uint8_t state);
ZK_API int Set_DO_State_NonBlock(ArmSocket socket, uint8_t number, uint8_t state);
ZK_API int Parser_Set_DO_State(const char* text);

ZK_API AckReply Set_AO_State_Cmd[ZK_SLOTS];
ZK_API int Set_AO_State(ArmSocket socket, uint8_t number, float voltage, bool block);
ZK_API int Set_AO_State_Block(ArmSocket socket, uint8_t number, float voltage);
ZK_API int Set_AO_State_NonBlock(ArmSocket socket, uint8_t number, float voltage);
ZK_API int Parser_Set_AO_State(const char* text);

/* One of the two by the type: 0 digital, 1 analogue with `value` in whole volts. Another type gives 11. */
ZK_API int Set_IO_State(ArmSocket socket, int32_t type, uint8_t number, uint8_t value, bool block);

/* Asks for a digital output. */
ZK_API IntReply Get_DO_State_Cmd[ZK_SLOTS];
ZK_API int Get_DO_State(ArmSocket socket, uint8_t number, uint8_t* state);
ZK_API int Get_DO_State_Block(ArmSocket socket, uint8_t number, uint8_t* state);
ZK_API int Parser_Get_DO_State(const char* text, int32_t* state);

/* Asks for a digital input, but delivers 0 whatever its state: the value lands in the data of Get_DO_State_Cmd. Use
 * Get_IO_Input or Get_IO_State. */
ZK_API IntReply Get_DI_State_Cmd[ZK_SLOTS];
ZK_API int Get_DI_State(ArmSocket socket, uint8_t number, uint8_t* state);
ZK_API int Get_DI_State_Block(ArmSocket socket, uint8_t number, uint8_t* state);
ZK_API int Parser_Get_DI_State(const char* text, int32_t* state);

/* Ask for an analogue output, and input, in whole volts: the fraction is cut. Get_IO_Output and Get_IO_Input tell it.
 */
ZK_API FloatReply Get_AO_State_Cmd[ZK_SLOTS];
ZK_API int Get_AO_State(ArmSocket socket, uint8_t number, uint8_t* volts);
ZK_API int Get_AO_State_Block(ArmSocket socket, uint8_t number, uint8_t* volts);
ZK_API int Parser_Get_AO_State(const char* text, float* volts);

ZK_API FloatReply Get_AI_State_Cmd[ZK_SLOTS];
ZK_API int Get_AI_State(ArmSocket socket, uint8_t number, uint8_t* volts);
ZK_API int Get_AI_State_Blcok(ArmSocket socket, uint8_t number, uint8_t* volts);
ZK_API int Parser_Get_AI_State(const char* text, float* volts);

/* -------------------------------------------------------------------------------------- Inputs, outputs, at once -- */

/* Ask for all inputs, and all outputs: four digital ones, and four analogue ones in volts. A reply of fewer leaves the
 * rest as the reply before told it, of more is cut. */
ZK_API IoBankReply Get_IO_State_Cmd[ZK_SLOTS];
ZK_API int Get_IO_Input(ArmSocket socket, int32_t* digital, float* analogue);
ZK_API int Get_IO_Input_Block(ArmSocket socket, int32_t* digital, float* analogue);
ZK_API int Parser_IO_Input(const char* text, int32_t* digital, float* analogue);

ZK_API IoBankReply Get_IO_Output_State_Cmd[ZK_SLOTS];
ZK_API int Get_IO_Output(ArmSocket socket, int32_t* digital, float* analogue);
ZK_API int Get_IO_Output_Block(ArmSocket socket, int32_t* digital, float* analogue);
ZK_API int Parser_IO_Output(const char* text, int32_t* digital, float* analogue);

/* --------------------------------------------------------------------------------------------------------- Modes -- */

/* Ask for the state and the mode of a digital input or output, and set its mode. A reply need not tell the mode; then
 * the last one told is delivered. */
ZK_API IoStateReply Get_DIO_State_Cmd[ZK_SLOTS];
ZK_API int Get_IO_State(ArmSocket socket, uint8_t number, uint8_t* state, uint8_t* mode);
ZK_API int Get_IO_State_Block(ArmSocket socket, uint8_t number, uint8_t* state, uint8_t* mode);
ZK_API int Parser_Get_IO_State(const char* text, int32_t* state, int32_t* mode);

ZK_API AckReply Set_IO_Mode_Cmd[ZK_SLOTS];
ZK_API int Set_IO_Mode(ArmSocket socket, uint8_t number, uint8_t mode);
ZK_API int Set_IO_Mode_Block(ArmSocket socket, uint8_t number, uint8_t mode);
ZK_API int Parser_Set_IO_Mode(const char* text);

/* ------------------------------------------------------------------------------------------------ Supply voltage -- */

/* Set the type of the controller's supply voltage and whether it is switched on at the start, and ask for the type. */
ZK_API AckReply Set_Voltage_Cmd[ZK_SLOTS];
ZK_API int Set_Voltage(ArmSocket socket, uint8_t type, uint8_t start_enable);
ZK_API int Set_Voltage_Block(ArmSocket socket, uint8_t type, uint8_t start_enable);
ZK_API int Parser_Set_Voltage(const char* text);

ZK_API IntReply Get_Voltage_Cmd[ZK_SLOTS];
ZK_API int Get_Voltage(ArmSocket socket, uint8_t* type);
ZK_API int Get_Voltage_Block(ArmSocket socket, uint8_t* type);
ZK_API int Parser_Get_Voltage(const char* text, int32_t* type);

/* --------------------------------------------------------------------------------------------------- Tool flange -- */

/* Set an output of the tool, and the direction of one of its inputs or outputs: any non-zero number goes out as 1. */
ZK_API AckReply Set_Tool_DO_State_Cmd[ZK_SLOTS];
ZK_API int Set_Tool_DO_State(ArmSocket socket, uint8_t number, uint8_t state, bool block);
ZK_API int Set_Tool_DO_State_Block(ArmSocket socket, uint8_t number, uint8_t state);
ZK_API int Set_Tool_DO_State_NonBlock(ArmSocket socket, uint8_t number, uint8_t state);
ZK_API int Parser_Set_Tool_DO_State_2(const char* text);

ZK_API AckReply Set_Tool_IO_Mode_Cmd[ZK_SLOTS];
ZK_API int Set_Tool_IO_Mode(ArmSocket socket, uint8_t number, uint8_t state, bool block);
ZK_API int Set_Tool_IO_Mode_Block(ArmSocket socket, uint8_t number, uint8_t state);
ZK_API int Set_Tool_IO_Mode_NonBlock(ArmSocket socket, uint8_t number, uint8_t state);
ZK_API int Parser_Set_Tool_DO_State(const char* text);

/* Asks for mode and state of both inputs or outputs of the tool: arrays of two. */
ZK_API ToolIoReply Get_Tool_IO_State_Cmd[ZK_SLOTS];
ZK_API int Get_Tool_IO_State(ArmSocket socket, float* mode, float* state);
ZK_API int Get_Tool_IO_State_Block(ArmSocket socket, float* mode, float* state);
ZK_API int Parser_Get_Tool_IO_State(const char* text, float* mode, float* state);

/* Set, and ask for, the type of the tool's supply voltage. */
ZK_API AckReply Set_Tool_Voltage_Cmd[ZK_SLOTS];
ZK_API int Set_Tool_Voltage(ArmSocket socket, uint8_t type, bool block);
ZK_API int Set_Tool_Voltage_Block(ArmSocket socket, uint8_t type);
ZK_API int Set_Tool_Voltage_NonBlock(ArmSocket socket, uint8_t type);
ZK_API int Parser_Set_Tool_Voltage(const char* text);

ZK_API IntReply Get_Tool_Voltage_Cmd[ZK_SLOTS];
ZK_API int Get_Tool_Voltage(ArmSocket socket, uint8_t* type);
ZK_API int Get_Tool_Voltage_Block(ArmSocket socket, uint8_t* type);
ZK_API int Parser_Get_Tool_Voltage(const char* text, int32_t* type);

/* ----------------------------------------------------------------------------------- Waiting where nothing comes -- */

/*
 * Five of the requests above under other names. The controller does what they ask, but its reply goes to the mailbox
 * of the other name, and so they always end in 7 after m_nOutTime (18, and 19 for a null pointer, at once). Use
 * Set_IO_Mode, Set_DO_State, Get_IO_State, Get_Voltage and Set_Voltage instead. Mode and state are sent as 1 when they
 * are 1, else as 0. The plain names wait 2 ms first. Each blocking form has two spellings.
 */
ZK_API AckReply Set_IO_Mode_NC_Cmd[ZK_SLOTS];
ZK_API int Set_IO_Mode_NC_E(ArmSocket socket, uint8_t number, int32_t mode);
ZK_API int Set_IO_Mode_Block_NC_E(ArmSocket socket, uint8_t number, int32_t mode);
ZK_API int Set_IO_Mode_NC_Block_E(ArmSocket socket, uint8_t number, int32_t mode);

ZK_API AckReply Set_IO_State_NC_Cmd[ZK_SLOTS];
ZK_API int Set_IO_State_NC_E(ArmSocket socket, uint8_t number, int32_t state);
ZK_API int Set_IO_State_Block_NC_E(ArmSocket socket, uint8_t number, int32_t state);
ZK_API int Set_IO_State_NC_Block_E(ArmSocket socket, uint8_t number, int32_t state);

ZK_API IoStateReply Get_IO_State_NC_Cmd[ZK_SLOTS];
ZK_API int Get_IO_State_NC_E(ArmSocket socket, uint8_t number, int32_t* state, int32_t* mode);
ZK_API int Get_IO_State_Block_NC_E(ArmSocket socket, uint8_t number, int32_t* state, int32_t* mode);
ZK_API int Get_IO_State_NC_Block_E(ArmSocket socket, uint8_t number, int32_t* state, int32_t* mode);
ZK_API int Parser_Get_IO_State_NC_E(const char* text, int32_t* state, int32_t* mode);

ZK_API IntReply Get_Controller_Voltage_NC_Cmd[ZK_SLOTS];
ZK_API int Get_Controller_Voltage_NC_E(ArmSocket socket, uint8_t* type);
ZK_API int Get_Controller_Voltage_Block_NC_E(ArmSocket socket, uint8_t* type);
ZK_API int Get_Controller_Voltage_NC_Block_E(ArmSocket socket, uint8_t* type);

ZK_API AckReply Set_Controller_Voltage_NC_Cmd[ZK_SLOTS];
ZK_API int Set_Controller_Voltage_NC_E(ArmSocket socket, uint8_t type, uint8_t start_enable);
ZK_API int Set_Controller_Voltage_Block_NC_E(ArmSocket socket, uint8_t type, uint8_t start_enable);
ZK_API int Set_Controller_Voltage_NC_Block_E(ArmSocket socket, uint8_t type, uint8_t start_enable);

#endif
