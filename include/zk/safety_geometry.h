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

#define ZK_FENCES 11 /* the most that a list delivers */
#define ZK_ENVELOPE_SPHERES 5

typedef enum ZK_FenceForm {
    ZK_FENCE_CUBOID = 1,
    ZK_FENCE_PLANE = 2, /* by three points */
    ZK_FENCE_SPHERE = 3,
} ZK_FenceForm;

/* A fence or a wall. Only the lengths of its form are used. */
typedef struct FenceConfig {
    int32_t form;       /* ZK_FenceForm */
    char form_name[12]; /* without an end mark when it has twelve bytes */
    float x_min_limit, x_max_limit, y_min_limit, y_max_limit, z_min_limit, z_max_limit; /* form 1, m */
    float x1, y1, z1, x2, y2, z2, x3, y3, z3;                                           /* form 2, m */
    float radius;                                                                       /* form 3, m */
    float x, y, z;                                                                      /* form 3: its centre, m */
} FenceConfig;

ZK_STATIC_ASSERT(sizeof(FenceConfig) == 92 && offsetof(FenceConfig, x1) == 40 && offsetof(FenceConfig, radius) == 76,
                 "layout of FenceConfig");

/* A name in the list of fences, ended. Longer names are cut to ten bytes here. */
typedef struct FenceName {
    char text[12];
} FenceName;

typedef struct ToolSphere {
    char name[12];
    float radius;  /* m */
    float x, y, z; /* centre in the frame of the tool, m */
} ToolSphere;

/* The volume of a tool, as spheres. Names from the controller are cut to eleven bytes and ended. */
typedef struct ToolEnvelope {
    char tool_name[12];
    ToolSphere spheres[ZK_ENVELOPE_SPHERES];
    int32_t count; /* spheres in use, 0 to 5 */
} ToolEnvelope;

ZK_STATIC_ASSERT(sizeof(ToolEnvelope) == 156 && offsetof(ToolEnvelope, count) == 152, "layout of ToolEnvelope");

/* ----------------------------------------------------------------------------------- The electronic fence in use -- */

/* Switch the electronic fence on (any non-zero number) or off, with the codes of the allowed side and of the region
 * that it protects; query them. The query zeroes the first record (zk/status.h), as the other queries of fences do. */
ZK_API int Set_Electronic_Fence_Enable(ArmSocket socket, uint8_t enable, int32_t in_out_side, int32_t effective_region);
ZK_API int Set_Electronic_Fence_Enable_Block(ArmSocket socket, uint8_t enable, int32_t in_out_side,
                                             int32_t effective_region);

ZK_API int Get_Electronic_Fence_Enable(ArmSocket socket, uint8_t* enable, int32_t* in_out_side,
                                       int32_t* effective_region);
ZK_API int Get_Electronic_Fence_Enable_Block(ArmSocket socket, uint8_t* enable, int32_t* in_out_side,
                                             int32_t* effective_region);

/* Sets the fence in use. Its name is not sent. Of a form other than 1 to 3 only the form is sent. */
ZK_API int Set_Electronic_Fence_Config(ArmSocket socket, FenceConfig fence);
ZK_API int Set_Electronic_Fence_Config_Block(ArmSocket socket, FenceConfig fence);

/* Queries the fence in use. Of a cuboid all lengths are delivered; of another form only the form, and the rest is zero.
 * For the lengths of a plane or a sphere with a name use Given_Electronic_Fence_Config or the list. */
ZK_API int Get_Electronic_Fence_Config(ArmSocket socket, FenceConfig* fence);
ZK_API int Get_Electronic_Fence_Config_Block(ArmSocket socket, FenceConfig* fence);

/* --------------------------------------------------------------------------------------------- Fences with names -- */

/* Add, change and delete a fence among those that the controller keeps by name. */
ZK_API int Add_Electronic_Fence_Config(ArmSocket socket, FenceConfig fence);
ZK_API int Add_Electronic_Fence_Config_Block(ArmSocket socket, FenceConfig fence);

ZK_API int Update_Electronic_Fence_Config(ArmSocket socket, FenceConfig fence);
ZK_API int Update_Electronic_Fence_Config_Block(ArmSocket socket, FenceConfig fence);

