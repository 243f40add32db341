/* Replies: lift, expansion axis and mobile base. zk/mailboxes.h describes mailboxes and parsers. */
#ifndef ZK_REPLIES_ATTACHED_AXES_H
#define ZK_REPLIES_ATTACHED_AXES_H

#include "zk/attached_axes.h"
#include "zk/mailboxes.h"

typedef struct LiftStateReply {
    int32_t count;
    int32_t result;
    int32_t height;
    int32_t current;
    int32_t err_flag;
    int32_t mode;
} LiftStateReply;

typedef struct ExpandStateReply {
    int32_t count;
    int32_t result;
    int32_t pos;
    int32_t current;
    int32_t err_flag;
    int32_t mode;
} ExpandStateReply;

typedef struct ExpandConfigReply {
    int32_t count;
    int32_t result;
    int32_t rpm_max;
    int32_t rpm_acc;
    int32_t conversin_coe;
    int32_t limit_min;
    int32_t limit_max;
} ExpandConfigReply;

ZK_API LiftStateReply Get_Lift_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Get_Lift_Speed(const char* text, int32_t* height, int32_t* current, int32_t* err_flag, int32_t* mode);
ZK_API ExpandStateReply Expand_Get_State_Cmd[ZK_SLOTS];
ZK_API int Parser_Expand_Get_State(const char* text, int32_t* pos, int32_t* err_flag, int32_t* current, int32_t* mode);
ZK_API AckReply Expand_Set_Version_Cmd[ZK_SLOTS];
ZK_API int Parser_Expand_Set_Version(const char* text);
ZK_API IntReply Expand_Get_Version_Cmd[ZK_SLOTS];
ZK_API int Parser_Expand_Get_Version(const char* text, int32_t* version);
ZK_API AckReply Expand_Config_Cmd[ZK_SLOTS];
ZK_API int Parser_Expand_Config(const char* text);
ZK_API ExpandConfigReply Expand_Get_Config_Cmd[ZK_SLOTS];
ZK_API int Parser_Expand_Get_Config(const char* text, int32_t* rpm_max, int32_t* rpm_acc, int32_t* coefficient,
                                    int32_t* limit_min, int32_t* limit_max);
ZK_API int Parser_Set_Car_Station(const char* text);
ZK_API int Parser_Get_Car_State(const char* text, int32_t* battery_volume, int32_t* voltage, int32_t* current,
                                int32_t* car_err, int32_t* car_state, int32_t* station_num);

#endif
