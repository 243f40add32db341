#include "zk/seven_axis_statics.h"

#include "kinematics/statics.h"

#define UNREAD_SCALAR(name)    \
    ZK_HIDDEN float zk_##name; \
    float zk_##name;           \
    ZK_API float name __attribute__((alias("zk_" #name)))

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
