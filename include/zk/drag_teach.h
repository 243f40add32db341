/*
 * Drag teaching: an operator guides the arm by hand while the controller records the path. The recording can be
 * replayed, paused, continued and stopped, and the arm brought back to its start. zk/status.h describes the forms and
 * their statuses; these commands test no pointer.
 */
#ifndef ZK_DRAG_TEACH_H
#define ZK_DRAG_TEACH_H

#include <stdbool.h>

#include "zk/connection.h"

/* How the arm yields to the hand; the controller defines the numbers. */
typedef struct MultiDragTeachParam {
    int32_t free_axes[6];  /* x, y, z, rx, ry, rz: 1 where the arm yields, 0 where it holds */
    int32_t frame;         /* of those axes */
    int32_t singular_wall; /* 1 to keep the hand from pushing the arm into a singularity */
} MultiDragTeachParam;

ZK_STATIC_ASSERT(sizeof(MultiDragTeachParam) == 32 && offsetof(MultiDragTeachParam, frame) == 24,
                 "layout of MultiDragTeachParam");

/* ----------------------------------------------------------------------------------------------------- Recording -- */

/* Starts dragging and records the path until Stop_Drag_Teach. */
ZK_API int Start_Drag_Teach(ArmSocket socket, bool block);
ZK_API int Start_Drag_Teach_Block(ArmSocket socket);
ZK_API int Start_Drag_Teach_NonBlock(ArmSocket socket);

/* Ends dragging; the recording stays in the controller. */
ZK_API int Stop_Drag_Teach(ArmSocket socket, bool block);
ZK_API int Stop_Drag_Teach_Block(ArmSocket socket);
ZK_API int Stop_Drag_Teach_NonBlock(ArmSocket socket);

/* Start dragging in one of the controller's modes, or along the axes of a record. Stop_Drag_Teach ends both.
 * singular_wall: as in the record. The second has no non-blocking form. */
ZK_API int Start_Multi_Drag_Teach(ArmSocket socket, int32_t mode, int32_t singular_wall, bool block);
ZK_API int Start_Multi_Drag_Teach_Block(ArmSocket socket, int32_t mode, int32_t singular_wall);
ZK_API int Start_Multi_Drag_Teach_NonBlock(ArmSocket socket, int32_t mode, int32_t singular_wall);
ZK_API int Start_Multi_Drag_Teach_New(ArmSocket socket, MultiDragTeachParam param);
ZK_API int Start_Multi_Drag_Teach_New_Block(ArmSocket socket, MultiDragTeachParam param);

/* Set and query the sensitivity of dragging; the controller defines the grades. The setter waits m_nOutTime_max. The
 * pointer may not be null. */
ZK_API int Set_Drag_Teach_Sensitivity(ArmSocket socket, int32_t grade);
ZK_API int Set_Drag_Teach_Sensitivity_Block(ArmSocket socket, int32_t grade);

ZK_API int Get_Drag_Teach_Sensitivity(ArmSocket socket, int32_t* grade);
ZK_API int Get_Drag_Teach_Sensitivity_Block(ArmSocket socket, int32_t* grade);

/* -------------------------------------------------------------------------------------------------------- Replay -- */

/*
 * Replays the recording.
 *
 * The blocking form polls the arm every 10 ms. It returns the controller's reply, 0 or 1, that came while the arm
 * replays or is idle; 7 when the arm is idle and more than m_nOutTime + 29999 ms have passed since the request; 5 when
 * the connection was closed. While the arm replays it waits without limit: stop the replay from another thread to end
 * it.
 */
ZK_API int Run_Drag_Trajectory(ArmSocket socket, bool block);
ZK_API int Run_Drag_Trajectory_Block(ArmSocket socket);
ZK_API int Run_Drag_Trajectory_NonBlock(ArmSocket socket);

/* Pause, continue and stop the replay. Any thread, also while another waits for the replay. */
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
 * Moves the arm to the start of the recording.
 *
 * The blocking form waits for the report of the motion in Move_Cmd: its status (0 arrived, 1 not); 12 another device
 * reported; 14 no joint moved by more than 0.1 degrees between two polls for m_nOutTime_max and some polls more; 5 the
 * connection was closed; after more than six failed polls of the joints, their status. Nothing waits for the
 * acknowledgement, which stays in Drag_Trajectory_Origin_Cmd.
 */
ZK_API int Drag_Trajectory_Origin(ArmSocket socket, bool block);
ZK_API int Drag_Trajectory_Origin_Block(ArmSocket socket);
ZK_API int Drag_Trajectory_Origin_NonBlock(ArmSocket socket);

#endif
