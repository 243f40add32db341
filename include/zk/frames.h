/*
 * Frames and payload: the tool and work frames that the controller keeps by name, and the load of the arm. zk/status.h
 * describes the forms and their statuses.
 *
 * Poses are metres and radians. Requests send the Euler angles; queries leave the quaternion of a pose as it was:
 * complete it with ZK_Complete_Pose before use. Names have at most ten bytes. Keep the word "point" out of names: a
 * reply that contains it is taken for a recorded point, and the query ends in 7. A name that makes the request longer
 * than its frame of 299 bytes ends the process. Do not change the local model while another thread computes kinematics.
 */
#ifndef ZK_FRAMES_H
#define ZK_FRAMES_H

#include <stdbool.h>

#include "zk/connection.h"
#include "zk/transform_types.h"

#define ZK_FRAME_NAMES 11

/* A name in a list of frames, ended. */
typedef struct FrameName {
    char text[12];
} FrameName;

/* --------------------------------------------------------------------------------------------------- Tool frames -- */

/* Records one of the points of a tool frame. Generate_Auto_Tool_Frame computes the frame from them; its non-blocking
 * form sends the centre of gravity a thousand times smaller. */
ZK_API int Auto_Set_Tool_Frame(ArmSocket socket, uint8_t number, bool block);
ZK_API int Auto_Set_Tool_Frame_Block(ArmSocket socket, uint8_t number);
ZK_API int Auto_Set_Tool_Frame_NonBlock(ArmSocket socket, uint8_t number);
ZK_API int Generate_Auto_Tool_Frame(ArmSocket socket, const char* name, float payload, float x, float y, float z,
                                    bool block);
ZK_API int Generate_Auto_Tool_Frame_Block(ArmSocket socket, const char* name, float payload, float x, float y, float z);
ZK_API int Generate_Auto_Tool_Frame_NonBlock(ArmSocket socket, const char* name, float payload, float x, float y,
                                             float z);

/* Create a tool frame with its pose, mass in kilograms and centre of gravity in metres; change an existing one. The
 * non-blocking form sends the mass without the factor 1000, and the centre of gravity a thousand times smaller. */
ZK_API int Manual_Set_Tool_Frame(ArmSocket socket, const char* name, Pose pose, float payload, float x, float y,
                                 float z, bool block);
ZK_API int Manual_Set_Tool_Frame_Block(ArmSocket socket, const char* name, Pose pose, float payload, float x, float y,
                                       float z);
ZK_API int Manual_Set_Tool_Frame_NonBlock(ArmSocket socket, const char* name, Pose pose, float payload, float x,
                                          float y, float z);

ZK_API int Update_Tool_Frame(ArmSocket socket, const char* name, Pose pose, float payload, float x, float y, float z);
ZK_API int Update_Tool_Frame_Block(ArmSocket socket, const char* name, Pose pose, float payload, float x, float y,
                                   float z);

/* Select or delete a tool frame. The plain names then query the frame in use and put it into the local model and
 * g_tool_pose; they return the status of that query. After the non-blocking form it may still deliver the old frame. */
ZK_API int Change_Tool_Frame(ArmSocket socket, const char* name, bool block);
ZK_API int Change_Tool_Frame_Block(ArmSocket socket, const char* name);
ZK_API int Change_Tool_Frame_NonBlock(ArmSocket socket, const char* name);

ZK_API int Delete_Tool_Frame(ArmSocket socket, const char* name, bool block);
ZK_API int Delete_Tool_Frame_Block(ArmSocket socket, const char* name);
ZK_API int Delete_Tool_Frame_NonBlock(ArmSocket socket, const char* name);

/* Set the load: mass on the controller's scale, centre of gravity in metres (sent in thousandths); or none. */
ZK_API int Set_Payload_Block(ArmSocket socket, int32_t payload, float x, float y, float z);
ZK_API int Set_Payload_NonBlock(ArmSocket socket, int32_t payload, float x, float y, float z);

