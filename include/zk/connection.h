/*
 * Starting and ending the library and its connections; the table of connections; the settings.
 *
 * An ArmSocket, the descriptor of the TCP connection, is the handle of an arm. All state is process-wide. The library
 * runs three threads from the first ZK_API_Init to the end of the process: one writes queued requests (one every 20 ms
 * for all connections together), one reads every connection, one reads the real-time stream. dlclose therefore does not
 * unload the library. Use one blocking call per connection at a time; a second thread may send the stop commands.
 */
#ifndef ZK_CONNECTION_H
#define ZK_CONNECTION_H

#include <pthread.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "zk/export.h"
#include "zk/transform_types.h"

/* Descriptor of an arm's TCP connection; positive when open. */
typedef int32_t ArmSocket;

/* ------------------------------------------------------------------------------------------------------- Records -- */

/* One connection. Its index in SockInfo is its slot, which selects its record in every mailbox. */
typedef struct SocketSlot {
    int32_t socket;      /* 0 when the slot is free */
    int32_t joint_count; /* 6 or 7, from the arm mode given to ZK_API_Init */
    int32_t arm_mode;    /* CUR_ARM_MODE at the time of connecting */
    uint8_t reserved[184];
} SocketSlot;

/* Result of the streamed motions, passed by value to the callback of ZK_API_Init. */
typedef struct ArmMotionReport {
    int32_t socket;
    int32_t report_type;          /* ZK_ReportType (zk/streaming.h) */
    int32_t result;               /* for 1 and 2 a ZK_SetPointResult, or 9; for 3 the status of the report */
    Pose pose;                    /* for 2; as the controller sends it, unscaled */
    float joint[7];               /* for 1 and 3; as the controller sends it, unscaled */
    float all_direction_force[7]; /* for 3 */
    int32_t force;                /* for 3; the controller's number divided by 10 */
    uint16_t arm_err;             /* error word; 8 when the report has none */
} ArmMotionReport;

ZK_STATIC_ASSERT(sizeof(SocketSlot) == 196 && offsetof(SocketSlot, arm_mode) == 8, "layout of SocketSlot");
ZK_STATIC_ASSERT(sizeof(ArmMotionReport) == 116 && offsetof(ArmMotionReport, pose) == 12 &&
                     offsetof(ArmMotionReport, joint) == 52 && offsetof(ArmMotionReport, force) == 108 &&
                     offsetof(ArmMotionReport, arm_err) == 112,
                 "layout of ArmMotionReport");

/* Receives the reports of streamed motion on the receive thread: while it runs, no reply of any arm is read. */
typedef void (*MotionReportCallback)(ArmMotionReport report);

/* ------------------------------------------------------------------------------------------------------ Settings -- */

ZK_API int32_t m_nOutTime;             /* reply limit of blocking commands, ms: 200, then 3000 from ZK_API_Init on */
ZK_API int32_t m_nOutTime_max;         /* reply limit of some commands and of the real-time poll, ms: 1000 */
ZK_API int32_t m_nmodbusrtu_OutTime;   /* reply limit of Modbus reads and writes, ms: 1000 */
ZK_API int32_t CUR_ARM_MODE;           /* arm mode given to ZK_API_Init: 65 */
ZK_API int32_t m_nThreadIsRun;         /* 1 once the library's threads run */
ZK_API int32_t IsSendFile;             /* 1 while a file transfer holds the line: nearly every call returns 18 */
ZK_API int32_t SuspendQueue;           /* raised around some blocking calls; nothing reads it */
ZK_API MotionReportCallback callback1; /* the callback of ZK_API_Init */

ZK_API SocketSlot SockInfo[ZK_SLOTS]; /* the connections */
ZK_API int32_t m_nSockInfoLen;        /* how many slots are taken */

/* Of the arm connected last: the model number (0 ZK65, 1 ZK75, 3 63, 5 ORB65, 6 62, 7 72, 8 ORB63) and the end sensor
 * (0 -B, 1 -ZF, 2 -6F). The flag is 1 once a controller has reported its model. */
ZK_API int32_t Curr_Robot_Type;
ZK_API int32_t Curr_Senser_Type;
ZK_API uint8_t g_is_robot_type_i;

/* The tool and the work frame in use as transforms, 4 by 4. A reply with the tool frame in use sets Tool_Matrix with
 * the Euler angles in the place of the position; the start-up stores the true transform. */
ZK_API Matrix Tool_Matrix;
ZK_API Matrix Frame_Matrix;

ZK_API pthread_t m_hWThread;     /* transmit thread */
ZK_API pthread_t m_hRThread;     /* receive thread */
ZK_API pthread_t m_hLThread;     /* real-time thread */
ZK_API pthread_mutex_t m_hMutex; /* guards the entrance of the transmit queue and the pending list */

/* ----------------------------------------------------------------------------------------------------- Lifecycle -- */

