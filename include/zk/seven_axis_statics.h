/*
 * Scalars of the seven-axis kinematics that are storage alone: 0, and neither read nor written by any function. What
 * zk/kinematics_statics.h says of its data holds for these.
 */
#ifndef ZK_SEVEN_AXIS_STATICS_H
#define ZK_SEVEN_AXIS_STATICS_H

#include "zk/export.h"

ZK_API float theta1_l, theta2_l, theta3_l, theta4_l, theta5_l, theta6_l, theta7_l;
ZK_API float theta1_u, theta2_u, theta3_u, theta4_u, theta5_u, theta6_u, theta7_u;
ZK_API float JOINT1_LOWER, JOINT2_LOWER, JOINT3_LOWER, JOINT4_LOWER, JOINT5_LOWER, JOINT6_LOWER, JOINT7_LOWER;
ZK_API float JOINT1_UPPER, JOINT2_UPPER, JOINT3_UPPER, JOINT4_UPPER, JOINT5_UPPER, JOINT6_UPPER, JOINT7_UPPER;
ZK_API float dbs, dse, dew, dwt;
ZK_API float lsb, lse, lew;

#endif
