// Inputs, outputs and supply voltages, of the controller and of the tool flange.
#include "zk/replies/io.h"

#include <algorithm>

#include "commands/twin.h"
#include "connection/exchange.h"
#include "connection/reply.h"
#include "connection/wrappers.h"
#include "zk/replies/arm_limits.h"
#include "zk/replies/file_transfer.h"

using namespace zk;

namespace {

constexpr int kBankSize = 4;
constexpr int kToolSize = 2;

Request numbered(ArmSocket s, const char* command, uint8_t number) {
    return Request(s, command).number("IO_Num", number);
}

Request switched(ArmSocket s, const char* command, uint8_t number, bool on) {
    return numbered(s, command, number).number("state", on ? 1 : 0);
}

Request supply(ArmSocket s, uint8_t type, uint8_t start_enable) {
    return Request(s, "set_voltage").number("voltage_type", type).boolean("start_enable", start_enable != 0);
}

Request analogue_output(ArmSocket s, uint8_t number, float voltage) {
    return numbered(s, "set_AO_state", number).number("voltage", thousandths(voltage));
}

template <class Record>
int byte_query(const Request& request, Record (&mailbox)[ZK_SLOTS], uint8_t* out) {
    return query(request, mailbox, [&](const Record& reply) { *out = static_cast<uint8_t>(reply.value); });
}

int whole_volts_query(const Request& request, FloatReply (&mailbox)[ZK_SLOTS], uint8_t* volts) {
    return query(request, mailbox,
                 [&](const FloatReply& reply) { *volts = static_cast<uint8_t>(truncated(reply.value)); });
}

int bank_query(const Request& request, IoBankReply (&mailbox)[ZK_SLOTS], int32_t* digital, float* analogue) {
    return query(request, mailbox, [&](const IoBankReply& reply) {
        std::copy_n(reply.digital, kBankSize, digital);
        std::copy_n(reply.analogue, kBankSize, analogue);
    });
}

int bank(const char* text, const char* digital_key, const char* analogue_key, int32_t* digital, float* analogue) {
    Reply reply(text);
    const Item states = reply.array(reply.root(), digital_key);
    for (int i = 0; i < std::min(states.size(), kBankSize); ++i) digital[i] = states[i].integer();
    const Item voltages = reply.array(reply.root(), analogue_key);
    scaled(voltages, std::min(voltages.size(), kBankSize), 1000.0f, analogue);
    return reply.status();
}

template <class Out>
int state_query(ArmSocket s, uint8_t number, IoStateReply (&mailbox)[ZK_SLOTS], Out* state, Out* mode) {
    return query(numbered(s, "get_IO_state", number), mailbox, [&](const IoStateReply& reply) {
        *state = static_cast<Out>(reply.state);
        *mode = static_cast<Out>(reply.mode);
    });
}

}  // namespace

AckReply Set_DO_State_Cmd[ZK_SLOTS];
ZK_API int Set_DO_State(ArmSocket s, uint8_t number, uint8_t state, bool block) {
    return block ? Set_DO_State_Block(s, number, state) : Set_DO_State_NonBlock(s, number, state);
}
ZK_API int Set_DO_State_Block(ArmSocket s, uint8_t number, uint8_t state) {
    return set(switched(s, "set_DO_state", number, state != 0), Set_DO_State_Cmd);
}
ZK_API int Set_DO_State_NonBlock(ArmSocket s, uint8_t number, uint8_t state) {
    return post(switched(s, "set_DO_state", number, state != 0));
}
ZK_API int Parser_Set_DO_State(const char* text) { return acknowledgement(text, "set_state"); }
ZK_TWIN(Parser_Set_DO_State);

