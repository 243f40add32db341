/*
 * The local kinematics as applications use it: the Algo_ functions compute on this host, with the model of the arm that
 * the start-up of a connection loads, or that Algo_Init_Sys_Data selects where there is no controller.
 *
 * Joint angles, joint limits and mounting angles are degrees here, speeds revolutions per minute (30 is 180 degrees per
 * second); a Pose and a FrameRec are metres and radians. The layers below (zk/model.h, zk/kinematics.h) use radians.
 *
 * Arrays of joints hold one value for each joint of the model's arm. One model serves every connection of the process,
 * and nothing is locked: set the model up, and compute with it, from one thread at a time. The conversions of poses
 * touch no model and may run on any thread.
 */
#ifndef ZK_ALGORITHM_H
#define ZK_ALGORITHM_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <sys/time.h>

#include "zk/export.h"
#include "zk/transform_types.h"

/* ----------------------------------------------------------------------------------------------------- The model -- */

/* Version of the algorithm layer, "1.4.8". The text is constant. Any thread. */
ZK_API const char* Algo_Version(void);

/*
 * Selects the arm, see libalgo_set_robot_and_sensor_type for the numbers, and discards everything that was set before:
 * frames, mounting angles, limits. Set those again afterwards, in that order. A pair of numbers without an arm leaves a
 * model without joints.
 */
ZK_API void Algo_Init_Sys_Data(int model, int sensor);

/* Mounting angles of the base, degrees: rotations about the fixed x, y, z of the world. The getter does nothing unless
 * all three pointers are non-null. */
ZK_API void Algo_Set_Angle(float x, float y, float z);
ZK_API void Algo_Get_Angle(float* x, float* y, float* z);

/*
 * Tool in the flange frame, with its payload (kg) and centre of gravity (m), and work frame in the world. Read by
 * position and Euler angles. The setters also keep the pose for Algo_End2Tool and Algo_Tool2End. The getters leave the
 * name, the quaternion, and for the work frame the payload as they were. Null does nothing.
 */
ZK_API void Algo_Set_ToolFrame(const FrameRec* tool);
ZK_API void Algo_Get_Curr_ToolFrame(FrameRec* tool);
ZK_API void Algo_Set_WorkFrame(const FrameRec* work);
ZK_API void Algo_Get_Curr_WorkFrame(FrameRec* work);

/*
 * Limits of the joints: position in degrees, speed in revolutions per minute, acceleration in revolutions per minute
 * per second. The setters write 0 for joints that the arm does not have; getters and setters do nothing on null.
 */
ZK_API void Algo_Set_Joint_Max_Limit(const float* limits);
ZK_API void Algo_Get_Joint_Max_Limit(float* limits);
ZK_API void Algo_Set_Joint_Min_Limit(const float* limits);
ZK_API void Algo_Get_Joint_Min_Limit(float* limits);
ZK_API void Algo_Set_Joint_Max_Speed(const float* limits);
ZK_API void Algo_Get_Joint_Max_Speed(float* limits);
ZK_API void Algo_Set_Joint_Max_Acc(const float* limits);
ZK_API void Algo_Get_Joint_Max_Acc(float* limits);

ZK_API float angleU; /* last angles of Algo_Set_Angle, radians */
ZK_API float angleV;
ZK_API float angleH;
ZK_API Pose g_tool_pose; /* pose of the last Algo_Set_ToolFrame */
ZK_API Pose g_work_pose; /* pose of the last Algo_Set_WorkFrame */

/* -------------------------------------------------------------------------------------------- Forward kinematics -- */

/* Tool in the work frame at joint angles in degrees, mounting included: as pose, and as 4 by 4 transform. Null returns
 * a pose of ten zeros, which is no orientation. */
ZK_API Pose Algo_Forward_Kinematics(const float* joint);
ZK_API Matrix Forward_Kinematics_e(const float* joint);

/* -1 when a joint of the arm is outside its limits (degrees), else 0; NaN is not outside. A value at its very limit may
 * count as outside, since limits are kept in radians. */
ZK_API int zk_algo_judgment_overpos(const float* joint);

