// Teaching and stepping.
#include "zk/teach.h"

#include "connection/reply.h"

using namespace zk;

AckReply Joint_Teach_Cmd_Cmd[ZK_SLOTS];
AckReply Pos_Teach_Cmd_Cmd[ZK_SLOTS];
AckReply Ort_Teach_Cmd_Cmd[ZK_SLOTS];
AckReply Teach_Stop_Cmd_Cmd[ZK_SLOTS];

ZK_API int Parser_Joint_Teach(const char* text) { return acknowledgement(text, "joint_teach"); }
ZK_API int Parser_Pos_Teach(const char* text) { return acknowledgement(text, "pos_teach"); }
ZK_API int Parser_Ort_Teach(const char* text) { return acknowledgement(text, "ort_teach"); }
ZK_API int Parser_Teach_Stop(const char* text) { return acknowledgement(text, "stop_teach"); }