AckReply Set_AO_State_Cmd[ZK_SLOTS];
ZK_API int Set_AO_State(ArmSocket s, uint8_t number, float voltage, bool block) {
    return block ? Set_AO_State_Block(s, number, voltage) : Set_AO_State_NonBlock(s, number, voltage);
}
ZK_API int Set_AO_State_Block(ArmSocket s, uint8_t number, float voltage) {
    return set(analogue_output(s, number, voltage), Set_AO_State_Cmd);
}
ZK_API int Set_AO_State_NonBlock(ArmSocket s, uint8_t number, float voltage) {
    return post(analogue_output(s, number, voltage));
}
ZK_API int Parser_Set_AO_State(const char* text) { return acknowledgement(text, "state"); }
ZK_TWIN(Parser_Set_AO_State);

ZK_API int Set_IO_State(ArmSocket s, int32_t type, uint8_t number, uint8_t value, bool block) {
    if (sending_file()) return ZK_SENDING_FILE;
    switch (type) {
        case 0:
            return Set_DO_State(s, number, value, block);
        case 1:
            return Set_AO_State(s, number, static_cast<float>(value), block);
        default:
            return ZK_WRONG_TYPE;
    }
}

IntReply Get_DO_State_Cmd[ZK_SLOTS];
ZK_API int Get_DO_State(ArmSocket s, uint8_t number, uint8_t* state) { return Get_DO_State_Block(s, number, state); }
ZK_API int Get_DO_State_Block(ArmSocket s, uint8_t number, uint8_t* state) {
    return byte_query(numbered(s, "get_DO_state", number), Get_DO_State_Cmd, state);
}
ZK_API int Parser_Get_DO_State(const char* text, int32_t* state) { return integer_value(text, "IO_state", state); }
ZK_TWIN(Parser_Get_DO_State);

// The route stores the value in the mailbox of the outputs, so here it stays 0.
IntReply Get_DI_State_Cmd[ZK_SLOTS];
ZK_API int Get_DI_State(ArmSocket s, uint8_t number, uint8_t* state) { return Get_DI_State_Block(s, number, state); }
ZK_API int Get_DI_State_Block(ArmSocket s, uint8_t number, uint8_t* state) {
    return byte_query(numbered(s, "get_DI_state", number), Get_DI_State_Cmd, state);
}
ZK_API int Parser_Get_DI_State(const char* text, int32_t* state) { return integer_value(text, "IO_state", state); }
ZK_TWIN(Parser_Get_DI_State);

FloatReply Get_AO_State_Cmd[ZK_SLOTS];
ZK_API int Get_AO_State(ArmSocket s, uint8_t number, uint8_t* volts) { return Get_AO_State_Block(s, number, volts); }
ZK_API int Get_AO_State_Block(ArmSocket s, uint8_t number, uint8_t* volts) {
    return whole_volts_query(numbered(s, "get_AO_state", number), Get_AO_State_Cmd, volts);
}
ZK_API int Parser_Get_AO_State(const char* text, float* volts) { return float_value(text, "voltage", 1000.0f, volts); }
ZK_TWIN(Parser_Get_AO_State);

FloatReply Get_AI_State_Cmd[ZK_SLOTS];
ZK_API int Get_AI_State(ArmSocket s, uint8_t number, uint8_t* volts) { return Get_AI_State_Blcok(s, number, volts); }
ZK_API int Get_AI_State_Blcok(ArmSocket s, uint8_t number, uint8_t* volts) {
    return whole_volts_query(numbered(s, "get_AI_state", number), Get_AI_State_Cmd, volts);
}
ZK_API int Parser_Get_AI_State(const char* text, float* volts) { return float_value(text, "voltage", 1000.0f, volts); }
ZK_TWIN(Parser_Get_AI_State);

IoBankReply Get_IO_State_Cmd[ZK_SLOTS];
ZK_API int Get_IO_Input(ArmSocket s, int32_t* digital, float* analogue) {
    return checked(Get_IO_Input_Block, s, digital, analogue);
}
ZK_API int Get_IO_Input_Block(ArmSocket s, int32_t* digital, float* analogue) {
    return bank_query({s, "get_IO_input"}, Get_IO_State_Cmd, digital, analogue);
}
ZK_API int Parser_IO_Input(const char* text, int32_t* digital, float* analogue) {
    return bank(text, "DI", "AI", digital, analogue);
}
ZK_TWIN(Parser_IO_Input);

