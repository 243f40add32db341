/*
 * Inputs, outputs and supply voltages: of the controller, and of the tool flange. zk/status.h describes the forms and
 * their statuses. `number` is that of the input or output, as the controller counts them. The controller defines what
 * the modes and the types of voltage mean.
 */
#ifndef ZK_IO_H
#define ZK_IO_H

#include <stdbool.h>

#include "zk/connection.h"

/* --------------------------------------------------------------------------------------- Inputs, outputs, singly -- */

/* Set an output, digital (any non-zero state is 1) or analogue (in volts, sent in millivolts). These plain names, and
 * those of the four queries below, test neither for a file transfer nor for null pointers. During a transfer their
 * requests wait in the queue. */
ZK_API int Set_DO_State(ArmSocket socket, uint8_t number, uint8_t state, bool block);
ZK_API int Set_DO_State_Block(ArmSocket socket, uint8_t number, uint8_t state);
ZK_API int Set_DO_State_NonBlock(ArmSocket socket, uint8_t number, uint8_t state);

ZK_API int Set_AO_State(ArmSocket socket, uint8_t number, float voltage, bool block);
ZK_API int Set_AO_State_Block(ArmSocket socket, uint8_t number, float voltage);
ZK_API int Set_AO_State_NonBlock(ArmSocket socket, uint8_t number, float voltage);

/* Sets a digital output (type 0), or an analogue one (type 1) to `value` whole volts. Any other type returns 11. */
ZK_API int Set_IO_State(ArmSocket socket, int32_t type, uint8_t number, uint8_t value, bool block);

/* Queries a digital output. */
ZK_API int Get_DO_State(ArmSocket socket, uint8_t number, uint8_t* state);
ZK_API int Get_DO_State_Block(ArmSocket socket, uint8_t number, uint8_t* state);

/* Queries a digital input, but delivers 0 whatever its state: the value is stored in Get_DO_State_Cmd. Use Get_IO_Input
 * or Get_IO_State. */
ZK_API int Get_DI_State(ArmSocket socket, uint8_t number, uint8_t* state);
ZK_API int Get_DI_State_Block(ArmSocket socket, uint8_t number, uint8_t* state);

/*
 * Query an analogue output and input in whole volts, without the fraction. Get_IO_Output and Get_IO_Input deliver it.
 */
ZK_API int Get_AO_State(ArmSocket socket, uint8_t number, uint8_t* volts);
ZK_API int Get_AO_State_Block(ArmSocket socket, uint8_t number, uint8_t* volts);

ZK_API int Get_AI_State(ArmSocket socket, uint8_t number, uint8_t* volts);
ZK_API int Get_AI_State_Blcok(ArmSocket socket, uint8_t number, uint8_t* volts);

/* -------------------------------------------------------------------------------------- Inputs, outputs, at once -- */

/* Query all inputs and all outputs: four digital ones, and four analogue ones in volts. After a shorter reply the rest
 * is that of the reply before; a longer one is cut. */
ZK_API int Get_IO_Input(ArmSocket socket, int32_t* digital, float* analogue);
ZK_API int Get_IO_Input_Block(ArmSocket socket, int32_t* digital, float* analogue);

ZK_API int Get_IO_Output(ArmSocket socket, int32_t* digital, float* analogue);
ZK_API int Get_IO_Output_Block(ArmSocket socket, int32_t* digital, float* analogue);

/* --------------------------------------------------------------------------------------------------------- Modes -- */

/* Query the state and the mode of a digital input or output, and set its mode. A reply without a mode delivers the mode
 * of the reply before. */
ZK_API int Get_IO_State(ArmSocket socket, uint8_t number, uint8_t* state, uint8_t* mode);
ZK_API int Get_IO_State_Block(ArmSocket socket, uint8_t number, uint8_t* state, uint8_t* mode);

ZK_API int Set_IO_Mode(ArmSocket socket, uint8_t number, uint8_t mode);
ZK_API int Set_IO_Mode_Block(ArmSocket socket, uint8_t number, uint8_t mode);

/* ------------------------------------------------------------------------------------------------ Supply voltage -- */

/* Set the type of the controller's supply voltage and whether it is on at start-up; query the type. */
ZK_API int Set_Voltage(ArmSocket socket, uint8_t type, uint8_t start_enable);
ZK_API int Set_Voltage_Block(ArmSocket socket, uint8_t type, uint8_t start_enable);