/*
 * Starts the library: stores the callback (with null, reports are dropped) and the arm mode, creates an empty transmit
 * queue, and starts the threads if they do not run yet. Call it before any call that sends to a controller. Another
 * call resets m_nOutTime and the queue. Call it from one thread at a time.
 *
 * arm_mode: 65, 62, 631, 632, 634 or 651 for six joints, 75 or 72 for seven; any other counts as six.
 * Returns 0.
 */
ZK_API int ZK_API_Init(int32_t arm_mode, MotionReportCallback callback);

/* Frees the transmit queue; connections stay open and the threads go on. A command before the next ZK_API_Init ends the
 * process. Returns 0. Call it from one thread at a time. */
ZK_API int ZK_API_UnInit(void);

/* Version of the interface, "4.3.6". Any thread. */
ZK_API const char* API_Version(void);

/* --------------------------------------------------------------------------------------------------- Connections -- */

/* Puts a connected socket into the first free slot. Returns 0, or -1 when all 20 slots are taken. Arm_Socket_Start does
 * this; applications need it only for sockets of their own. Any thread. */
ZK_API int Init_Socket_Joint(int32_t arm_mode, int32_t socket);

/* Returns the slot of a socket, 0 to 19, or -1 when it is not in the table. Any thread. */
ZK_API int Get_Socket_Idx(int32_t socket);

/*
 * Connects to a controller and loads the data of its arm: queries the model, initialises the local kinematics for it,
 * puts the arm's tool frame, work frame, mounting angles and joint limits into the local model, and prepares the
 * listener of the real-time stream if the controller has it enabled. Call ZK_API_Init first, with the arm mode of this
 * arm. Afterwards the local forward kinematics returns the pose that the controller reports. The registered real-time
 * callback is cleared.
 *
 * address: dotted IPv4 text; host names are not resolved. timeout: without effect; a connect takes as long as the
 * system takes.
 *
 * Returns the socket, always above ZK_LARGEST_STATUS, or a status: 4 no socket; 5 no connection, or closed during the
 * start; -1 all 20 connections are taken, or a mounting angle read back from the local model differs by more than 0.001
 * degrees; 7 no reply; 9, 10, 11 a reply that is broken, has another joint count than the arm mode, or has a value of
 * the wrong type; 18 during a file transfer; 25 the listener could not be set up (the connection stays open). A failed
 * attempt closes as Arm_Socket_Close does. Application threads. Several threads may start connections: one at a time
 * talks to its controller while the others wait.
 *
 * The socket is the lowest free number above that of the last connection or listener; above 1023 the search starts
 * again at ZK_LARGEST_STATUS + 1. So the number of a closed connection is not that of the next one.
 *
 * A second arm replaces the model, the frames and the limits of the first. A controller that reports an unknown model
 * keeps the model of the arm before; one that reports a combination of arm and sensor that does not exist leaves a
 * model without joints (libalgo_get_rbt_dof() is 0). A tool or work frame in use whose name contains "point" makes the
 * start end in 7, since its reply counts as that of a recorded point.
 */
ZK_API ArmSocket Arm_Socket_Start(const char* address, int32_t port, int32_t timeout);

/*
 * Closes a connection. Calls that wait on it return 5, also when another connection gets its slot or its number; the
 * number comes back only after the numbers above it.
 *
 * It also closes the one real-time stream of the process, and forgets every connection in a higher slot: their
 * descriptors stay open, but the library no longer reads them. With several arms open, close them all, last opened
 * first. Until a real-time stream is set up, the stream's descriptor is 0, and the first call closes descriptor 0 of
 * the process. A socket below 1 does nothing. Any thread, also in a callback.
 */
ZK_API void Arm_Socket_Close(ArmSocket socket);

/*
 * Checks that a controller replies.
 *
 * Arm_Socket_State returns 0 or another status of the reply; 18 during a file transfer; 5 for a socket below 1, or
 * without a reply within 500 ms; 2 before ZK_API_Init; 6 when the request could not be written. A late reply to
 * Get_Joint_Speed counts. Arm_Socket_State_nBlock only writes the request and returns 0 or 6.
 */
ZK_API int Arm_Socket_State(ArmSocket socket);
ZK_API int Arm_Socket_State_Block(ArmSocket socket);
ZK_API int Arm_Socket_State_nBlock(ArmSocket socket);

/* ---------------------------------------------------------------------------------------------------------- Time -- */

/*
 * The library's clock and its only sleep: a monotonic count of milliseconds that wraps at 32 bits (take differences as
 * signed 32-bit numbers), and a sleep. Every limit and every pause of the library goes through these two, so a program
 * that defines both itself decides how fast time passes. Only waits of some microseconds for another thread, and for
 * room on a socket, do not. Any thread.
 */
ZK_API int32_t Get_Program_Runtime(void);
ZK_API void sleep_cp(int32_t milliseconds);

#endif
