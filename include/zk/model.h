/*
 * The model of the arm that the local kinematics computes with: one record for the whole process, `robot`. The last
 * libalgo_set_robot_and_sensor_type decides it for every connection, and discards everything that was set before. A
 * connection's start-up selects the model and fills in frames, mounting angles and limits from the controller; a
 * program without a controller selects it itself.
 *
 * All values are SI: metres, radians, seconds, kilograms. The Algo_ functions of zk/algorithm.h take degrees.
 *
 * Arrays of n are pointers to n values of the caller's; none may be null. Values are stored unchecked unless a range is
 * stated. Nothing is locked: change the model, and compute with it, from one thread at a time.
 */
#ifndef ZK_MODEL_H
#define ZK_MODEL_H

#include <stddef.h>
#include <stdint.h>

#include "zk/export.h"
#include "zk/transform_types.h"

/* ------------------------------------------------------------------------------------------------------- Records -- */

/* Denavit-Hartenberg parameters, one column a joint. No kinematic function reads the compensation rows. */
typedef struct DhParams {
    float d[8];      /* metres, along the joint's axis */
    float a[8];      /* metres */
    float alpha[8];  /* radians; for information, the kinematics has the twists of each arm built in */
    float offset[8]; /* radians, added to the joint angle */
    float d_comp[8]; /* compensation of each, same units */
    float a_comp[8];
    float alpha_comp[8];
    float offset_comp[8];
} DhParams;

/* Payload of the current tool. */
typedef struct PayloadParams {
    float mass;        /* kilograms */
    float centre[3];   /* centre of gravity x, y, z, metres */
    float reserved[7]; /* carried for the caller */
} PayloadParams;

/* Limits of a joint. */
typedef struct JointConfig {
    float reserved_before[10]; /* carried for the caller */
    float pos_max;             /* radians */
    float pos_min;             /* radians */
    float vel_max;             /* radians per second */
    float acc_max;             /* radians per second squared */
    float reserved_after[3];   /* carried for the caller */
} JointConfig;

/* A record of feedback from the arm, raw or with the joint offsets added. */
typedef struct RobotFeedback {
    float joint[8];        /* first joint vector, radians */
    float cur[8];          /* second joint vector, radians */
    uint32_t reserved[55]; /* carried for the caller */
} RobotFeedback;

/* Inertia of a link. */
typedef struct LinkDynamics {
    float inertia[6]; /* xx, xy, xz, yy, yz, zz, kg m^2 */
    float moment[3];  /* first mass moments x, y, z, kg m */
    float mass;       /* kilograms */
} LinkDynamics;

typedef struct DynamicsParams {
    float drag_factor_a[8];
    float drag_factor_b[8];
    float identification_c[8];
    float identification_d[8];
    float identification_block[35];
    float reserved[5];
    LinkDynamics link[8];
} DynamicsParams;

/* Carried for the caller. */
typedef struct CollisionThreshold {
    float value[21];
} CollisionThreshold;