/* -------------------------------------------------------------------------------------------- Inverse kinematics -- */

/* The arguments of Algo_Inverse_Kinematics as one record. */
typedef struct InverseKinematicsCall {
    const float* seed; /* degrees */
    const Pose* pose;  /* metres, radians */
    float joint[7];    /* the result, degrees */
    int flag;
} InverseKinematicsCall;

ZK_STATIC_ASSERT(offsetof(InverseKinematicsCall, flag) == 2 * sizeof(void*) + 28, "layout of InverseKinematicsCall");

/*
 * Joint angles in degrees that bring the tool to a pose of the work frame. With flag 0 the pose's quaternion is its
 * orientation, with a squared norm of 0.99 to 1.01; with flag 1 its Euler angles are. A pose from a query has no
 * quaternion of its own: use flag 1, or ZK_Complete_Pose first. zk/inverse_kinematics.h says which of several solutions
 * six joints return: mostly the nearest to the seed. Seven joints search near the seed unless
 * Algo_Set_Redundant_Parameter_Traversal_Mode was called.
 *
 * Returns 0; 19 for a null seed or pose, a quaternion that is not unit, or a seed outside the joint limits; 21 when
 * there is no solution or the target is not finite, and then the content of `joint` is undefined (after a search of
 * model 1 over the whole range it is untouched). Six joints may exceed a limit by half a degree. The answer of model 1
 * is not checked against the target, see zk/seven_axis.h. The Wrap form does the same with a record; 19 for null.
 */
ZK_API int Algo_Inverse_Kinematics(const float* seed, const Pose* pose, float* joint, uint8_t flag);
ZK_API int Algo_Inverse_Kinematics_Wrap(InverseKinematicsCall* call);

/* Whether solving for seven joints searches the whole range of the free axis (true) or near the seed (false), from now
 * on. The whole range of model 1 adds no whole turn to joint 7, which then answers between -180 and 180 degrees. Before
 * the first call the search is near the seed whatever ikine_set_solution_range_zk75 says; no call restores that. */
ZK_API void Algo_Set_Redundant_Parameter_Traversal_Mode(bool whole_range);

/* ---------------------------------------------------------------------------------------------- Poses and frames -- */

/*
 * Conversions. Those of a Pose read its position and Euler angles and fill all three fields of a result. Euler angles
 * are radians, R = Rz(rz) Ry(ry) Rx(rx).
 */
ZK_API Matrix Algo_Pos2Matrix(Pose pose);
ZK_API Pose Algo_Matrix2Pos(Matrix matrix);
ZK_API Matrix Algo_Euler2Matrix(Euler euler); /* 3 by 3 */
ZK_API Quat Algo_Euler2Quaternion(Euler euler);
ZK_API Euler Algo_Quaternion2Euler(Quat quaternion);

/*
 * Fills the quaternion of *pose from its Euler angles (radians), as Algo_Euler2Quaternion does. Queries such as
 * Get_Current_Arm_State fill position and Euler angles only: complete such a pose before streaming it or solving for
 * it with flag 0. Returns 0; 19 for null. Any thread.
 */
ZK_API int ZK_Complete_Pose(Pose* pose);

/* A pose of the base frame in the work frame, and back; the matrix is the inverse of the work frame's transform, as
 * libalgo_get_work_cs_to_base_matrix returns it. */
ZK_API Pose Algo_Base2WorkFrame(Matrix work_T_base, Pose pose);
ZK_API Pose Algo_WorkFrame2Base(Matrix work_T_base, Pose pose);

/*
 * From the pose of the arm's end to that of its tool, and back, with the last frames of Algo_Set_ToolFrame and
 * Algo_Set_WorkFrame: Algo_End2Tool returns W T(pose) L, with W and L the transforms of work frame and tool, and
 * Algo_Tool2End undoes it, except for poses near the singular pitch. Note that W itself is the factor, and not its
 * inverse as elsewhere.
 */
ZK_API Pose Algo_End2Tool(Pose pose);
ZK_API Pose Algo_Tool2End(Pose pose);

