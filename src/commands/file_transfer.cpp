// The small commands and the shared numbers that came with the file transfers.
#include "zk/replies/file_transfer.h"

#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/system.h"

using namespace zk;

int32_t m_update_scale = 0;
int32_t drag_teach_flag = 0;
int32_t m_is_popup = 0;
int32_t m_popup_pos = 0;

namespace {

int copy_number(const int32_t& word, int32_t* out) {
    if (any_null(out)) return ZK_BAD_ARGUMENT;
    *out = read(word);
    return ZK_OK;
}

// An acknowledgement in which only false is a refusal.
int anything_but_false(const char* text, const char* key) { return acknowledgement(text, key, ZK_OK); }

}  // namespace

ZK_API int Get_Update_Scale_E(int32_t* scale) { return copy_number(m_update_scale, scale); }
ZK_API int Get_Save_Trajectory_Flag_E(int32_t* flag) { return copy_number(drag_teach_flag, flag); }
ZK_API int Cancle_Save_Trajectory_E() {
    write(drag_teach_flag, 0);
    return ZK_OK;
}
ZK_API int Get_Popup_State_E(int32_t* is_popup, int32_t* popup_pos) {
    if (any_null(is_popup, popup_pos)) return ZK_BAD_ARGUMENT;
    copy_number(m_is_popup, is_popup);
    return copy_number(m_popup_pos, popup_pos);
}
ZK_API int Set_Popup_State_E(int32_t is_popup, int32_t popup_pos) {
    write(m_is_popup, is_popup);
    write(m_popup_pos, popup_pos);
    return ZK_OK;
}

AckReply Set_Popup_Cmd[ZK_SLOTS];
ZK_API int Set_Popup_NonBlock_E(ArmSocket s) { return post(Request(s, "popup").boolean("popup_result", true)); }
ZK_API int Parser_Set_Popup(const char* text) { return acknowledgement(text, "popup_result"); }

AckReply Set_Online_Start_Cmd[ZK_SLOTS];
ZK_API int Set_Online_Next_E(ArmSocket s) { return after_2_ms(Set_Online_Next_Block_E, s); }
ZK_API int Set_Online_Next_Block_E(ArmSocket s) { return set({s, "online_next"}, Set_Online_Start_Cmd); }
ZK_API int Parser_Set_Online_Start(const char* text) { return acknowledgement(text, "state"); }

// The reply is classified as one to set_lift and dropped, so the call ends in 7.
AckReply Set_Lift_Version_Cmd[ZK_SLOTS];
ZK_API int Set_Lift_Version_E(ArmSocket s, int32_t lift_version) {
    return after_2_ms(Set_Lift_Version_Block_E, s, lift_version);
}
ZK_API int Set_Lift_Version_Block_E(ArmSocket s, int32_t lift_version) {
    return set(Request(s, "set_lift_version").number("lift_version", lift_version), Set_Lift_Version_Cmd);
}
ZK_API int Parser_Set_Lift_Version_E(const char* text) { return anything_but_false(text, "lift_version"); }

AckReply Set_Sale_Version_Cmd[ZK_SLOTS];
ZK_API int Set_Sale_Version_E(ArmSocket s, int32_t sale_version) {
    return after_2_ms(Set_Sale_Version_Block_E, s, sale_version);
}
ZK_API int Set_Sale_Version_Block_E(ArmSocket s, int32_t sale_version) {
    return set(Request(s, "set_sale_version").number("sale_version", sale_version), Set_Sale_Version_Cmd);
}
ZK_API int Parser_Set_Sale_Version_E(const char* text) { return anything_but_false(text, "sale_version"); }

IntReply Get_Tool_Hardware_Version_Cmd[ZK_SLOTS];
ZK_API int Get_Tool_Hardware_Version_E(ArmSocket s, int32_t* version) {
    return after_2_ms(Get_Tool_Hardware_Version_Block_E, s, version);
}
ZK_API int Get_Tool_Hardware_Version_Block_E(ArmSocket s, int32_t* version) {
    if (any_null(version)) return ZK_BAD_ARGUMENT;
    return query_value(s, "get_tool_hardware_version", Get_Tool_Hardware_Version_Cmd, version);
}

// The reply reaches the mailbox of Set_NetIP, so the call ends in 7.
AckReply Set_Controller_IP_NC_Cmd[ZK_SLOTS];
ZK_API int Set_Controller_IP_NC_E(ArmSocket s, const char* ip) {
    return after_2_ms(Set_Controller_IP_Block_NC_E, s, ip);
}
ZK_API int Set_Controller_IP_Block_NC_E(ArmSocket s, const char* ip) {
    return set(Request(s, "set_NetIP").text("ip", ip), Set_Controller_IP_NC_Cmd);
}
ZK_API int Parser_Set_Net_State_E(const char* text) { return acknowledgement(text, "status"); }