/* Everything that describes the arm. */
typedef struct RobotModel {
    DhParams dh;
    int32_t robot_type;  /* model number, see libalgo_set_robot_and_sensor_type */
    int32_t sensor_type; /* 0 bare flange (-B), 1 -ZF, 2 -6F */
    PayloadParams payload;
    float tcp_config[4]; /* Cartesian limits; carried for the caller */
    JointConfig joint_config[8];
    RobotFeedback feedback;        /* last feedback, joint values with dh.offset added */
    float install_angle[3];        /* mounting rotation rx, ry, rz */
    float tool_cs[6];              /* tool in the flange frame: x, y, z, rx, ry, rz */
    float work_cs[6];              /* work frame in the world: x, y, z, rx, ry, rz */
    Matrix tool_cs_matrix;         /* flange_T_tool */
    Matrix work_cs_to_base_matrix; /* work_T_world, the inverse of the work frame's own transform */
    Matrix install_angle_matrix;   /* world_T_base: the mounting rotation */
    DynamicsParams dynamics_params;
    float joint_direction[8]; /* +1 or -1 */
    CollisionThreshold user_collision_threshold;
    float trajectory_planning_joint_cmd[8];
    float trajectory_planning_joint_cur[8]; /* second joint vector of the last feedback, raw */
    int16_t dof;                            /* joints of the arm: 6 or 7, 0 before a model is selected */
    float control_loop_period;              /* seconds */
    float gravity_acc[3];                   /* gravity in the arm's base frame, m/s^2 */
    uint16_t safety_level;                  /* 0 to 8 */
    int32_t system_all_dof;                 /* joints of the whole system */
    uint32_t is_avoid_Singularity; /* 1: the inverse kinematics holds joints 4 and 6 near the wrist's singularity */
    int32_t dynamics_model_type;   /* 0 after a selection, then 1 or 2 */
} RobotModel;

ZK_STATIC_ASSERT(sizeof(DhParams) == 256 && offsetof(DhParams, offset) == 96 && offsetof(DhParams, d_comp) == 128,
                 "layout of DhParams");
ZK_STATIC_ASSERT(sizeof(PayloadParams) == 44, "layout of PayloadParams");
ZK_STATIC_ASSERT(sizeof(JointConfig) == 68 && offsetof(JointConfig, pos_max) == 40, "layout of JointConfig");
ZK_STATIC_ASSERT(sizeof(RobotFeedback) == 284 && offsetof(RobotFeedback, cur) == 32, "layout of RobotFeedback");
ZK_STATIC_ASSERT(sizeof(LinkDynamics) == 40 && offsetof(LinkDynamics, mass) == 36, "layout of LinkDynamics");
ZK_STATIC_ASSERT(sizeof(DynamicsParams) == 608 && offsetof(DynamicsParams, identification_block) == 128 &&
                     offsetof(DynamicsParams, link) == 288,
                 "layout of DynamicsParams");
ZK_STATIC_ASSERT(sizeof(CollisionThreshold) == 84, "layout of CollisionThreshold");
ZK_STATIC_ASSERT(offsetof(RobotModel, robot_type) == 256 && offsetof(RobotModel, joint_config) == 324 &&
                     offsetof(RobotModel, feedback) == 868 && offsetof(RobotModel, tool_cs_matrix) == 1212 &&
                     offsetof(RobotModel, dynamics_params) == 1416 && offsetof(RobotModel, joint_direction) == 2024 &&
                     offsetof(RobotModel, dof) == 2204 && offsetof(RobotModel, gravity_acc) == 2212 &&
                     sizeof(RobotModel) == 2240,
                 "layout of RobotModel");

ZK_API RobotModel robot;                 /* the arm; all zero until a model is selected */
ZK_API DhParams dh_default;              /* DH parameters of the last model that could be selected */
ZK_API DynamicsParams dyn_param_default; /* its link dynamics; only `link` is filled */

/* ----------------------------------------------------------------------------------------------------- Selection -- */

/*
 * Selects the arm, and sets everything in `robot` to that arm's defaults: no tool, work frame at the base, mounted
 * upright on the floor, a control period of 2 ms.
 *
 *     model    arm     joints   sensors                model    arm                         joints   sensors
 *         0    65           6   0 to 2                     5    parallel-axis 65                 6   0 to 2
 *         1    75           7   0 to 2                     6    parallel-axis 62                 6   0
 *         3    63           6   0 to 2                     7    72                               7   0
 *         4    63, later    6   0 to 2                     8    parallel-axis 63                 6   0 to 2
 *                                                          9    generic, all lengths zero        7   any
 *
 * Returns 0, or -1 for any other pair; then `robot` is cleared, with dof 0 and the two numbers stored.
 */
ZK_API int libalgo_set_robot_and_sensor_type(int model, int sensor);

