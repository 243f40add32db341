// The last results of the kinematics. The library uses this data under hidden names, because the dynamic linker would
// replace a visible `position` or `d1` by an application's variable of that name. The name of the interface is a
// second, visible name of the same storage.
#pragma once

#include "zk/kinematics_statics.h"

#define ZK_HIDDEN extern "C" __attribute__((visibility("hidden")))

ZK_HIDDEN DhParams zk_robot_dh;
ZK_HIDDEN uint8_t zk_robot_type;
ZK_HIDDEN Matrix zk_T_1N;
ZK_HIDDEN Matrix zk_T_1N_rotate;
ZK_HIDDEN Matrix zk_T_BE;
ZK_HIDDEN Matrix zk_T_BE_rotate_flange;
ZK_HIDDEN Matrix zk_T_BE_rotate_tool;
ZK_HIDDEN Position zk_position;
ZK_HIDDEN Position zk_position_0;
ZK_HIDDEN float zk_c_angle[8];