/* ------------------------------------------------------------------------------------------------- Moving a pose -- */

/*
 * The pose of the tool in the work frame after a move from these joints (degrees): a straight displacement of dx, dy,
 * dz metres along the tool's axes; or a turn in place by `angle` degrees about axis 1, 2 or 3 of the frame whose
 * rotation `frame` holds (any other axis leaves the orientation). One thread at a time.
 *
 * Algo_Cartesian_Tool leaves the mounting angles out: on an arm mounted at other than 0, 0, 0 its pose is not where
 * such a move ends. Use Algo_PoseMove with frame 1 on the pose of Algo_Forward_Kinematics there.
 */
ZK_API Pose Algo_Cartesian_Tool(const float* joint, float dx, float dy, float dz);
ZK_API Pose Algo_RotateMove(const float* joint, int axis, float angle, Pose frame);

/* The pose moved by delta: x, y, z in metres and rotations about x, y, z in degrees, in the work frame (frame 0) or
 * along the tool's own axes (frame 1); see algo_pose_move. */
ZK_API Pose Algo_PoseMove(const float* delta, int frame, Pose pose);

/* ----------------------------------------------------------------------------------------------- The layer below -- */

/*
 * The model and the kinematics in the units of this header; the functions above call these. The frame and limit
 * functions do nothing on null. invoke_forward_kinematics_e returns the flange in the base, without tool, frames and
 * mounting.
 */
ZK_API void invoke_libalgo_init(void);
ZK_API int invoke_libalgo_set_robot_type(int model, int sensor); /* 0, or -1 when there is no such arm */
ZK_API void invoke_libalgo_set_tool_cs_params(const FrameRec* tool);
ZK_API void invoke_libalgo_get_tool_cs_params(FrameRec* tool);
ZK_API void invoke_libalgo_set_work_cs_params(const FrameRec* work);
ZK_API void invoke_libalgo_get_work_cs_params(FrameRec* work);
ZK_API void invoke_libalgo_set_robot_install_angle(float x, float y, float z);
ZK_API void invoke_libalgo_get_robot_install_angle(float* x, float* y, float* z);
ZK_API void invoke_libalgo_set_jointlim_max(const float* limits);
ZK_API void invoke_libalgo_get_jointlim_max(float* limits);
ZK_API void invoke_libalgo_set_jointlim_min(const float* limits);
ZK_API void invoke_libalgo_get_jointlim_min(float* limits);
ZK_API void invoke_libalgo_set_joint_vel_maxlim(const float* limits);
ZK_API void invoke_libalgo_get_joint_vel_maxlim(float* limits);
ZK_API void invoke_libalgo_set_joint_acc_maxlim(const float* limits);
ZK_API void invoke_libalgo_get_joint_acc_maxlim(float* limits);
ZK_API void invoke_libalgo_set_control_loop_period(float seconds);
ZK_API Pose invoke_forward_kinematics(const float* joint);
ZK_API Matrix invoke_forward_kinematics_e(const float* joint);

/*
 * joint_overspeed_judgment, and inverse_kinematics with its codes, in degrees; a flag of 0 is passed on as 2, which
 * means the same. The second form passes its flag on unchanged, records the time that solving takes, and after a
 * solution returns joint_overspeed_judgment of the step from the seed to it.
 */
ZK_API int invoke_joint_overspeed_judgment(const float* from, const float* to, float scale);
ZK_API int invoke_inverse_kinematics(const float* seed, const Pose* pose, float* joint, uint8_t flag);
ZK_API int invoke_inverse_kinematics_with_judgment_overspeed(const float* seed, const Pose* pose, float* joint,
                                                             uint8_t flag);

/* Time of day, as gettimeofday returns it. Any thread. */
ZK_API void get_time_of_day(struct timeval* now);

ZK_API uint8_t defaut_traversal_mode;        /* 1 while no search range for seven joints has been chosen */
ZK_API double invoke_inverse_time_total_min; /* fastest judged inverse solution, ms; 10000 before the first */
ZK_API double invoke_inverse_time_total_max; /* slowest judged inverse solution, ms */

#endif