/* Both select model 0 with sensor 0, and return what that returns. */
ZK_API int libalgo_init(void);
ZK_API int libalgo_clear(void);

/* The last numbers set, valid or not; and the joints of the arm, 0 when there is none. */
ZK_API int libalgo_get_robot_type(void);
ZK_API int libalgo_get_sensor_type(void);
ZK_API int libalgo_get_rbt_dof(void);

/* -------------------------------------------------------------------------------------------------------- Frames -- */

/*
 * Frames are x, y, z in metres and rx, ry, rz in radians, R = Rz(rz) Ry(ry) Rx(rx). Each setter also builds the frame's
 * matrix; the matrix getters fill a 4 by 4 transform.
 *
 *     tool      tool in the flange frame; its matrix is flange_T_tool
 *     work      work frame in the world; its matrix is work_T_world, the inverse of that frame
 *     install   mounting rotation of the base in the world, three angles; also sets the gravity in the base frame
 */
ZK_API void libalgo_set_tool_cs_params(const float params[6]);
ZK_API void libalgo_get_tool_cs_params(float params[6]);
ZK_API void libalgo_get_tool_cs_matrix(Matrix* flange_T_tool);
ZK_API void libalgo_set_work_cs_params(const float params[6]);
ZK_API void libalgo_get_work_cs_params(float params[6]);
ZK_API void libalgo_get_work_cs_to_base_matrix(Matrix* work_T_world);
ZK_API void libalgo_set_robot_install_angle(const float angles[3]);
ZK_API void libalgo_get_robot_install_angle(float angles[3]);
ZK_API void libalgo_get_robot_install_angle_matrix(Matrix* world_T_base);

/* Gravity in the base frame, m/s^2: (0, 0, -9.81) for an upright arm. */
ZK_API void libalgo_get_robot_gravity_acc(float gravity[3]);

/* ------------------------------------------------------------------------------------------------- DH parameters -- */

/* Writes d, a, alpha and offset of joints 1 to 7. */
ZK_API void libalgo_set_dh_params(const DhParams* params);

/* Writes, reads the compensation rows of joints 1 to 7; everything else of the record stays as it is. */
ZK_API void libalgo_set_dh_compensation_value(const DhParams* params);
ZK_API void libalgo_get_dh_compensation_value(DhParams* params);

/* Reads the whole record, that in use or the model's default one; restores the whole default. */
ZK_API void libalgo_get_dh_value(DhParams* params);
ZK_API void libalgo_get_dh_params_default(DhParams* params);
ZK_API void libalgo_set_dh_params_default(void);

/* 1 when d, a, alpha and offset of every joint of the arm differ by less than 1e-10 from the default, also without an
 * arm; else 0. */
ZK_API int libalgo_check_dh_params_is_default(void);

/* -------------------------------------------------------------------------------------------------- Joint limits -- */

/* One limit of all eight joints, whatever the arm has: radians, radians per second, radians per second squared. */
ZK_API void libalgo_set_jointlim_max(const float limits[8]);
ZK_API void libalgo_get_jointlim_max(float limits[8]);
ZK_API void libalgo_set_jointlim_min(const float limits[8]);
ZK_API void libalgo_get_jointlim_min(float limits[8]);
ZK_API void libalgo_set_joint_vel_maxlim(const float limits[8]);
ZK_API void libalgo_get_joint_vel_maxlim(float limits[8]);
ZK_API void libalgo_set_joint_acc_maxlim(const float limits[8]);
ZK_API void libalgo_get_joint_acc_maxlim(float limits[8]);

/* Limits of all eight joints as the DH model counts their angles: limit plus dh.offset, radians. */
ZK_API void libalgo_get_modeling_jointlim_max(float limits[8]);
ZK_API void libalgo_get_modeling_jointlim_min(float limits[8]);

