// Lift, expansion axis and mobile base.
#include "zk/attached_axes.h"

#include "connection/reply.h"

using namespace zk;

AckReply Expand_Set_Version_Cmd[ZK_SLOTS];
AckReply Expand_Config_Cmd[ZK_SLOTS];

ZK_API int Parser_Set_Car_Station(const char* text) { return acknowledgement(text, "navigation_state"); }
ZK_API int Parser_Expand_Set_Version(const char* text) { return acknowledgement(text, "expand_version"); }
ZK_API int Parser_Expand_Config(const char* text) { return acknowledgement(text, "config_state"); }