IoBankReply Get_IO_Output_State_Cmd[ZK_SLOTS];
ZK_API int Get_IO_Output(ArmSocket s, int32_t* digital, float* analogue) {
    return checked(Get_IO_Output_Block, s, digital, analogue);
}
ZK_API int Get_IO_Output_Block(ArmSocket s, int32_t* digital, float* analogue) {
    return bank_query({s, "get_IO_output"}, Get_IO_Output_State_Cmd, digital, analogue);
}
ZK_API int Parser_IO_Output(const char* text, int32_t* digital, float* analogue) {
    return bank(text, "DO", "AO", digital, analogue);
}
ZK_TWIN(Parser_IO_Output);

IoStateReply Get_DIO_State_Cmd[ZK_SLOTS];
ZK_API int Get_IO_State(ArmSocket s, uint8_t number, uint8_t* state, uint8_t* mode) {
    return checked(Get_IO_State_Block, s, number, state, mode);
}
ZK_API int Get_IO_State_Block(ArmSocket s, uint8_t number, uint8_t* state, uint8_t* mode) {
    return state_query(s, number, Get_DIO_State_Cmd, state, mode);
}
ZK_API int Parser_Get_IO_State(const char* text, int32_t* state, int32_t* mode) {
    Reply reply(text);
    reply.take("IO_state", *state);
    if (const Item number = reply.find("IO_Mode"); reply.good() && number.is_number()) *mode = number.integer();
    return reply.status();
}
ZK_TWIN(Parser_Get_IO_State);

AckReply Set_IO_Mode_Cmd[ZK_SLOTS];
ZK_API int Set_IO_Mode(ArmSocket s, uint8_t number, uint8_t mode) {
    return guarded(Set_IO_Mode_Block, s, number, mode);
}
ZK_API int Set_IO_Mode_Block(ArmSocket s, uint8_t number, uint8_t mode) {
    return set(numbered(s, "set_IO_mode", number).number("IO_mode", mode), Set_IO_Mode_Cmd);
}
ZK_API int Parser_Set_IO_Mode(const char* text) { return acknowledgement(text, "set_state"); }

AckReply Set_Voltage_Cmd[ZK_SLOTS];
ZK_API int Set_Voltage(ArmSocket s, uint8_t type, uint8_t start_enable) {
    return guarded(Set_Voltage_Block, s, type, start_enable);
}
ZK_API int Set_Voltage_Block(ArmSocket s, uint8_t type, uint8_t start_enable) {
    return set(supply(s, type, start_enable), Set_Voltage_Cmd);
}
ZK_API int Parser_Set_Voltage(const char* text) { return acknowledgement(text, "state"); }

IntReply Get_Voltage_Cmd[ZK_SLOTS];
ZK_API int Get_Voltage(ArmSocket s, uint8_t* type) { return checked(Get_Voltage_Block, s, type); }
ZK_API int Get_Voltage_Block(ArmSocket s, uint8_t* type) {
    return byte_query({s, "get_voltage"}, Get_Voltage_Cmd, type);
}
ZK_API int Parser_Get_Voltage(const char* text, int32_t* type) { return integer_value(text, "voltage_type", type); }

AckReply Set_Tool_DO_State_Cmd[ZK_SLOTS];
ZK_API int Set_Tool_DO_State(ArmSocket s, uint8_t number, uint8_t state, bool block) {
    return guarded(block ? Set_Tool_DO_State_Block : Set_Tool_DO_State_NonBlock, s, number, state);
}
ZK_API int Set_Tool_DO_State_Block(ArmSocket s, uint8_t number, uint8_t state) {
    return set(switched(s, "set_tool_DO_state", number, state != 0), Set_Tool_DO_State_Cmd);
}
ZK_API int Set_Tool_DO_State_NonBlock(ArmSocket s, uint8_t number, uint8_t state) {
    return post(switched(s, "set_tool_DO_state", number, state != 0));
}
ZK_API int Parser_Set_Tool_DO_State_2(const char* text) { return acknowledgement(text, "set_state"); }
ZK_TWIN(Parser_Set_Tool_DO_State_2);

