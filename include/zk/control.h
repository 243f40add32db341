/*
 * Connections that never hang: connect by name within a time limit, cancel a wait, bound it, stop an arm ahead of all
 * queued requests, notice a lost controller, and read the state of several arms.
 *
 * ZK_Connect returns a handle. It is an ArmSocket for every call of this library, but no descriptor of the system. A
 * handle is never used again: on the handle of a closed connection every call that looks at its connection returns
 * ZK_STALE_HANDLE or 5, and none of its bytes reach another arm.
 *
 * On such a connection every blocking call also ends
 *   - in ZK_LOST within 100 ms after the controller closed or reset the connection,
 *   - in ZK_CANCELLED within 20 ms after ZK_Cancel,
 *   - in ZK_DEADLINE when the deadline of ZK_Set_Deadline passes,
 *   - in ZK_BUSY when another thread's call excludes it (docs/threads.md lists the pairs).
 * Nothing that its controller sends ends the process: a text that does not fit its field is cut. Every call that sends
 * a request, one that waits for nothing too, returns what keeps it from the wire: 19 when it does not fit its frame, is
 * no UTF-8, or has a number that is not finite or beyond 32 bits in the unit of the wire (2147 m, 2147483 degrees); 6
 * when the transmit queue is full, 2 after ZK_API_UnInit, 5, 18 and ZK_LOST. Connections of Arm_Socket_Start keep their
 * behaviour; here their sockets return ZK_STALE_HANDLE.
 *
 * The statuses of these calls are below 0 (zk/status.h); ZK_Explain says what to do about one.
 */
#ifndef ZK_CONTROL_H
#define ZK_CONTROL_H

#include <stdint.h>

#include "zk/arm_model.h"
#include "zk/connection.h"
#include "zk/realtime.h"
#include "zk/status.h"

/* --------------------------------------------------------------------------------------------- Connect and close -- */

typedef enum ZK_ConnectFlag {
    ZK_STOP_AT_EXIT = 1, /* stop the arm when the process exits, or ends by SIGINT, SIGTERM or SIGHUP */
    ZK_KEEP_MODEL = 2    /* leave the process-wide model of zk/model.h as it is */
} ZK_ConnectFlag;

/* Options of a connection. All zero is the default of each. */
typedef struct ZK_ConnectOptions {
    int32_t timeout_ms;   /* over name resolution, connecting and the start-up; 0: 5000 */
    int32_t arm_mode;     /* as for ZK_API_Init; 0: the controller's own */
    int32_t heartbeat_ms; /* period of a query that changes nothing, 20 or more; three unanswered mean lost; 0: none */
    uint32_t flags;       /* of ZK_ConnectFlag */
    int32_t reserved[4];  /* 0 */
} ZK_ConnectOptions;

/*
 * Connects to a controller and loads the data of its arm. Starts the library if nobody did. The process-wide model
 * becomes this arm's, as with Arm_Socket_Start, unless ZK_KEEP_MODEL is set; ZK_Arm_Model always has this arm's own.
 * If the controller pushes its state, ZK_Get_State reads it. Several threads may connect at once, and none
 * waits for another's controller; without ZK_KEEP_MODEL it waits for a start-up of Arm_Socket_Start, within its time
 * limit.
 *
 * host: name or address, IPv4 or IPv6. port: 1 to 65535. options: null for the defaults. arm: the handle, above
 * ZK_LARGEST_STATUS; 0 on failure.
 *
 * Returns 0; 19 for a bad argument; -1 when all 20 connections are taken; ZK_UNKNOWN_HOST; ZK_CONNECTION_REFUSED;
 * ZK_NO_ROUTE; ZK_NO_ANSWER when the time limit passed; ZK_LOST when the controller closed during the start-up;
 * ZK_NO_CONTROLLER when what answers is no controller of this family; ZK_WRONG_JOINT_COUNT; 4 when the system has no
 * socket left; ZK_NO_MEMORY; 7 when a callback for the slot's last connection does not return. ZK_Failure says more. A
 * failure leaves other connections, the model and every descriptor as they were. Any thread, not in callbacks.
 */
