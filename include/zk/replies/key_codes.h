/*
 * Key codes of messages (Get_Json_KeyCode) that an application meets: those of the reports that come unasked, and those
 * in the records of SockeRIinfos.
 */
#ifndef ZK_REPLIES_KEY_CODES_H
#define ZK_REPLIES_KEY_CODES_H

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

#endif