AckReply Set_Tool_IO_Mode_Cmd[ZK_SLOTS];
ZK_API int Set_Tool_IO_Mode(ArmSocket s, uint8_t number, uint8_t state, bool block) {
    return guarded(block ? Set_Tool_IO_Mode_Block : Set_Tool_IO_Mode_NonBlock, s, number, state);
}
ZK_API int Set_Tool_IO_Mode_Block(ArmSocket s, uint8_t number, uint8_t state) {
    return set(switched(s, "set_tool_IO_mode", number, state != 0), Set_Tool_IO_Mode_Cmd);
}
ZK_API int Set_Tool_IO_Mode_NonBlock(ArmSocket s, uint8_t number, uint8_t state) {
    return post(switched(s, "set_tool_IO_mode", number, state != 0));
}
ZK_API int Parser_Set_Tool_DO_State(const char* text) { return acknowledgement(text, "set_state"); }
ZK_TWIN(Parser_Set_Tool_DO_State);

ToolIoReply Get_Tool_IO_State_Cmd[ZK_SLOTS];
ZK_API int Get_Tool_IO_State(ArmSocket s, float* mode, float* state) {
    return checked(Get_Tool_IO_State_Block, s, mode, state);
}
ZK_API int Get_Tool_IO_State_Block(ArmSocket s, float* mode, float* state) {
    return query({s, "get_tool_IO_state"}, Get_Tool_IO_State_Cmd, [&](const ToolIoReply& reply) {
        std::copy_n(reply.mode, kToolSize, mode);
        std::copy_n(reply.state, kToolSize, state);
    });
}
ZK_API int Parser_Get_Tool_IO_State(const char* text, float* mode, float* state) {
    Reply reply(text);
    const auto pair = [&](const char* key, float* values) {
        const Item array = reply.array(reply.root(), key);
        scaled(array, std::min(array.size(), kToolSize), 1.0f, values);
    };
    pair("IO_Mode", mode);
    pair("IO_State", state);
    return reply.status();
}
ZK_TWIN(Parser_Get_Tool_IO_State);

AckReply Set_Tool_Voltage_Cmd[ZK_SLOTS];
static Request tool_supply(ArmSocket s, uint8_t type) {
    return Request(s, "set_tool_voltage").number("voltage_type", type);
}
ZK_API int Set_Tool_Voltage(ArmSocket s, uint8_t type, bool block) {
    return guarded(block ? Set_Tool_Voltage_Block : Set_Tool_Voltage_NonBlock, s, type);
}
ZK_API int Set_Tool_Voltage_Block(ArmSocket s, uint8_t type) { return set(tool_supply(s, type), Set_Tool_Voltage_Cmd); }
ZK_API int Set_Tool_Voltage_NonBlock(ArmSocket s, uint8_t type) { return post(tool_supply(s, type)); }
ZK_API int Parser_Set_Tool_Voltage(const char* text) { return acknowledgement(text, "state"); }
ZK_TWIN(Parser_Set_Tool_Voltage);

IntReply Get_Tool_Voltage_Cmd[ZK_SLOTS];
ZK_API int Get_Tool_Voltage(ArmSocket s, uint8_t* type) { return checked(Get_Tool_Voltage_Block, s, type); }
ZK_API int Get_Tool_Voltage_Block(ArmSocket s, uint8_t* type) {
    return byte_query({s, "get_tool_voltage"}, Get_Tool_Voltage_Cmd, type);
}
ZK_API int Parser_Get_Tool_Voltage(const char* text, int32_t* type) {
    return integer_value(text, "voltage_type", type);
}
ZK_TWIN(Parser_Get_Tool_Voltage);

