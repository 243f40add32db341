/*
 * The last results of the kinematics, and unused scalars of the interface. Their names are short and common, so no
 * other header includes this one. The library uses its own names for this data: an application's variable of one of
 * these names does not disturb it.
 *
 * An executable that is not compiled with -fPIC gets a copy of such data when it starts, and does not see what the
 * library writes later; it reads the library's data through dlsym.
 */
#ifndef ZK_KINEMATICS_STATICS_H
#define ZK_KINEMATICS_STATICS_H

#include "zk/model.h"
#include "zk/transform_types.h"

ZK_API DhParams robot_dh;         /* DH parameters of the last call that computed the whole arm */
ZK_API uint8_t robot_type;        /* and its model number */
ZK_API Matrix T_1N;               /* last forward_kinematics_e_*, and forward_kinematics_rotate_zkl63_3 */
ZK_API Matrix T_1N_rotate;        /* last of the other forward_kinematics_rotate_* */
ZK_API Matrix T_BE;               /* last base_T_flange of the whole arm */
ZK_API Matrix T_BE_rotate_flange; /* last forward_kinematics_rotate_flange */
ZK_API Matrix T_BE_rotate_tool;   /* last forward_kinematics_rotate */
ZK_API Position position;         /* last forward_kinematics_pos or forward_kinematics_pos_calibration */
ZK_API Position position_0;       /* last forward_kinematics_pos_* of a family */
ZK_API float c_angle[8];          /* joint angles of the last call of the zk75 family */

/* No function reads or writes these. */
ZK_API float d1, d3, d4, d6;
ZK_API float a2, a3, a4;
ZK_API float dwt_SF, dwt_ZF;
ZK_API float theta1_l, theta2_l, theta3_l, theta4_l, theta5_l, theta6_l, theta7_l;
ZK_API float theta1_u, theta2_u, theta3_u, theta4_u, theta5_u, theta6_u, theta7_u;
ZK_API float JOINT1_LOWER, JOINT2_LOWER, JOINT3_LOWER, JOINT4_LOWER, JOINT5_LOWER, JOINT6_LOWER, JOINT7_LOWER;
ZK_API float JOINT1_UPPER, JOINT2_UPPER, JOINT3_UPPER, JOINT4_UPPER, JOINT5_UPPER, JOINT6_UPPER, JOINT7_UPPER;
ZK_API float dbs, dse, dew, dwt;
ZK_API float lsb, lse, lew;

#endif