ZK_API int Delete_Electronic_Fence_Config(ArmSocket socket, const char* name);
ZK_API int Delete_Electronic_Fence_Config_Block(ArmSocket socket, const char* name);

/* Queries a fence by its name, with its lengths whatever its form; 1 when there is none of that name. */
ZK_API int Given_Electronic_Fence_Config(ArmSocket socket, const char* name, FenceConfig* fence);
ZK_API int Given_Electronic_Fence_Config_Block(ArmSocket socket, const char* name, FenceConfig* fence);

/* Query the names, or everything, of the fences kept: arrays of ZK_FENCES have room for all. Only received entries are
 * written. A name "NULL" ends the list of names. */
ZK_API int Get_Electronic_Fence_List_Names(ArmSocket socket, FenceName* names, int32_t* count);
ZK_API int Get_Electronic_Fence_List_Names_Block(ArmSocket socket, FenceName* names, int32_t* count);

ZK_API int Get_Electronic_Fence_List_Info(ArmSocket socket, FenceConfig* fences, int32_t* count);
ZK_API int Get_Electronic_Fence_List_Info_Block(ArmSocket socket, FenceConfig* fences, int32_t* count);

/* ------------------------------------------------------------------------------------------------- Virtual walls -- */

/* Switch the virtual wall, and query it, like the fence. The queries of the wall do not zero the first record. */
ZK_API int Set_Virtual_Wall_Enable(ArmSocket socket, uint8_t enable, int32_t in_out_side, int32_t effective_region);
ZK_API int Set_Virtual_Wall_Enable_Block(ArmSocket socket, uint8_t enable, int32_t in_out_side,
                                         int32_t effective_region);

ZK_API int Get_Virtual_Wall_Enable(ArmSocket socket, uint8_t* enable, int32_t* in_out_side, int32_t* effective_region);
ZK_API int Get_Virtual_Wall_Enable_Block(ArmSocket socket, uint8_t* enable, int32_t* in_out_side,
                                         int32_t* effective_region);

/* Set and query the wall, a cuboid or a sphere. Of any other form, a plane included, only the form is sent. The query
 * delivers a cuboid whole, and of a sphere only the form; the rest is zero. */
ZK_API int Set_Virtual_Wall_Config(ArmSocket socket, FenceConfig wall);
ZK_API int Set_Virtual_Wall_Config_Block(ArmSocket socket, FenceConfig wall);

ZK_API int Get_Virtual_Wall_Config(ArmSocket socket, FenceConfig* wall);
ZK_API int Get_Virtual_Wall_Config_Block(ArmSocket socket, FenceConfig* wall);

/* ---------------------------------------------------------------------------------------- The arm against itself -- */

/* Switch the self-collision check on (any non-zero number) or off; query whether it is on (1) or off (0). */
ZK_API int Set_Self_Collision_Enable(ArmSocket socket, uint8_t enable);
ZK_API int Set_Self_Collision_Enable_Block(ArmSocket socket, uint8_t enable);

ZK_API int Get_Self_Collision_Enable(ArmSocket socket, uint8_t* enable);
ZK_API int Get_Self_Collision_Enable_Block(ArmSocket socket, uint8_t* enable);

/* ---------------------------------------------------------------------------------------- The envelope of a tool -- */

/* Sets the envelope of a tool. With more than five spheres it sends nothing and returns 19. Five spheres with names of
 * more than a few letters exceed the request's 499 bytes, which ends the process. */
ZK_API int Set_Tool_Envelope(ArmSocket socket, ToolEnvelope envelope);
ZK_API int Set_Tool_Envelope_Block(ArmSocket socket, ToolEnvelope envelope);

/* Queries the envelope of a tool. It zeroes the first record before it reads the status: on the first connection a
 * refused or broken reply returns 0, so compare `tool_name` with the name you asked for. */
ZK_API int Get_Tool_Envelope(ArmSocket socket, const char* name, ToolEnvelope* envelope);
ZK_API int Get_Tool_Envelope_Block(ArmSocket socket, const char* name, ToolEnvelope* envelope);

#endif
