/*
 * Drag teaching: an operator guides the arm by hand while the controller records the path. The recording can be
 * replayed, paused, continued and stopped, and the arm brought back to its start. zk/status.h describes the forms and
 * their statuses; these commands test no pointer.
 */
#ifndef ZK_DRAG_TEACH_H
#define ZK_DRAG_TEACH_H

#include <stdbool.h>

#include "zk/connection.h"

/* How the arm gives way to the hand; the numbers are the controller's. */
typedef struct MultiDragTeachParam {
    int32_t free_axes[6];  /* x, y, z, rx, ry, rz: 1 where the arm gives way, 0 where it holds */
    int32_t frame;         /* of those axes */
    int32_t singular_wall; /* 1 to keep the hand from leading the arm into a singularity */
} MultiDragTeachParam;

ZK_STATIC_ASSERT(sizeof(MultiDragTeachParam) == 32 && offsetof(MultiDragTeachParam, frame) == 24,
                 "layout of MultiDragTeachParam");

/* ----------------------------------------------------------------------------------------------------- Recording -- */

/* Lets the arm be dragged, and records it until Stop_Drag_Teach. */
ZK_API int Start_Drag_Teach(ArmSocket socket, bool block);
ZK_API int Start_Drag_Teach_Block(ArmSocket socket);
ZK_API int Start_Drag_Teach_NonBlock(ArmSocket socket);

/* Ends the dragging; the recording stays in the controller. */
ZK_API int Stop_Drag_Teach(ArmSocket socket, bool block);
ZK_API int Stop_Drag_Teach_Block(ArmSocket socket);
ZK_API int Stop_Drag_Teach_NonBlock(ArmSocket socket);

/*
 * Let the arm be dragged in one of the controller's modes, or along the axes of a record. Stop_Drag_Teach ends both.
 * singular_wall: as in the record. The second has no non-blocking form.
 */
ZK_API int Start_Multi_Drag_Teach(ArmSocket socket, int32_t mode, int32_t singular_wall, bool block);
ZK_API int Start_Multi_Drag_Teach_Block(ArmSocket socket, int32_t mode, int32_t singular_wall);
ZK_API int Start_Multi_Drag_Teach_NonBlock(ArmSocket socket, int32_t mode, int32_t singular_wall);
ZK_API int Start_Multi_Drag_Teach_New(ArmSocket socket, MultiDragTeachParam param);
ZK_API int Start_Multi_Drag_Teach_New_Block(ArmSocket socket, MultiDragTeachParam param);

/* Set, and ask for, how readily the arm gives way; the grade is the controller's. The setter waits m_nOutTime_max. The
 * pointer may not be null. */
ZK_API int Set_Drag_Teach_Sensitivity(ArmSocket socket, int32_t grade);
ZK_API int Set_Drag_Teach_Sensitivity_Block(ArmSocket socket, int32_t grade);

ZK_API int Get_Drag_Teach_Sensitivity(ArmSocket socket, int32_t* grade);
ZK_API int Get_Drag_Teach_Sensitivity_Block(ArmSocket socket, int32_t* grade);

/* -------------------------------------------------------------------------------------------------------- Replay -- */

/*
 * Replays the recording.
 *
 * The blocking form asks every 10 ms what the arm is doing. It ends with the controller's reply, 0 or 1, looked at
 * while the arm replays or does nothing; with 7 when the arm does nothing and more than m_nOutTime + 29999 ms have
 * passed since sending; with 5 when the connection is closed. While the arm replays it waits without limit: stop the
 * replay from another thread to end it.
 */
ZK_API int Run_Drag_Trajectory(ArmSocket socket, bool block);
ZK_API int Run_Drag_Trajectory_Block(ArmSocket socket);
ZK_API int Run_Drag_Trajectory_NonBlock(ArmSocket socket);

/* Halt the replay on its path, go on with it, and end it. Any thread, also while another waits for the replay. */
ZK_API int Pause_Drag_Trajectory(ArmSocket socket, bool block);
ZK_API int Pause_Drag_Trajectory_Block(ArmSocket socket);
ZK_API int Pause_Drag_Trajectory_NonBlock(ArmSocket socket);

ZK_API int Continue_Drag_Trajectory(ArmSocket socket, bool block);
ZK_API int Continue_Drag_Trajectory_Block(ArmSocket socket);
ZK_API int Continue_Drag_Trajectory_NonBlock(ArmSocket socket);

ZK_API int Stop_Drag_Trajectory(ArmSocket socket, bool block);
ZK_API int Stop_Drag_Trajectory_Block(ArmSocket socket);
ZK_API int Stop_Drag_Trajectory_NonBlock(ArmSocket socket);

/*
 * Brings the arm to where the recording begins.
 *
 * The blocking form waits for the report of the motion, in Move_Cmd: its status (0 arrived, 1 not), 12 when another
 * device reports, 14 when the arm stands still (no joint by more than 0.1 degrees between two looks) for m_nOutTime_max
 * and some looks more, 5 when the connection is closed, or, after more than six failed readings of the joints, their
 * status. The controller's acknowledgement goes to Drag_Trajectory_Origin_Cmd, which nothing here waits for; its parser
 * gives 0, 1, 9 or 11 for "trajectory_state", and on 0 stores the device if the reply tells one.
 */
ZK_API int Drag_Trajectory_Origin(ArmSocket socket, bool block);
ZK_API int Drag_Trajectory_Origin_Block(ArmSocket socket);
ZK_API int Drag_Trajectory_Origin_NonBlock(ArmSocket socket);

#endif
