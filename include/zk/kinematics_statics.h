/*
 * Data that the kinematics leaves behind, and scalars that are storage alone. Their names are short and common, so no
 * other header includes this one. The library works on instances of its own under other names: a variable of an
 * application that bears one of these names does not disturb it.
 *
 * An executable that is not compiled with -fPIC gets a copy of such data when it starts, and sees nothing of what the
 * library writes later; it reads the library's own through dlsym.
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

/* Read and written by nobody. */
ZK_API float d1, d3, d4, d6;
ZK_API float a2, a3, a4;
ZK_API float dwt_SF, dwt_ZF;

#endif