ZK_API int ZK_Connect(const char* host, int32_t port, const ZK_ConnectOptions* options, ArmSocket* arm);

/*
 * Closes this connection alone. Calls that wait on it return 5. Callbacks that concern it have ended when the call
 * returns, unless it is called inside one. Returns 0 or ZK_STALE_HANDLE. Any thread, also in callbacks.
 */
ZK_API int ZK_Close(ArmSocket arm);

/* Closes all connections of ZK_Connect. Returns how many. */
ZK_API int ZK_Close_All(void);

/* What the last call of this header that failed on the calling thread has to say: names, numbers, the system's own
 * error, or the text of its status. ZK_Cancel and ZK_Explain say nothing. Valid until the thread's next call; "" before
 * the first failure. */
ZK_API const char* ZK_Failure(void);

/* A new model of the arm as its controller described it at the start-up. Free it with ZK_Model_Free. Returns null for
 * a stale handle, an arm without geometry, or without memory. Any thread. */
ZK_API ZK_Model* ZK_Arm_Model(ArmSocket arm);

/* ---------------------------------------------------------------------------------------------- Cancel and bound -- */

/*
 * Ends the blocking calls in progress on this connection, in all threads, within 20 ms with ZK_CANCELLED. The arm goes
 * on with what it does. Returns 0 or ZK_STALE_HANDLE. Any thread, also in callbacks and in signal handlers.
 */
ZK_API int ZK_Cancel(ArmSocket arm);

typedef enum ZK_DeadlineFlag {
    ZK_ALL_THREADS = 1,     /* for the calls of all threads; otherwise for those of the calling thread */
    ZK_STOP_AT_DEADLINE = 2 /* stop the arm when a call ends by its deadline */
} ZK_DeadlineFlag;

/*
 * Bounds every blocking call on this connection that begins from now on, the waits for the end of a motion included:
 * it returns ZK_DEADLINE after ms milliseconds. 0 removes the bound. With a bound for the thread and one for all, the
 * earlier one holds. Returns 0, 19 for a negative time, or ZK_STALE_HANDLE. Any thread.
 */
ZK_API int ZK_Set_Deadline(ArmSocket arm, int32_t ms, uint32_t flags);

/* ---------------------------------------------------------------------------------------------------------- Stop -- */

typedef enum ZK_StopKind {
    ZK_STOP = 0,           /* brake at the acceleration limit; the motion and those queued are dropped */
    ZK_SLOW_STOP = 1,      /* brake gently; the same */
    ZK_PAUSE = 2,          /* halt on the path; Move_Continue_Cmd goes on */
    ZK_EMERGENCY_STOP = 3, /* ZK_STOP, then power off: the brakes hold the arm */
    ZK_DROP_QUEUED = 256   /* added to a kind: frames of this arm that still wait in the library are dropped */
} ZK_StopKind;

/*
 * Writes the stop at once, ahead of every queued frame of any arm, and does not wait for the reply. While a file is
 * sent on this connection, the stop goes out on a second connection to the same controller, which takes up to a second
 * when the controller does not accept it.
 *
 * Returns 0 when the system took the bytes; 6 when it did not, since the controller does not read; 19 for another
 * kind; ZK_LOST; ZK_STALE_HANDLE. Any thread, also in callbacks.
 */
ZK_API int ZK_Stop(ArmSocket arm, int kind);

/* ------------------------------------------------------------------------------------------------------- Waiting -- */

/*
 * Waits until the motions of the arm have ended that were started on this connection without waiting (the non-blocking
 * forms of zk/motion.h, but for joined ones). May be called again after 7, and from several threads. Reports do not say
 * which motion has ended: that of a program or a replay on this controller counts as one of these motions.
 *
 * Returns 0 when the last of them arrived; 1 when it was refused, or ended before its target; 7 after ms milliseconds;
 * 14 when none was started, or the arm is idle and no report came; 19 when ms is not above 0; the statuses of a
 * blocking call. Once they have ended it returns the same again until the next motion. Application threads.
 */