// The same requests under other names. Their replies go to the mailboxes above, so these end in 7.
AckReply Set_IO_Mode_NC_Cmd[ZK_SLOTS];
ZK_API int Set_IO_Mode_NC_E(ArmSocket s, uint8_t number, int32_t mode) {
    return after_2_ms(Set_IO_Mode_Block_NC_E, s, number, mode);
}
ZK_API int Set_IO_Mode_Block_NC_E(ArmSocket s, uint8_t number, int32_t mode) {
    return set(numbered(s, "set_IO_mode", number).number("IO_mode", mode == 1 ? 1 : 0), Set_IO_Mode_NC_Cmd);
}
ZK_API int Set_IO_Mode_NC_Block_E(ArmSocket s, uint8_t number, int32_t mode) {
    return Set_IO_Mode_Block_NC_E(s, number, mode);
}

AckReply Set_IO_State_NC_Cmd[ZK_SLOTS];
ZK_API int Set_IO_State_NC_E(ArmSocket s, uint8_t number, int32_t state) {
    return after_2_ms(Set_IO_State_Block_NC_E, s, number, state);
}
ZK_API int Set_IO_State_Block_NC_E(ArmSocket s, uint8_t number, int32_t state) {
    return set(switched(s, "set_DO_state", number, state == 1), Set_IO_State_NC_Cmd);
}
ZK_API int Set_IO_State_NC_Block_E(ArmSocket s, uint8_t number, int32_t state) {
    return Set_IO_State_Block_NC_E(s, number, state);
}

IoStateReply Get_IO_State_NC_Cmd[ZK_SLOTS];
ZK_API int Get_IO_State_NC_E(ArmSocket s, uint8_t number, int32_t* state, int32_t* mode) {
    return after_2_ms(Get_IO_State_Block_NC_E, s, number, state, mode);
}
ZK_API int Get_IO_State_Block_NC_E(ArmSocket s, uint8_t number, int32_t* state, int32_t* mode) {
    return state_query(s, number, Get_IO_State_NC_Cmd, state, mode);
}
ZK_API int Get_IO_State_NC_Block_E(ArmSocket s, uint8_t number, int32_t* state, int32_t* mode) {
    return Get_IO_State_Block_NC_E(s, number, state, mode);
}
ZK_API int Parser_Get_IO_State_NC_E(const char* text, int32_t* state, int32_t* mode) {
    return Parser_Get_IO_State(text, state, mode);
}

IntReply Get_Controller_Voltage_NC_Cmd[ZK_SLOTS];
ZK_API int Get_Controller_Voltage_NC_E(ArmSocket s, uint8_t* type) {
    return after_2_ms(Get_Controller_Voltage_Block_NC_E, s, type);
}
ZK_API int Get_Controller_Voltage_Block_NC_E(ArmSocket s, uint8_t* type) {
    return byte_query({s, "get_voltage"}, Get_Controller_Voltage_NC_Cmd, type);
}
ZK_API int Get_Controller_Voltage_NC_Block_E(ArmSocket s, uint8_t* type) {
    return Get_Controller_Voltage_Block_NC_E(s, type);
}

AckReply Set_Controller_Voltage_NC_Cmd[ZK_SLOTS];
ZK_API int Set_Controller_Voltage_NC_E(ArmSocket s, uint8_t type, uint8_t start_enable) {
    return after_2_ms(Set_Controller_Voltage_Block_NC_E, s, type, start_enable);
}
ZK_API int Set_Controller_Voltage_Block_NC_E(ArmSocket s, uint8_t type, uint8_t start_enable) {
    return set(supply(s, type, start_enable), Set_Controller_Voltage_NC_Cmd);
}
ZK_API int Set_Controller_Voltage_NC_Block_E(ArmSocket s, uint8_t type, uint8_t start_enable) {
    return Set_Controller_Voltage_Block_NC_E(s, type, start_enable);
}
