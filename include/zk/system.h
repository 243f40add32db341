/*
 * System and network: power, errors, versions, counters, the controller's state, and its network interfaces.
 * zk/status.h describes the forms and their statuses. A text of a reply that does not fit its buffer ends the process.
 */
#ifndef ZK_SYSTEM_H
#define ZK_SYSTEM_H

#include <stdbool.h>

#include "zk/connection.h"

/* Model and software of the arm. All texts are ended. */
typedef struct ArmSoftwareInfo {
    char product_version[10]; /* model and sensor, such as "ZK65-B" */
    char algorithm_version[20];
    char ctrl_build_time[20];
    char ctrl_version[10];
    char dynamic_model_version[5];
    char plan_build_time[20];
    char plan_version[10];
} ArmSoftwareInfo;

/* The controller's wireless network. All texts are ended. */
typedef struct WifiNet {
    int32_t channel;
    char ip[16];
    char mac[18];
    char mask[16];
    char mode[5]; /* "ap", "sta" or "off" */
    char password[16];
    char ssid[33];
} WifiNet;

/* ---------------------------------------------------------------------------------------------- Power and errors -- */

/* Switch the arm on (any non-zero number) or off; query which it is. */
ZK_API int Set_Arm_Power(ArmSocket socket, uint8_t on, bool block);
ZK_API int Set_Arm_Power_Block(ArmSocket socket, uint8_t on);
ZK_API int Set_Arm_Power_NonBlock(ArmSocket socket, uint8_t on);

ZK_API int Get_Arm_Power_State(ArmSocket socket, int32_t* on);
ZK_API int Get_Arm_Power_State_Block(ArmSocket socket, int32_t* on);

/* Clears the system error. */
ZK_API int Clear_System_Err(ArmSocket socket, bool block);
ZK_API int Clear_System_Err_Block(ArmSocket socket);
ZK_API int Clear_System_Err_NonBlock(ArmSocket socket);

/* Queries the controller's supply in volts and amperes, its temperature in degrees Celsius, and its error word. */
ZK_API int Get_Controller_State(ArmSocket socket, float* voltage, float* current, float* temperature,
                                uint16_t* err_flag);
ZK_API int Get_Controller_State_Block(ArmSocket socket, float* voltage, float* current, float* temperature,
                                      uint16_t* err_flag);

/* ------------------------------------------------------------------------------------------------------ Versions -- */

/* Queries the hardware version. No reply (zk/status.h), and no other form: it delivers no text. */
ZK_API int Get_Arm_Hardware_Version(ArmSocket socket, char* version);
ZK_API int Get_Arm_Hardware_Version_Block(ArmSocket socket, char* version);

/* Queries the versions of the controller's software, as hexadecimal digits: buffers of 12 bytes, and 20 for the
 * product, which may be null. */
ZK_API int Get_Arm_Software_Version(ArmSocket socket, char* plan, char* ctrl, char* kernel1, char* kernel2,
                                    char* product);
ZK_API int Get_Arm_Software_Version_Block(ArmSocket socket, char* plan, char* ctrl, char* kernel1, char* kernel2,
                                          char* product);

/* Queries the model of the arm and its software. A text of the reply that does not fit its field ends the process. It
 * zeroes the first record (zk/status.h) before it reads the status: on the first connection a broken reply returns 0,
 * with the values that the mailbox held. */
ZK_API int Get_Arm_Software_Info(ArmSocket socket, ArmSoftwareInfo* info);
ZK_API int Get_Arm_Software_Info_Block(ArmSocket socket, ArmSoftwareInfo* info);

/* Queries the firmware version of the tool interface. */
ZK_API int Get_Tool_Software_Version(ArmSocket socket, int32_t* version);
ZK_API int Get_Tool_Software_Version_Block(ArmSocket socket, int32_t* version);

/* --------------------------------------------------------------------------------------------- Logs and counters -- */

/* Makes the controller write its log file. No reply (zk/status.h). */
ZK_API int Get_Log_File(ArmSocket socket, bool block);
ZK_API int Get_Log_File_Block(ArmSocket socket);
ZK_API int Get_Log_File_NonBlock(ArmSocket socket);

/* Queries how long the system has run. When the controller does not know, the status is 0 and the outputs keep their
 * values. */
ZK_API int Get_System_Runtime(ArmSocket socket, int32_t* day, int32_t* hour, int32_t* min, int32_t* sec);
ZK_API int Get_System_Runtime_Block(ArmSocket socket, int32_t* day, int32_t* hour, int32_t* min, int32_t* sec);

/* Resets that counter. */
ZK_API int Clear_System_Runtime(ArmSocket socket, bool block);
ZK_API int Clear_System_Runtime_Block(ArmSocket socket);
ZK_API int Clear_System_Runtime_NonBlock(ArmSocket socket);

/* Queries the odometers of the connection's joints, in degrees. When the controller does not know, the status is 0 and
 * the output keeps its values. */
ZK_API int Get_Joint_Odom(ArmSocket socket, float* odom);
ZK_API int Get_Joint_Odom_Block(ArmSocket socket, float* odom);

