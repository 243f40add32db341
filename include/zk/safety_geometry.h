/*
 * Safety geometry: electronic fences, virtual walls, the envelope of a tool, and the self-collision check. zk/status.h
 * describes the forms and their statuses.
 *
 * The controller keeps and evaluates the settings, and defines the codes of sides and regions; the library only carries
 * them. Lengths are metres here and whole millimetres on the wire: what is sent is truncated toward zero.
 *
 * No form tests its pointers: an output with a null pointer is dropped, a null name is sent as an empty one. Keep the
 * word "point" out of names: a reply that contains it is taken for a recorded point, and the call ends in 7. A name
 * that makes the request longer than its frame of 299 bytes ends the process.
 */
#ifndef ZK_SAFETY_GEOMETRY_H
#define ZK_SAFETY_GEOMETRY_H

#include "zk/connection.h"

#define ZK_FENCES 11 /* as many as a list delivers */
#define ZK_ENVELOPE_SPHERES 5

/* A fence or a wall. Of the lengths, those of its form count. */
typedef struct FenceConfig {
    int32_t form;       /* 1 cuboid, 2 plane by three points, 3 sphere */
    char form_name[12]; /* not ended when it has twelve bytes */
    float x_min_limit, x_max_limit, y_min_limit, y_max_limit, z_min_limit, z_max_limit; /* form 1, m */
    float x1, y1, z1, x2, y2, z2, x3, y3, z3;                                           /* form 2, m */
    float radius;                                                                       /* form 3, m */
    float x, y, z;                                                                      /* form 3: its centre, m */
} FenceConfig;

ZK_STATIC_ASSERT(sizeof(FenceConfig) == 92 && offsetof(FenceConfig, x1) == 40 && offsetof(FenceConfig, radius) == 76,
                 "layout of FenceConfig");

/* A name in the list of fences, of at most ten bytes, ended. */
typedef struct FenceName {
    char text[12];
} FenceName;

typedef struct ToolSphere {
    char name[12];
    float radius;  /* m */
    float x, y, z; /* centre in the frame of the tool, m */
} ToolSphere;

/* The room that a tool takes, as spheres. Names from the controller are ended, cut to eleven bytes. */
typedef struct ToolEnvelope {
    char tool_name[12];
    ToolSphere spheres[ZK_ENVELOPE_SPHERES];
    int32_t count; /* spheres in use, 0 to 5 */
} ToolEnvelope;

ZK_STATIC_ASSERT(sizeof(ToolEnvelope) == 156 && offsetof(ToolEnvelope, count) == 152, "layout of ToolEnvelope");

/*
 * The parsers below give the statuses told with each, 9 for a text that is no JSON or lacks a key, and 11 for a value
 * of the wrong type; those of acknowledgements 0 for true and 1 for false. What was read before a failure stays. Any
 * thread.
 *
 * Mind the queries of fences and of the tool's envelope: after use they wipe the mailbox record of the first
 * connection, whichever asked.
 */

/* ----------------------------------------------------------------------------------- The electronic fence in use -- */

/* Switch the electronic fence on (any non-zero number) or off, with the codes of the side that is allowed and of the
 * region that it holds for; and ask for them. */
ZK_API int Set_Electronic_Fence_Enable(ArmSocket socket, uint8_t enable, int32_t in_out_side, int32_t effective_region);
ZK_API int Set_Electronic_Fence_Enable_Block(ArmSocket socket, uint8_t enable, int32_t in_out_side,
                                             int32_t effective_region);

ZK_API int Get_Electronic_Fence_Enable(ArmSocket socket, uint8_t* enable, int32_t* in_out_side,
                                       int32_t* effective_region);
ZK_API int Get_Electronic_Fence_Enable_Block(ArmSocket socket, uint8_t* enable, int32_t* in_out_side,
                                             int32_t* effective_region);

/* Set the fence in use; its name is not sent, and of another form than 1 to 3 the form alone. */
ZK_API int Set_Electronic_Fence_Config(ArmSocket socket, FenceConfig fence);
ZK_API int Set_Electronic_Fence_Config_Block(ArmSocket socket, FenceConfig fence);

/* Ask for the fence in use. Of a cuboid all lengths are told; of another form the form alone, all else being zero: ask
 * with Given_Electronic_Fence_Config or the list for the lengths of a plane or a sphere that has a name. */
ZK_API int Get_Electronic_Fence_Config(ArmSocket socket, FenceConfig* fence);
ZK_API int Get_Electronic_Fence_Config_Block(ArmSocket socket, FenceConfig* fence);

/* --------------------------------------------------------------------------------------------- Fences with names -- */

