// Every parser of a reply, on every text: with outputs of exactly the size that its header promises.
#include <cjson/cJSON.h>
#include <strings.h>

#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <tuple>
#include <type_traits>
#include <vector>

#include "input.h"
#include "interface.h"

namespace {

constexpr ArmSocket kSixJoints = -1, kSevenJoints = 1'000'000;  // no connection counts as six joints
constexpr std::size_t kJoints = 0;                              // as many elements as the arm has joints

// The outputs with more than one element. Others have one, those of parsers that take the socket one for each joint.
const std::map<std::string, std::vector<std::size_t>> kElements{
    {"Parser_Get_DH_Data", {5}},
    {"Paser_Get_Joint_Degree", {7}},
    {"Parser_Get_Joint_Odom", {8}},
    {"Parser_Get_Force_Data", {6, 6, 6, 6}},
    {"Parser_Get_Current_Trajectory", {1, 7}},
    {"Parser_Force_Position_Move", {kJoints, 7, 1, 1}},
    {"Parser_Get_All_Tool_Frame", {ZK_FRAME_NAMES, 1}},
    {"Parser_Get_All_Work_Frame", {ZK_FRAME_NAMES, 1}},
    {"Parser_Get_Given_Work_Frame", {sizeof(GivenWorkFrameReply::frame_name), 1}},
    {"Parser_IO_Input", {4, 4}},
    {"Parser_IO_Output", {4, 4}},
    {"Parser_Get_Tool_IO_State", {2, 2}},
    {"Parser_Get_Read_Multiple_Coils", {ZK_MODBUS_VALUES, 1}},
    {"Parser_Read_Multiple_Holding_Registers", {ZK_MODBUS_VALUES, 1}},
    {"Parser_Get_Electronic_Fence_List_Names", {ZK_FENCES, 1}},
    {"Parser_Get_Electronic_Fence_List_Info", {ZK_FENCES, 1}},
    {"Parser_Get_Arm_Hardware_Version", {20}},
    {"Parser_Get_Arm_Software_Version", {12, 12, 12, 12, 20}},
    {"Parser_Get_High_Ethernet", {16, 16, 16, 18}},
    {"Parser_Get_Wired_Net", {16, 16, 18}},
};

// A text that does not fit its field ends the process. The parsers that do so, and the longest texts by key.
const std::set<std::string> kEndsOnLongText{"Parser_Get_Arm_Software_Version",
                                            "Parser_Get_Arm_Software_Info",
                                            "Parser_Get_High_Ethernet",
                                            "Parser_Get_Wired_Net",
                                            "Parser_Get_Wifi_Net",
                                            "Parser_Get_Realtime_Push"};
struct Limit {
    const char* key;
    std::size_t length;
};
constexpr Limit kLongest[] = {
    {"Product_version", 9}, {"version", 9}, {"build_time", 19}, {"model_version", 4}, {"ip", 15},      {"mask", 15},
    {"gateway", 15},        {"mac", 17},    {"mode", 4},        {"ssid", 32},         {"password", 15}};

bool has_long_text(const cJSON* item) {
    for (; item; item = item->next) {
        if (has_long_text(item->child)) return true;
        if (!cJSON_IsString(item) || !item->string) continue;
        for (const Limit& limit : kLongest) {
            if (strcasecmp(item->string, limit.key) == 0 && std::strlen(item->valuestring) > limit.length) return true;
        }
    }
    return false;
}

struct Parser {
    bool ends_on_long_text;
    std::function<void(const char*)> run;
};
using Parsers = std::vector<Parser>;

// `call` parses a text into outputs that are zeroed before, so that an input runs the same every time.
template <class... Outputs, class Call>
void add(Parsers& parsers, std::string name, std::size_t usual, std::size_t joints, Call call) {
    if (name.size() > 2 && name.substr(name.size() - 2) == "_E") name.resize(name.size() - 2);
    const auto row = kElements.find(name);
    std::size_t output = 0;
    [[maybe_unused]] const auto size = [&](bool is_number) {
        const bool listed = row != kElements.end() && output < row->second.size();
        const std::size_t elements = listed ? row->second[output] : is_number ? usual : 1;
        ++output;
        return elements == kJoints ? joints : elements;
    };
    std::tuple<std::vector<Outputs>...> outputs{std::vector<Outputs>(size(std::is_arithmetic_v<Outputs>))...};
    parsers.push_back({kEndsOnLongText.count(name) > 0, [call, outputs](const char* text) mutable {
                           std::apply(
                               [&](auto&... output) {
                                   (std::fill(output.begin(), output.end(), Outputs{}), ...);
                                   call(text, output.data()...);
                               },
                               outputs);
                       }});
}
template <class... Outputs>
void add(Parsers& parsers, const char* name, int (*parser)(const char*, Outputs*...)) {
    add<Outputs...>(parsers, name, 1, 6, parser);
}
template <class... Outputs>
void add(Parsers& parsers, const char* name, int (*parser)(ArmSocket, const char*, Outputs*...)) {
    for (const ArmSocket socket : {kSixJoints, kSevenJoints}) {
        const std::size_t joints = socket == kSixJoints ? 6 : 7;
        add<Outputs...>(parsers, name, kJoints, joints,
                        [=](const char* text, Outputs*... outputs) { parser(socket, text, outputs...); });
    }
}

Parsers every_parser() {
    Init_Socket_Joint(75, kSevenJoints);
    Parsers all;
    std::set<const void*> seen;  // many have two names
    const auto add_new = [&](const char* name, auto* parser) {
        if (seen.insert(reinterpret_cast<const void*>(parser)).second) add(all, name, parser);
    };
#define ADD(name) add_new(#name, name);
    ZK_EVERY_PARSER(ADD)
    return all;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Parsers parsers = every_parser();
    const std::string text(reinterpret_cast<const char*>(data), size);
    cJSON* const tree = cJSON_Parse(text.c_str());
    const bool long_text = has_long_text(tree);
    cJSON_Delete(tree);
    for (Parser& parser : parsers) {
        if (!long_text || !parser.ends_on_long_text) parser.run(text.c_str());
    }
    return 0;
}
