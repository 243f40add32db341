/*
 * The list of pending replies, and the key codes of messages. The receive thread never marks a record of the list as
 * arrived, so a command that waits on it ends in 7. An application needs none of this.
 */
#ifndef ZK_REPLIES_PENDING_H
#define ZK_REPLIES_PENDING_H

#include <stddef.h>
#include <stdint.h>

#include "zk/export.h"

/* Key codes (Get_Json_KeyCode) of the reports that come unasked and of the records of SockeRIinfos. */
typedef enum ZK_KeyCode {
    ZK_KEY_UNKNOWN = 0,
    ZK_KEY_START_CALIBRATE = 9,
    ZK_KEY_STOP_CALIBRATE = 10,
    ZK_KEY_CALIBRATE_STATE = 11,
    ZK_KEY_SYSTEM_SERVO = 36,
    ZK_KEY_ARRIVAL = 64,      /* the report that a motion has ended */
    ZK_KEY_JOINT_REPORT = 65, /* on streamed joints */
    ZK_KEY_POSE_REPORT = 66,  /* on streamed poses */
    ZK_KEY_ADD_WAYPOINT = 73,
    ZK_KEY_START_WAYPOINT = 74,
    ZK_KEY_CLEAR_WAYPOINT = 75,
    ZK_KEY_STOP_WAYPOINT = 76,
    ZK_KEY_TIMER = 77,
    ZK_KEY_HARDWARE_VERSION = 89,
    ZK_KEY_LOG_FILE = 91,
    ZK_KEY_PWM = 132,
    ZK_KEY_VEHICLE = 147,
    ZK_KEY_LIFT = 148,
    ZK_KEY_LIFT_SPEED = 149,
    ZK_KEY_CAR_MOVE = 152,
    ZK_KEY_CAR_STATION = 153,
    ZK_KEY_CAR_NAVIGATION_SPEED = 154,
    ZK_KEY_CAR_NAVIGATION_MODE = 155,
    ZK_KEY_CAR_STATE = 156,
    ZK_KEY_CAR_CHARGE = 157,
    ZK_KEY_CAR_STATION_NUM = 158,
    ZK_KEY_FORCE_REPORT = 161, /* on force-position moves */
    ZK_KEY_MOVE_ACKNOWLEDGEMENT = 189,
    ZK_KEY_DRAG_POINT = 231, /* a recorded point */
    ZK_KEY_PROGRAM_END = 240,
} ZK_KeyCode;

/* A reply that a call expects, on the list SockeRIinfos. */
typedef struct PendingReply {
    int32_t socket;
    char reply_text[300];
    int32_t key_code;
    int32_t arrived;
    int32_t in_use;
} PendingReply;

ZK_STATIC_ASSERT(sizeof(PendingReply) == 316 && offsetof(PendingReply, key_code) == 304, "layout of PendingReply");

ZK_API PendingReply SockeRIinfos[200]; /* the pending replies */
ZK_API int32_t m_nSockeRIinfosLen;     /* how many of them are in use */

/* Fills record `index` of a pending list, its text cleared. Returns 0, or 20 for an index above 199. The caller holds
 * m_hMutex and raises the count. */
ZK_API int Add_List(PendingReply* list, int32_t index, int32_t socket, int32_t key_code, int32_t arrived,
                    int32_t in_use);

/* Removes record `index` of a list of *count records and moves the later ones down; a list of one record is cleared
 * whatever the index. Takes m_hMutex. */
ZK_API void ClearList(PendingReply* list, int32_t* count, int32_t index);

#endif
