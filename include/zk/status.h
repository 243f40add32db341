/*
 * Status codes, and what the commands share.
 *
 * A command has up to three forms. <name> refuses to run during a file transfer (18) or with a null pointer (19), then
 * calls one of the others: by its flag `block`, or the blocking form where it has no flag. <name>_Block queues the
 * request, waits for the controller's reply and returns its status. <name>_NonBlock queues the request and returns 0;
 * the reply stays in its mailbox. The last two test neither the file transfer nor pointers.
 *
 * A blocking form returns 0; 1 when the controller refused; 5 when the socket is not an open connection, or was closed
 * during the wait; 7 when no reply came within m_nOutTime; 8 to 11 when the reply is broken: no JSON, a key missing, an
 * array of another size, a value of another type. After 7 the command may still be executed: the request was sent, only
 * the reply is late or lost. A query writes its outputs even if the reply is broken, with what the parser read before
 * it failed.
 *
 * "No reply": for some commands the reply never reaches the caller, although the controller executes them. Their
 * blocking forms return 7 after m_nOutTime, 6 when the request could not be written, or 20 with 200 replies pending.
 * Use their non-blocking forms, which return 0. Their plain names wait 20 ms first.
 *
 * "Zeroes the first record": after such a query the mailbox record of the first connection is set to zero, whichever
 * connection asked. A reply that waited there for another thread is lost.
 *
 * Statuses below -9 come from the calls of zk/control.h, and from every call on a connection that those calls opened.
 *
 * The headers of the families say only what differs. Call all of this on application threads, not in callbacks, and
 * make one blocking call at a time on a connection.
 *
 * One list defines the names, the numbers and the texts of the statuses.
 */
#ifndef ZK_STATUS_H
#define ZK_STATUS_H

#include "zk/export.h"

/* clang-format off */
#define ZK_STATUS_LIST(X) \
    X(ZK_OK,                    0, "success") \
    X(ZK_REFUSED,               1, "the controller refused the command, or a motion ended before its target") \
    X(ZK_NOT_RUNNING,           2, "the library's threads do not run: call ZK_API_Init first") \
    X(ZK_NO_SOCKET,             4, "no TCP socket could be created") \
    X(ZK_NOT_CONNECTED,         5, "no connection: it was refused, the socket is not an open arm connection, or the controller does not answer") \
    X(ZK_SEND_FAILED,           6, "the request could not be written to the socket") \
    X(ZK_TIMEOUT,               7, "no reply within the time limit") \
    X(ZK_NOT_BOOLEAN,           8, "the reply's acknowledgement or data are missing or of the wrong type, or there is no such command on the wire") \
    X(ZK_BAD_REPLY,             9, "the reply is not valid JSON, or a key is missing") \
    X(ZK_WRONG_SIZE,           10, "an array in the reply has the wrong number of elements") \
    X(ZK_WRONG_TYPE,           11, "a value in the reply, or an argument's kind, is of the wrong type") \
    X(ZK_OTHER_DEVICE,         12, "the finish report names another device") \
    X(ZK_NO_TRAJECTORY,        14, "the arm is idle, and no finish report came") \
    X(ZK_PATH_TOO_LONG,        15, "the path is too long") \
    X(ZK_BAD_PATH,             16, "the path has no separator, or the controller rejected the file") \
    X(ZK_FILE_UNREADABLE,      17, "the file could not be opened or read") \
    X(ZK_SENDING_FILE,         18, "a file transfer holds the line") \
    X(ZK_BAD_ARGUMENT,         19, "a required pointer is null, or a value is not finite or out of its range") \
    X(ZK_LIST_FULL,            20, "the list of pending replies is full") \
    X(ZK_NO_SOLUTION,          21, "the inverse kinematics has no solution") \
    X(ZK_FILE_NOT_CREATED,     22, "the local file for the recording could not be created") \
    X(ZK_NOTHING_SAVED,        24, "the controller has no recorded points to save") \
    X(ZK_NO_STREAM,            25, "the real-time stream could not be set up, or no state has come") \
    X(ZK_TABLE_FULL,           -1, "all connections are taken, or the mounting angles read back differ") \
    X(ZK_BAD_FILE_NAME,        -4, "the path has no '/'") \
    X(ZK_CANCELLED,           -10, "the call was cancelled") \
    X(ZK_DEADLINE,            -11, "the deadline of the connection passed during the call") \
    X(ZK_LOST,                -12, "the connection is lost: the controller closed or reset it, or fell silent") \
    X(ZK_STALE_HANDLE,        -13, "the handle is none of an open connection of ZK_Connect") \
    X(ZK_BUSY,                -14, "a call of another thread on this connection excludes this one") \
    X(ZK_UNKNOWN_HOST,        -15, "the host name has no address") \
    X(ZK_CONNECTION_REFUSED,  -16, "the host refused the connection: nothing listens on the port") \
    X(ZK_NO_ROUTE,            -17, "the system knows no way to the address") \
    X(ZK_NO_ANSWER,           -18, "no answer within the time limit of the connection") \
    X(ZK_NO_CONTROLLER,       -19, "what answers is no controller of this family") \
    X(ZK_WRONG_JOINT_COUNT,   -20, "the controller's arm has another number of joints than the arm mode") \
    X(ZK_NO_STATE,            -21, "no real-time record of the arm has come") \
    X(ZK_STATE_TOO_OLD,       -22, "the last real-time record of the arm is older than asked for") \
    X(ZK_UNKNOWN_CODE,        -23, "the code is unknown") \
    X(ZK_NO_MEMORY,           -24, "there is not enough memory")
/* clang-format on */

typedef enum ZK_Status {
#define X(name, number, text) name = number,
    ZK_STATUS_LIST(X)
#undef X
} ZK_Status;

/* The largest status. Descriptors of arm connections are larger. */
#define ZK_LARGEST_STATUS 25

/* The cause of a status as one English sentence without a full stop; "unknown status" for a number of no meaning
 * here (a controller error number, say). The text is constant. Any thread. */
ZK_API const char* ZK_Status_Text(int status);

#endif
