/*
 * The real-time stream. A controller sends its state as UDP datagrams at a configured cycle; Arm_Socket_Start prepares
 * the one listener of the process when the controller has the stream enabled. Take the state by a callback, or poll it.
 * Several arms share the listener: arm_ip is the sender's address. On connections of ZK_Connect use ZK_Get_State
 * (zk/control.h): each arm has a stream of its own there.
 */
#ifndef ZK_REALTIME_H
#define ZK_REALTIME_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "zk/connection.h"

/* ------------------------------------------------------------------------------------------------------- Records -- */

/* State of the arm. A field that a datagram does not carry keeps its last value. */
typedef struct RobotStatus {
    int32_t errCode;          /* status of the last datagram: 0, 9, 10 or 11 */
    char* arm_ip;             /* sender's address as text; the buffer is the library's, valid until the next datagram */
    uint16_t arm_err;         /* error word of the arm */
    float joint_current[7];   /* milliampere, divided by 1000: ampere */
    uint8_t joint_en_flag[7]; /* 1 enabled */
    uint16_t joint_err_code[7]; /* error words of the joints */
    float joint_position[7];    /* degrees */
    float joint_temperature[7]; /* degrees Celsius */
    float joint_voltage[7];     /* volts */
    float joint_speed[7];       /* degrees per second */
    float force[6];             /* newtons and newton metres */
    float zero_force[6];        /* the same, in the frame of `coordinate`, without the payload */
    int32_t coordinate;         /* frame of zero_force, the controller's number */
    uint16_t sys_err;           /* error word of the system */
    float position[3];          /* tool in the work frame, metres */
    float quat[4];              /* tool in the work frame, scalar first */
    float euler[3];             /* tool in the work frame, radians */
    int32_t lift_height;        /* millimetres */
    float lift_pos;
    int32_t lift_current;
    int32_t lift_err_flag;
    int32_t lift_en_flag;
    float expand_pos;
    int32_t expand_current;
    int32_t expand_err_flag;
    int32_t expand_en_flag;
    int32_t expand_joint_id;
    int32_t expand_mode;
    int32_t hand_pos[6];
    int32_t hand_angle[6];
    int32_t hand_force[6];
    int32_t hand_state[6];
    int32_t hand_err;
    int32_t arm_current_status; /* what the arm does; see get_arm_status_from_string */
    int32_t io1_state;
    int32_t io2_state;
} RobotStatus;

/* Receives every datagram's state on the real-time thread; a slow callback delays the next datagram. */
typedef void (*RealtimeCallback)(RobotStatus status);

/* The one listener of the process. */
typedef struct RealtimeListener {
    int32_t socket; /* UDP descriptor; 0 before the first connection with a stream, -1 after a close */
    RealtimeCallback callback;
    uint8_t receiving; /* whether the last datagram came in time */
    int32_t cycle;     /* of the controller at connection time, in its own unit */
    uint8_t custom_lift_state;
    uint8_t custom_expand_state;
    uint8_t custom_joint_speed;
} RealtimeListener;

/* Configuration of the stream. A negative number leaves a setting as it is. */
typedef struct RealtimePushConfig {
    int32_t cycle;            /* cycle in the controller's unit; sent when above 0 */
    bool enable;              /* whether the controller sends at all */
    int32_t port;             /* destination port; sent when above 0 */
    int32_t force_coordinate; /* frame of the forces; sent when 0 or above on an arm with a force sensor */
    char ip[28];              /* destination address; sent when it has 7 to 15 characters */
    int32_t joint_speed;      /* what the datagrams carry beyond the usual: 1 yes, 0 no */
    int32_t lift_state;
    int32_t expand_state;
    int32_t hand;
    int32_t arm_current_status;
    int32_t aloha_state;
} RealtimePushConfig;

/* 55 64-bit words. A platform with narrower pointers keeps the fields, not the size. */
ZK_STATIC_ASSERT(sizeof(void*) != 8 ||
                     (sizeof(RobotStatus) == 440 && offsetof(RobotStatus, arm_ip) == 8 &&
                      offsetof(RobotStatus, joint_current) == 20 && offsetof(RobotStatus, joint_en_flag) == 48 &&
                      offsetof(RobotStatus, joint_err_code) == 56 && offsetof(RobotStatus, joint_position) == 72 &&
                      offsetof(RobotStatus, force) == 184 && offsetof(RobotStatus, position) == 240 &&
                      offsetof(RobotStatus, lift_height) == 280 && offsetof(RobotStatus, hand_pos) == 324 &&
                      offsetof(RobotStatus, arm_current_status) == 424),
                 "layout of RobotStatus");
ZK_STATIC_ASSERT(sizeof(RealtimePushConfig) == 68 && offsetof(RealtimePushConfig, enable) == 4 &&
                     offsetof(RealtimePushConfig, port) == 8 && offsetof(RealtimePushConfig, ip) == 16 &&
                     offsetof(RealtimePushConfig, joint_speed) == 44,
                 "layout of RealtimePushConfig");
ZK_STATIC_ASSERT(sizeof(void*) != 8 || (sizeof(RealtimeListener) == 32 && offsetof(RealtimeListener, cycle) == 20),
                 "layout of RealtimeListener");

ZK_API RobotStatus robotstatus;
ZK_API RealtimeListener listener;

/* ---------------------------------------------------------------------------------------------- Taking the state -- */

/*
 * Registers the callback that receives the state of every datagram; null removes it. Arm_Socket_Start clears the
 * registration, so call it after each. The callback also runs for datagrams that do not parse: see errCode. Any thread.
 */
ZK_API void Realtime_Arm_Joint_State(RealtimeCallback callback);

/*
 * Copies the last complete state. Returns 0; 25 when no datagram comes in time within m_nOutTime_max (1000 ms). A
 * datagram more than cycle * 100 + 199 ms after the one before is late and does not count. After the stream stops, the
 * call returns 25 if the last datagram was late; otherwise it returns 0 and the same state again and again, so compare
 * a field that changes. Any thread.
 */
ZK_API int Get_Realtime_Arm_Joint_State(RobotStatus* status);

/* 0 idle (and any other text), 1 move_L, 2 move_J, 3 move_C, 4 move_S, 5 move_through_joint, 6 move_through_pose,
 * 7 move_through_force_pose, 8 move_through_current, 9 stop, 10 slow_stop, 11 pause, 12 current_drag, 13 sensor_drag,
 * 14 tech_demonstration. Any thread. */
ZK_API int get_arm_status_from_string(const char* text);

/* ---------------------------------------------------------------------------------------- Configuring the stream -- */

/*
 * Sets what the controller sends, how often and where. The listener of this process stays on the port it was bound
 * to at connection time. Returns 0, 1 refused, 5, 7, 9, 11, 18. Application threads.
 */
ZK_API int Set_Realtime_Push(ArmSocket socket, RealtimePushConfig config);
ZK_API int Set_Realtime_Push_Block(ArmSocket socket, RealtimePushConfig config);

/*
 * Queries the configuration; force_coordinate is -1 on an arm without a force sensor. Zeroes the first record
 * (zk/status.h). Returns 0, 5, 7, 9, 11, 18, 19. Application threads.
 */
ZK_API int Get_Realtime_Push(ArmSocket socket, RealtimePushConfig* config);
ZK_API int Get_Realtime_Push_Block(ArmSocket socket, RealtimePushConfig* config);

/* The real-time thread's function. Started by ZK_API_Init; not to be called. */
ZK_API void* threadFunction(void* unused);

#endif