ZK_API int ZK_Wait_Move(ArmSocket arm, int32_t ms);

/* Waits until the controller reports no motion; it is asked every 100 ms. Returns 0; 7 after ms milliseconds; 19 when
 * they are not above 0; the statuses of a blocking call. Application threads. */
ZK_API int ZK_Wait_Idle(ArmSocket arm, int32_t ms);

/* The end of a program. */
typedef struct ZK_ProgramOutcome {
    int32_t program;   /* id of the program that was seen running last, 0 for none */
    int32_t line;      /* the line it was seen at last, as the controller counts */
    int32_t run_state; /* ZK_ProgramState (zk/programs.h) at the end of the wait */
} ZK_ProgramOutcome;

/* Waits until no program runs; a paused one runs. The controller is asked every 100 ms. Returns 0; 7 after ms
 * milliseconds; 19 when they are not above 0; the statuses of a blocking call. outcome, which may be null, is filled
 * with 0 and 7. Application threads. */
ZK_API int ZK_Wait_Program(ArmSocket arm, int32_t ms, ZK_ProgramOutcome* outcome);

/*
 * How far the running motion is: the share of the straight way of the joints from start to target, 0 to 1; 1 when the
 * arm is at rest. The start is where the arm stood still last, or the target of the motion before when it did not stand
 * still. Asks the controller for the target, which it reports for joint motions alone.
 *
 * Returns 0; ZK_NO_STATE when the last real-time record is older than a second or there is none, and for motions of
 * another kind; the statuses of a blocking query. Application threads.
 */
ZK_API int ZK_Move_Progress(ArmSocket arm, float* share);

/* --------------------------------------------------------------------------------------------------------- State -- */

/* The last real-time record of an arm. */
typedef struct ZK_State {
    RobotStatus status;     /* errCode is 0 and arm_ip null */
    int32_t joint_count;    /* values in each array of joints */
    uint32_t sequence;      /* datagrams of this arm so far */
    int64_t host_ns;        /* CLOCK_MONOTONIC when it was received */
    double age_ms;          /* since then */
    int64_t controller_ms;  /* the controller's own time of the record, -1 when it sends none */
    double clock_offset_ms; /* host time minus controller time, the smallest of the last 256 records: that of the
                               datagram that travelled fastest; 0 when it sends none */
} ZK_State;

/*
 * Copies the last record of this arm, never half a datagram, and never waits. A datagram that cannot be read changes
 * nothing. A datagram belongs to the arm whose controller has the sender's address and pushes to the port that it came
 * to; where two connections share both, to the one in the lower slot. The port is the one that the controller named at
 * the start-up. While something else holds it on this host, the listener of Arm_Socket_Start for example, there is no
 * state, and the log says so.
 *
 * max_age_ms: 0 for any age. Returns 0; ZK_NO_STATE before the first record; ZK_STATE_TOO_OLD, the record copied all
 * the same; 19 for null or a negative age; ZK_STALE_HANDLE. Any thread, also in callbacks.
 */
ZK_API int ZK_Get_State(ArmSocket arm, ZK_State* state, int32_t max_age_ms);

/* How many records of each arm ZK_Get_State_After can go back: a third of a second at the fastest cycle. */
#define ZK_STATES_KEPT 64

/*
 * Copies the record that came after the one with this sequence number, so that a reader sees each of them: 0 at first,
 * then the sequence of the last one. When that is no longer kept, the oldest that is; the sequence tells the gap. Never
 * waits.
 *
 * Returns 0; ZK_NO_STATE when none has come since; 19 for null; ZK_STALE_HANDLE. Any thread, also in callbacks.
 */
ZK_API int ZK_Get_State_After(ArmSocket arm, uint32_t sequence, ZK_State* state);

/* --------------------------------------------------------------------------------------- Looking at a connection -- */

typedef enum ZK_ConnectionState {
    ZK_CONNECTION_CLOSED, /* by ZK_Close; or there never was such a handle */
    ZK_CONNECTION_UP,
    ZK_CONNECTION_LOST /* the controller closed, reset, or fell silent; ZK_Close frees it */
} ZK_ConnectionState;

