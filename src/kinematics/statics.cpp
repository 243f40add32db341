#include "kinematics/statics.h"

#define SECOND_NAME(name) ZK_API decltype(name) name __attribute__((alias("zk_" #name)))
#define UNREAD_SCALAR(name)    \
    ZK_HIDDEN float zk_##name; \
    float zk_##name;           \
    SECOND_NAME(name)

DhParams zk_robot_dh;
uint8_t zk_robot_type;
Matrix zk_T_1N;
Matrix zk_T_1N_rotate;
Matrix zk_T_BE;
Matrix zk_T_BE_rotate_flange;
Matrix zk_T_BE_rotate_tool;
Position zk_position;
Position zk_position_0;
float zk_c_angle[8];

SECOND_NAME(robot_dh);
SECOND_NAME(robot_type);
SECOND_NAME(T_1N);
SECOND_NAME(T_1N_rotate);
SECOND_NAME(T_BE);
SECOND_NAME(T_BE_rotate_flange);
SECOND_NAME(T_BE_rotate_tool);
SECOND_NAME(position);
SECOND_NAME(position_0);
SECOND_NAME(c_angle);

UNREAD_SCALAR(d1);
UNREAD_SCALAR(d3);
UNREAD_SCALAR(d4);
UNREAD_SCALAR(d6);
UNREAD_SCALAR(a2);
UNREAD_SCALAR(a3);
UNREAD_SCALAR(a4);
UNREAD_SCALAR(dwt_SF);
UNREAD_SCALAR(dwt_ZF);

#define OF_EACH_JOINT(prefix, suffix) \
    UNREAD_SCALAR(prefix##1##suffix); \
    UNREAD_SCALAR(prefix##2##suffix); \
    UNREAD_SCALAR(prefix##3##suffix); \
    UNREAD_SCALAR(prefix##4##suffix); \
    UNREAD_SCALAR(prefix##5##suffix); \
    UNREAD_SCALAR(prefix##6##suffix); \
    UNREAD_SCALAR(prefix##7##suffix)

OF_EACH_JOINT(theta, _l);
OF_EACH_JOINT(theta, _u);
OF_EACH_JOINT(JOINT, _LOWER);
OF_EACH_JOINT(JOINT, _UPPER);
UNREAD_SCALAR(dbs);
UNREAD_SCALAR(dse);
UNREAD_SCALAR(dew);
UNREAD_SCALAR(dwt);
UNREAD_SCALAR(lsb);
UNREAD_SCALAR(lse);
UNREAD_SCALAR(lew);