ZK_API int Get_Voltage(ArmSocket socket, uint8_t* type);
ZK_API int Get_Voltage_Block(ArmSocket socket, uint8_t* type);

/* --------------------------------------------------------------------------------------------------- Tool flange -- */

/* Set an output of the tool, and the direction of one of its inputs or outputs: any non-zero number is sent as 1. */
ZK_API int Set_Tool_DO_State(ArmSocket socket, uint8_t number, uint8_t state, bool block);
ZK_API int Set_Tool_DO_State_Block(ArmSocket socket, uint8_t number, uint8_t state);
ZK_API int Set_Tool_DO_State_NonBlock(ArmSocket socket, uint8_t number, uint8_t state);

ZK_API int Set_Tool_IO_Mode(ArmSocket socket, uint8_t number, uint8_t state, bool block);
ZK_API int Set_Tool_IO_Mode_Block(ArmSocket socket, uint8_t number, uint8_t state);
ZK_API int Set_Tool_IO_Mode_NonBlock(ArmSocket socket, uint8_t number, uint8_t state);

/* Queries mode and state of both inputs or outputs of the tool: arrays of two. */
ZK_API int Get_Tool_IO_State(ArmSocket socket, float* mode, float* state);
ZK_API int Get_Tool_IO_State_Block(ArmSocket socket, float* mode, float* state);

/* Set and query the type of the tool's supply voltage. */
ZK_API int Set_Tool_Voltage(ArmSocket socket, uint8_t type, bool block);
ZK_API int Set_Tool_Voltage_Block(ArmSocket socket, uint8_t type);
ZK_API int Set_Tool_Voltage_NonBlock(ArmSocket socket, uint8_t type);

ZK_API int Get_Tool_Voltage(ArmSocket socket, uint8_t* type);
ZK_API int Get_Tool_Voltage_Block(ArmSocket socket, uint8_t* type);

/* ---------------------------------------------------------------------------------------- Commands that end in 7 -- */

/*
 * Five of the requests above under other names. The controller executes them, but the reply goes to the mailbox of the
 * other name: they always end in 7 after m_nOutTime. Use Set_IO_Mode, Set_DO_State, Get_IO_State, Get_Voltage and
 * Set_Voltage instead. Mode and state are sent as 1 when they are 1, else as 0. The plain names wait 2 ms first. Each
 * blocking form has two spellings.
 */
ZK_API int Set_IO_Mode_NC_E(ArmSocket socket, uint8_t number, int32_t mode);
ZK_API int Set_IO_Mode_Block_NC_E(ArmSocket socket, uint8_t number, int32_t mode);
ZK_API int Set_IO_Mode_NC_Block_E(ArmSocket socket, uint8_t number, int32_t mode);

ZK_API int Set_IO_State_NC_E(ArmSocket socket, uint8_t number, int32_t state);
ZK_API int Set_IO_State_Block_NC_E(ArmSocket socket, uint8_t number, int32_t state);
ZK_API int Set_IO_State_NC_Block_E(ArmSocket socket, uint8_t number, int32_t state);

ZK_API int Get_IO_State_NC_E(ArmSocket socket, uint8_t number, int32_t* state, int32_t* mode);
ZK_API int Get_IO_State_Block_NC_E(ArmSocket socket, uint8_t number, int32_t* state, int32_t* mode);
ZK_API int Get_IO_State_NC_Block_E(ArmSocket socket, uint8_t number, int32_t* state, int32_t* mode);

ZK_API int Get_Controller_Voltage_NC_E(ArmSocket socket, uint8_t* type);
ZK_API int Get_Controller_Voltage_Block_NC_E(ArmSocket socket, uint8_t* type);
ZK_API int Get_Controller_Voltage_NC_Block_E(ArmSocket socket, uint8_t* type);

ZK_API int Set_Controller_Voltage_NC_E(ArmSocket socket, uint8_t type, uint8_t start_enable);
ZK_API int Set_Controller_Voltage_Block_NC_E(ArmSocket socket, uint8_t type, uint8_t start_enable);
ZK_API int Set_Controller_Voltage_NC_Block_E(ArmSocket socket, uint8_t type, uint8_t start_enable);

#endif