/* Add a fence to those that the controller keeps by name, change one, delete one. */
ZK_API int Add_Electronic_Fence_Config(ArmSocket socket, FenceConfig fence);
ZK_API int Add_Electronic_Fence_Config_Block(ArmSocket socket, FenceConfig fence);

ZK_API int Update_Electronic_Fence_Config(ArmSocket socket, FenceConfig fence);
ZK_API int Update_Electronic_Fence_Config_Block(ArmSocket socket, FenceConfig fence);

ZK_API int Delete_Electronic_Fence_Config(ArmSocket socket, const char* name);
ZK_API int Delete_Electronic_Fence_Config_Block(ArmSocket socket, const char* name);

/* Asks for a fence by its name: 1 when there is none. Its lengths are told whatever its form. The parser gives 11 for a
 * "given_state" other than false. */
ZK_API int Given_Electronic_Fence_Config(ArmSocket socket, const char* name, FenceConfig* fence);
ZK_API int Given_Electronic_Fence_Config_Block(ArmSocket socket, const char* name, FenceConfig* fence);

/* Ask for the names, or for all, of the fences kept: arrays of ZK_FENCES take every one. Only entries received are
 * written. A name "NULL" ends the list of names. */
ZK_API int Get_Electronic_Fence_List_Names(ArmSocket socket, FenceName* names, int32_t* count);
ZK_API int Get_Electronic_Fence_List_Names_Block(ArmSocket socket, FenceName* names, int32_t* count);

ZK_API int Get_Electronic_Fence_List_Info(ArmSocket socket, FenceConfig* fences, int32_t* count);
ZK_API int Get_Electronic_Fence_List_Info_Block(ArmSocket socket, FenceConfig* fences, int32_t* count);

/* ------------------------------------------------------------------------------------------------- Virtual walls -- */

/* Switch the virtual wall as the fence is switched, and ask for it. */
ZK_API int Set_Virtual_Wall_Enable(ArmSocket socket, uint8_t enable, int32_t in_out_side, int32_t effective_region);
ZK_API int Set_Virtual_Wall_Enable_Block(ArmSocket socket, uint8_t enable, int32_t in_out_side,
                                         int32_t effective_region);

ZK_API int Get_Virtual_Wall_Enable(ArmSocket socket, uint8_t* enable, int32_t* in_out_side, int32_t* effective_region);
ZK_API int Get_Virtual_Wall_Enable_Block(ArmSocket socket, uint8_t* enable, int32_t* in_out_side,
                                         int32_t* effective_region);

/* Set the wall, a cuboid or a sphere: of any other form, a plane included, the form alone is sent. Asked for, a cuboid
 * is told whole, of another form the form alone, all else being zero. */
ZK_API int Set_Virtual_Wall_Config(ArmSocket socket, FenceConfig wall);
ZK_API int Set_Virtual_Wall_Config_Block(ArmSocket socket, FenceConfig wall);

ZK_API int Get_Virtual_Wall_Config(ArmSocket socket, FenceConfig* wall);
ZK_API int Get_Virtual_Wall_Config_Block(ArmSocket socket, FenceConfig* wall);

/* ---------------------------------------------------------------------------------------- The arm against itself -- */

/* Switch the check for collisions of the arm with itself on (any non-zero number) or off, and ask whether it is on (1)
 * or off (0). */
ZK_API int Set_Self_Collision_Enable(ArmSocket socket, uint8_t enable);
ZK_API int Set_Self_Collision_Enable_Block(ArmSocket socket, uint8_t enable);

ZK_API int Get_Self_Collision_Enable(ArmSocket socket, uint8_t* enable);
ZK_API int Get_Self_Collision_Enable_Block(ArmSocket socket, uint8_t* enable);

/* ---------------------------------------------------------------------------------------- The envelope of a tool -- */

/* Sets the envelope of a tool: 19, and nothing is sent, for more than five spheres. The frame has 499 bytes, which five
 * spheres fill when their names have more than a few letters; a request that is longer ends the process. */
ZK_API int Set_Tool_Envelope(ArmSocket socket, ToolEnvelope envelope);
ZK_API int Set_Tool_Envelope_Block(ArmSocket socket, ToolEnvelope envelope);

/*
 * Asks for the envelope of a tool. The status is read after the mailbox record of the first connection was wiped: on
 * that connection a refused or broken reply gives 0 as well, so see whether `tool_name` is the one asked for. The
 * parser gives 1 when "get_state" is false, and 11 for a sphere that lacks a key.
 */
ZK_API int Get_Tool_Envelope(ArmSocket socket, const char* name, ToolEnvelope* envelope);
ZK_API int Get_Tool_Envelope_Block(ArmSocket socket, const char* name, ToolEnvelope* envelope);

#endif
