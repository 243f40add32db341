/* Replies: motion, teaching and streamed set-points. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_MOTION_H
#define ZK_REPLIES_MOTION_H

#include "zk/force_position.h"
#include "zk/mailboxes.h"
#include "zk/motion.h"
#include "zk/streaming.h"
#include "zk/teach.h"

/* The acknowledgement of a move. `move_type`: 1 movej, 2 movel, 3 movec, 0 movej_p, 5 moves. */
typedef struct MoveAcknowledgement {
    int32_t count;
    int32_t result;
    int32_t move_type;
} MoveAcknowledgement;

/* The report that a motion has ended. `device`: 0 the arm, 1 gripper, 2 hand, 3 lift, 4 expansion axis. */
typedef struct MoveReport {
    int32_t count;
    int32_t result; /* 0 arrived, 1 ended before its target */
    int32_t device;
    int32_t trajectory_connect; /* -1 when the report has none */
} MoveReport;

ZK_API MoveAcknowledgement Move_Receive_Cmd[ZK_SLOTS];
ZK_API MoveReport Move_Cmd[ZK_SLOTS];
ZK_API int Parser_Receive_State(const char* text, int32_t* move_type);
ZK_API int Parser_Plan_Feedback(const char* text, int32_t* device, int32_t* trajectory_connect);

/*
 * Reads a report of streamed joint or pose set-points into the pose, the joints (six, and a seventh on a seven-joint
 * connection) and the error word, all unscaled. Returns the error word, or 9 when the text is not JSON or lacks it.
 */
ZK_API int Parser_Movej_CANFD(ArmSocket socket, const char* text, Pose* pose, float* joint, uint16_t* arm_err);

ZK_API AckReply Start_Force_Position_Move_Cmd[ZK_SLOTS];
ZK_API AckReply Stop_Force_Position_Move_Cmd[ZK_SLOTS];

/*
 * Reads a report into the joints, the forces of all directions (of both six, and a seventh on a seven-joint
 * connection, unscaled), the force along the controlled direction (the controller's number divided by 10) and the error
 * word. Returns 0; 9 when the text is not JSON or lacks "state"; 11 when the joints are no array. Any thread.
 */
ZK_API int Parser_Force_Position_Move(ArmSocket socket, const char* text, float* joint, float* all_direction_force,
                                      int32_t* force, uint16_t* arm_err);

ZK_API AckReply Joint_Teach_Cmd_Cmd[ZK_SLOTS];
ZK_API int Parser_Joint_Teach(const char* text);
ZK_API AckReply Pos_Teach_Cmd_Cmd[ZK_SLOTS];
ZK_API int Parser_Pos_Teach(const char* text);
ZK_API AckReply Ort_Teach_Cmd_Cmd[ZK_SLOTS];
ZK_API int Parser_Ort_Teach(const char* text);
ZK_API AckReply Teach_Stop_Cmd_Cmd[ZK_SLOTS];
ZK_API int Parser_Teach_Stop(const char* text);

#endif