/* Resets the odometers. */
ZK_API int Clear_Joint_Odom(ArmSocket socket, bool block);
ZK_API int Clear_Joint_Odom_Block(ArmSocket socket);
ZK_API int Clear_Joint_Odom_NonBlock(ArmSocket socket);

/* ------------------------------------------------------------------------------------------------------- Network -- */

/* Switches the fast Ethernet interface (0 off, 1 on). The plain name waits a second after the blocking form. */
ZK_API int Set_High_Speed_Eth(ArmSocket socket, uint8_t mode, bool block);
ZK_API int Set_High_Speed_Eth_Block(ArmSocket socket, uint8_t mode);
ZK_API int Set_High_Speed_Eth_NonBlock(ArmSocket socket, uint8_t mode);

/*
 * Set and query the addresses of the fast Ethernet interface, as dotted text. Buffers of 16 bytes, and 18 for the MAC.
 */
ZK_API int Set_High_Ethernet(ArmSocket socket, const char* ip, const char* mask, const char* gateway);
ZK_API int Set_High_Ethernet_Block(ArmSocket socket, const char* ip, const char* mask, const char* gateway);

ZK_API int Get_High_Ethernet(ArmSocket socket, char* ip, char* mask, char* gateway, char* mac);
ZK_API int Get_High_Ethernet_Block(ArmSocket socket, char* ip, char* mask, char* gateway, char* mac);

/* Query the addresses of the wired and of the wireless network. Buffers of 16 bytes, and 18 for the MAC. Both zero the
 * first record (zk/status.h). */
ZK_API int Get_Wired_Net(ArmSocket socket, char* ip, char* mask, char* mac);
ZK_API int Get_Wired_Net_Block(ArmSocket socket, char* ip, char* mask, char* mac);

ZK_API int Get_Wifi_Net(ArmSocket socket, WifiNet* net);
ZK_API int Get_Wifi_Net_Block(ArmSocket socket, WifiNet* net);

/* Sets the controller's address; resets the whole network to its defaults. Either may break the connection. */
ZK_API int Set_NetIP(ArmSocket socket, const char* ip);
ZK_API int Set_NetIP_Block(ArmSocket socket, const char* ip);

ZK_API int Set_Net_Default(ArmSocket socket);
ZK_API int Set_Net_Default_Block(ArmSocket socket);

/* Set_Net_Default under another name: its reply goes to the mailbox of that, so it ends in 7. Use Set_Net_Default. */
ZK_API int Set_Controller_ResetIP_NC_E(ArmSocket socket);
ZK_API int Set_Controller_ResetIP_Block_NC_E(ArmSocket socket);

/* Makes the controller save its information about all devices. */
ZK_API int Save_Device_Info_All(ArmSocket socket);
ZK_API int Save_Device_Info_All_Block(ArmSocket socket);

/* Query the mode of the RS485 port of the controller, and of the tool: mode, baud rate, and Modbus timeout in tenths of
 * a second. */
ZK_API int Get_Controller_RS485_Mode(ArmSocket socket, int32_t* mode, int32_t* baudrate, int32_t* timeout);
ZK_API int Get_Controller_RS485_Mode_Block(ArmSocket socket, int32_t* mode, int32_t* baudrate, int32_t* timeout);

ZK_API int Get_Tool_RS485_Mode(ArmSocket socket, int32_t* mode, int32_t* baudrate, int32_t* timeout);
ZK_API int Get_Tool_RS485_Mode_Block(ArmSocket socket, int32_t* mode, int32_t* baudrate, int32_t* timeout);

/* Set and query the mode the arm runs in: 0 simulated, 1 real. The plain names wait 2 ms first. The setter returns 1
 * only for false, and 8 for a reply without "mode"; the query returns 9 without "mode", and 8 when it is no number. */
ZK_API int Set_Arm_Run_Mode(ArmSocket socket, int32_t mode);
ZK_API int Set_Arm_Run_Mode_Block_NC_E(ArmSocket socket, int32_t mode);

ZK_API int Get_Arm_Run_Mode(ArmSocket socket, int32_t* mode);
ZK_API int Get_Arm_Run_Mode_Block_NC_E(ArmSocket socket, int32_t* mode);

/* Configure the wireless network as access point and as client, the baud rates of the USB and RS485 ports, and switch
 * to Ethernet. These have no reply: every form queues the request and returns 0. */
ZK_API int Set_WiFi_AP_Data(ArmSocket socket, const char* name, const char* password);
ZK_API int Set_WiFi_AP_Data_Blcok(ArmSocket socket, const char* name, const char* password);
ZK_API int Set_WiFI_STA_Data(ArmSocket socket, const char* name, const char* password);
ZK_API int Set_WiFI_STA_Data_Block(ArmSocket socket, const char* name, const char* password);
ZK_API int Set_USB_Data(ArmSocket socket, int32_t baudrate);
ZK_API int Set_USB_Data_Block(ArmSocket socket, int32_t baudrate);
ZK_API int Set_RS485(ArmSocket socket, int32_t baudrate);
ZK_API int Set_RS485_Block(ArmSocket socket, int32_t baudrate);
ZK_API int Set_Ethernet(ArmSocket socket);
ZK_API int Set_Ethernet_Block(ArmSocket socket);

#endif