/* The whole record of a joint; joint is 0 to 7 and not checked. */
ZK_API void libalgo_set_joint_config(int16_t joint, const JointConfig* config);
ZK_API void libalgo_get_joint_config(int16_t joint, JointConfig* config);

/* Sense of each joint. The setter reads one value for each joint of the arm and stores its sign, +1 or -1; 0 and NaN
 * leave the joint's as it was. The getter writes seven. */
ZK_API void libalgo_set_joint_direction(const float* direction);
ZK_API void libalgo_get_joint_direction(float direction[7]);

/* ------------------------------------------------------------------------------------------------------ Dynamics -- */

/* Payload: mass, centre of gravity x, y, z, and seven values carried for the caller. */
ZK_API void libalgo_set_payload_params(const float params[11]);
ZK_API void libalgo_get_payload_params(float params[11]);

/* Inertia of the links: one record for each joint of the arm. */
ZK_API void libalgo_set_link_dynamics_params(const LinkDynamics* links);
ZK_API void libalgo_get_link_dynamics_params(LinkDynamics* links);
ZK_API void libalgo_set_link_dynamics_params_default(void);
ZK_API void libalgo_get_link_dynamics_params_default(LinkDynamics* links);

/* The whole dynamics record. */
ZK_API void libalgo_get_dynamics_params(DynamicsParams* params);

/* Identified values: 35 of identification_block, 7 of identification_d, 7 of identification_c. */
ZK_API void libalgo_set_dynamics_identification_params(const float params[49]);

/* Drag factors: 7 of drag_factor_a, 7 of drag_factor_b. In the first group an entry below 0.001 in size, of a joint of
 * the arm, becomes 1. */
ZK_API void libalgo_set_drag_regulation_factor(const float factors[14]);

/* Stores 2 for 2, and 1 for any other number; 0 after a model selection. */
ZK_API void libalgo_set_dynamics_model_type(int type);
ZK_API int libalgo_get_dynamics_model_type(void);

/* ------------------------------------------------------------------------------------------ Control and feedback -- */

/* Stores a feedback record. The joints of the arm get dh.offset added in both joint vectors; the second vector is also
 * kept raw, for libalgo_get_trajectory_planning_joint_cur. */
ZK_API void libalgo_update_feedback_data(const RobotFeedback* feedback);
ZK_API void libalgo_get_robot_feedback_data(RobotFeedback* feedback);
ZK_API void libalgo_get_trajectory_planning_joint_cur(float joint[8]);

/* Values carried for the caller. */
ZK_API void libalgo_set_trajectory_planning_joint_cmd(const float joint[8]);
ZK_API void libalgo_get_trajectory_planning_joint_cmd(float joint[8]);
ZK_API void libalgo_set_tcp_config(const float config[4]);
ZK_API void libalgo_get_tcp_config(float config[4]);
ZK_API void libalgo_set_user_collision_threshold(const CollisionThreshold* threshold);
ZK_API void libalgo_get_user_collision_threshold(CollisionThreshold* threshold);

/* Control period, seconds; joint_overspeed_judgment judges the motion of one period. Not checked. */
ZK_API void libalgo_set_control_loop_period(float period);
ZK_API float libalgo_get_control_loop_period(void);

/* Safety level, 0 to 8. The setter returns 0, or -1 above 8, and then stores nothing. */
ZK_API int libalgo_set_safety_level(uint16_t level);
ZK_API int libalgo_get_safety_level(void);

/* Joints of the whole system. The setter returns 0, or -1 for less than the arm has, and then stores nothing. */
ZK_API int libalgo_set_system_all_dof(int dof);
ZK_API int libalgo_get_system_all_dof(void);

/* 1: close to the wrist's singularity the inverse kinematics of models 0 and 3 keeps the difference of joints 4 and 6
 * of the seed. 0 after a model selection. */
ZK_API void libalgo_set_is_avoid_Singularity(unsigned int avoid);
ZK_API int libalgo_get_is_avoid_Singularity(void);

#endif