typedef struct ZK_ConnectionRecord {
    int32_t state;    /* ZK_ConnectionState */
    char cause[96];   /* why it was lost; "" before */
    char host[64];    /* as given to ZK_Connect, cut to fit */
    char address[48]; /* of the peer */
    int32_t port;
    int32_t arm_mode;
    int32_t joint_count;
    int32_t model; /* as libalgo_set_robot_and_sensor_type */
    int32_t sensor;
    int64_t frames_sent;
    int64_t bytes_sent;
    int64_t messages_received;
    int64_t bytes_received;
    int64_t unmatched;           /* messages of no known kind */
    int64_t dropped;             /* frames and messages that did not reach their reader */
    int64_t late;                /* calls that ended in 7: their reply came later or never */
    int64_t datagrams;           /* of this arm's stream */
    int64_t datagrams_dropped;   /* on its port, of all senders: from no arm of ours, or not readable */
    double round_trip_last_ms;   /* from queueing a request to its reply; 0 before the first */
    double round_trip_median_ms; /* of the last 64 */
    double round_trip_worst_ms;  /* of all */
} ZK_ConnectionRecord;

/* Fills the record. Returns 0, 19 for null, or ZK_STALE_HANDLE with the state closed. Never blocks. Any thread. */
ZK_API int ZK_Connection(ArmSocket arm, ZK_ConnectionRecord* record);

/* Called once at every change: up, lost, closed. cause is valid during the call. The receive thread calls it for lost,
 * unless ZK_Close comes first; the thread of ZK_Connect and ZK_Close for the others. It may call what is allowed in
 * callbacks. */
typedef void (*ZK_ConnectionCallback)(void* context, ArmSocket arm, ZK_ConnectionState state, const char* cause);

/* Sets the callback of all connections; null removes it. The previous one does not run any more when the call returns,
 * unless it is called inside it. Any thread. */
ZK_API void ZK_Set_Connection_Callback(ZK_ConnectionCallback callback, void* context);

/* ----------------------------------------------------------------------------------------------------------- Log -- */

typedef enum ZK_LogLevel {
    ZK_LOG_EVENTS = 1, /* connections: up, lost, closed, stopped, cancelled, deadlines, what was dropped and why */
    ZK_LOG_FRAMES = 2  /* also every frame, both ways */
} ZK_LogLevel;

/* text: one line without its end. arm: 0 for what concerns no connection. Runs on the thread that has something to say,
 * never under a lock of the library; several threads may call at once. */
typedef void (*ZK_LogCallback)(void* context, ZK_LogLevel level, ArmSocket arm, const char* text);

/* Sets the log and its finest level; null, the default, is silence. The previous callback does not run any more when
 * the call returns, unless it is called inside it. Any thread. */
ZK_API void ZK_Set_Log(ZK_LogCallback callback, void* context, ZK_LogLevel level);

/* -------------------------------------------------------------------------------------------------- Explanations -- */

typedef enum ZK_GoOn {
    ZK_GO_ON,      /* the program may go on */
    ZK_RETRY,      /* the same call may succeed later */
    ZK_MEND_FIRST, /* after the remedy */
    ZK_MUST_NOT    /* the arm needs a person */
} ZK_GoOn;

typedef struct ZK_Advice {
    const char* cause; /* what happened */
    ZK_GoOn go_on;
    const char* remedy; /* the call or the act that mends it; "" when nothing needs to be done */
} ZK_Advice;

/*
 * Explains a result: of a call (a status), of a streamed set-point (the result of an ArmMotionReport of type 1 or 2),
 * or the error words of arm and system in a state. The first that is not 0 is explained: status, then arm_err, then
 * sys_err. The numbers of the words are the controller's own; the advice says how to find and clear an error.
 *
 * Returns 0; 19 for null; ZK_UNKNOWN_CODE with an advice that says so. Texts are constant. Any thread, also in
 * callbacks.
 */
ZK_API int ZK_Explain(int status, uint16_t arm_err, uint16_t sys_err, ZK_Advice* advice);

#endif