ZK_API int Set_None_Payload_Block(ArmSocket socket);
ZK_API int Set_None_Payload_NonBlock(ArmSocket socket);

/* Queries the tool frame in use: name, pose, mass and centre of gravity. The plain name then copies g_tool_pose from
 * the local model. The query itself does not change the model: the start-up of the connection and the commands that
 * change frames do. Zeroes the first record (zk/status.h), as all queries of this family do. */
ZK_API int Get_Current_Tool_Frame(ArmSocket socket, FrameRec* frame);
ZK_API int Get_Current_Tool_Frame_Block(ArmSocket socket, FrameRec* frame);

/* Queries a tool frame by its name; 1 when there is none of that name. */
ZK_API int Get_Given_Tool_Frame(ArmSocket socket, const char* name, FrameRec* frame);
ZK_API int Get_Given_Tool_Frame_Block(ArmSocket socket, const char* name, FrameRec* frame);

/* Queries the names of all tool frames, at most ZK_FRAME_NAMES, for which the array must have room. The plain name does
 * not test the pointer to the count. */
ZK_API int Get_All_Tool_Frame(ArmSocket socket, FrameName* names, int32_t* count);
ZK_API int Get_All_Tool_Frame_Block(ArmSocket socket, FrameName* names, int32_t* count);

/* --------------------------------------------------------------------------------------------------- Work frames -- */

/* Records one of the points of a work frame. */
ZK_API int Auto_Set_Work_Frame(ArmSocket socket, const char* name, uint8_t number, bool block);
ZK_API int Auto_Set_Work_Frame_Block(ArmSocket socket, const char* name, uint8_t number);
ZK_API int Auto_Set_Work_Frame_NonBlock(ArmSocket socket, const char* name, uint8_t number);

/* Create a work frame with its pose; change an existing one. */
ZK_API int Manual_Set_Work_Frame(ArmSocket socket, const char* name, Pose pose, bool block);
ZK_API int Manual_Set_Work_Frame_Block(ArmSocket socket, const char* name, Pose pose);
ZK_API int Manual_Set_Work_Frame_NonBlock(ArmSocket socket, const char* name, Pose pose);

ZK_API int Update_Work_Frame(ArmSocket socket, const char* name, Pose pose);
ZK_API int Update_Work_Frame_Block(ArmSocket socket, const char* name, Pose pose);

/* Select or delete a work frame. The plain names then query the frame in use and put it into the local model and
 * g_work_pose; they return the status of that query. */
ZK_API int Change_Work_Frame(ArmSocket socket, const char* name, bool block);
ZK_API int Change_Work_Frame_Block(ArmSocket socket, const char* name);
ZK_API int Change_Work_Frame_NonBlock(ArmSocket socket, const char* name);

ZK_API int Delete_Work_Frame(ArmSocket socket, const char* name, bool block);
ZK_API int Delete_Work_Frame_Block(ArmSocket socket, const char* name);
ZK_API int Delete_Work_Frame_NonBlock(ArmSocket socket, const char* name);

/* Queries the work frame in use: name and pose; mass and centre of gravity are those that the mailbox held. The plain
 * name then copies g_work_pose from the local model. */
ZK_API int Get_Current_Work_Frame(ArmSocket socket, FrameRec* frame);
ZK_API int Get_Current_Work_Frame_Block(ArmSocket socket, FrameRec* frame);

/* Queries a work frame by its name; 1 when there is none of that name. `name` is a buffer of at least ten bytes and
 * gets the name in the reply, without an end mark when it has ten bytes. */
ZK_API int Get_Given_Work_Frame(ArmSocket socket, char* name, Pose* pose);
ZK_API int Get_Given_Work_Frame_Block(ArmSocket socket, char* name, Pose* pose);

/* Queries the names of all work frames, as Get_All_Tool_Frame does. */
ZK_API int Get_All_Work_Frame(ArmSocket socket, FrameName* names, int32_t* count);
ZK_API int Get_All_Work_Frame_Blcok(ArmSocket socket, FrameName* names, int32_t* count);

#endif
