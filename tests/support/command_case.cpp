#include "support/command_case.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

#include "support/paths.h"
#include "zk/mailboxes.h"
#include "zk/status.h"
#include "zk/system.h"

namespace zk::test {
namespace {

constexpr int kOldResult = 42;

bool is_plain(const std::string& name) { return !std::regex_search(name, std::regex("Block|Blcok|BLock")); }

int request_count(ScriptedController& controller) {
    const std::string bytes = controller.received();
    int count = 0;
    for (size_t at = 0; (at = bytes.find("\r\n", at)) != std::string::npos; ++at) ++count;
    return count;
}

// Everything that was sent is what this request sends.
void expect_silence(ScriptedController& controller, ArmSocket arm) {
    Set_Ethernet_Block(arm);
    EXPECT_EQ(command_name(controller.next_request()), "set_ethernet");
}

void expect_counter(const CommandCase& row) {
    for (int i = 0; i < 2; ++i) {
        std::string message = row.reply;
        handle_Recv_Json(0, message.data());
    }
    EXPECT_EQ(row.mailbox.count(), row.adds ? 2 : 1) << "after two replies";
    FirstRecord(row.mailbox).fill(0);
}

// Of an acknowledgement only true and false count, and only under its key.
void expect_acknowledgement(const CommandCase& row) {
    const auto expect_result = [&](const std::string& pattern, const std::string& changed, int status) {
        std::string message = std::regex_replace(row.reply, std::regex(pattern), changed);
        handle_Recv_Json(0, message.data());
        EXPECT_EQ(row.mailbox.result(), status) << message;
    };
    expect_result(":true", ":false", 1);
    for (const char* value : {":1", ":0", ":\"true\"", ":null", ":[true]", ":{}"}) {
        expect_result(":true", value, row.mailbox.not_boolean);
    }
    expect_result("\"\\w+\":true", "\"other_key\":true", 9);
    expect_result("\\}$", "", 9);
    FirstRecord(row.mailbox).fill(0);
}

// Changes each key of a query's reply in turn.
void expect_reading(const CommandCase& row, nlohmann::ordered_json good, const std::string& object = "") {
    using Json = nlohmann::ordered_json;
    for (const auto& [name, value] : good.at(Json::json_pointer(object)).items()) {
        if (name == "state" || name == "command") continue;
        const std::string path = object + "/" + name;
        const Json::json_pointer key(path);
        const auto exception = row.reading.of.find(path);
        const Strictness strictness = exception == row.reading.of.end() ? row.reading.of_most : exception->second;
        const auto expect_status = [&](const Json& reply, int status) {
            std::string message = reply.dump();
            handle_Recv_Json(0, message.data());
            EXPECT_EQ(row.mailbox.result(), status ? status : row.status) << message;
        };
        const auto with_value = [&](const Json& other) {
            Json reply = good;
            reply[key] = other;
            return reply;
        };
        Json without = good;
        without[key.parent_pointer()].erase(name);
        expect_status(without, strictness.missing);
        expect_status(with_value(nullptr), strictness.wrong);
        if (value.is_array() && value.size() >= 6 && value[0].is_number()) {
            expect_status(with_value(Json(value.begin(), value.end() - 1)), strictness.shorter);
            expect_status(with_value({1, 2, 3, 4, 5, 6, 7, 8}), strictness.longer);
        }
        if (value.is_object()) expect_reading(row, good, path);
    }
    FirstRecord(row.mailbox).fill(0);
}

// The commands that raise SuspendQueue while they wait.
bool suspends(const std::string& name) {
    static const std::regex suspending(
        "(Arm_Socket_State|(Start|Stop)_Calibrate|Get_Calibrate_State|Auto_Set_Joint_Limit(_E)?|Get_Log_File|"
        "Get_Arm_Hardware_Version|[GS]et_Arm_Run_Mode|Get_Current_Trajectory|(Add|Start|Clear|Stop)_Waypoint|Timer|"
        "Set_System_State_Servo|Clear_Force_Data|Set_PWM|Set_Lift|Set_Vehicle|[GS]et_Car_\\w+|"
        "Set_(Lift|Sale)_Version_E|Set_Online_Next_E|Get_Tool_Hardware_Version_E|\\w+_NC_E)");
    return is_plain(name) && std::regex_match(name, suspending);
}

// SuspendQueue is read when the request arrives, unless the call has ended by then; a call that ends at that moment is
// repeated. A command that polls after its reply suspends the queue in those polls, so it is not checked.
void expect_exchange(const CommandCase& row, ScriptedController& controller, ArmSocket arm, int tries = 3) {
    std::string outputs;
    std::atomic<bool> waits = true;
    std::atomic<int> suspended = -1;
    if (!row.reply.empty()) {
        controller.answer_with(command_name(row.wire), [&](const std::string&) {
            const int now = shared(SuspendQueue);
            if (waits) suspended = now;
            return Pieces{line(row.reply)};
        });
    }
    EXPECT_EQ(row.call(arm, outputs), row.status);
    waits = false;
    EXPECT_EQ(outputs, row.outputs);
    EXPECT_EQ(controller.next_request(), formatted(row.wire));
    if (!row.reply.empty()) controller.answer(command_name(row.wire), row.reply);
    if (!row.then.wire.empty()) {
        EXPECT_EQ(controller.next_request(), formatted(row.then.wire));
    } else if (suspended >= 0 && suspended != suspends(row.name)) {
        if (tries > 1) return expect_exchange(row, controller, arm, tries - 1);
        ADD_FAILURE() << "SuspendQueue is " << suspended;
    }
    if (row.mailbox.words) {
        EXPECT_EQ(row.mailbox.count(), 0) << "the reply is taken";
    }
}

void expect_refusal(const CommandCase& row, ScriptedController& controller, ArmSocket arm) {
    const int before = request_count(controller);
    controller.answer(command_name(row.wire), std::regex_replace(row.reply, std::regex(":true"), ":false"));
    std::string outputs;
    EXPECT_EQ(row.call(arm, outputs), 1) << "refused";
    EXPECT_EQ(request_count(controller), before + 1) << "nothing follows a refusal";
    controller.forget_requests();
    controller.answer(command_name(row.wire), row.reply);
}

// A reply to an earlier request. A call that takes it has ended before its own reply comes.
void expect_old_reply(const CommandCase& row, ScriptedController& controller, ArmSocket arm) {
    FirstRecord(row.mailbox).put(1, kOldResult);
    std::atomic<bool> waits = true;
    controller.answer_with(command_name(row.wire), [&](const std::string&) {
        if (row.takes_old) eventually([&] { return !waits; });
        return Pieces{line(row.reply)};
    });
    std::string outputs;
    EXPECT_EQ(row.call(arm, outputs), row.takes_old && !row.status_lost ? kOldResult : row.status) << "an old reply";
    waits = false;
    EXPECT_EQ(controller.next_request(), formatted(row.wire));
    if (row.takes_old) eventually([&] { return row.mailbox.count() == 1; });
    controller.answer(command_name(row.wire), row.reply);
}

// A query on the second connection, while a reply to the first is there.
void expect_first_record(const CommandCase& row, ScriptedController& controller) {
    const ArmSocket second = connect_arm(controller, row.arm_mode);
    FirstRecord(row.mailbox).fill(7);
    std::string outputs;
    EXPECT_EQ(row.call(second, outputs), row.status) << "on the second connection";
    EXPECT_EQ(outputs, row.outputs) << "on the second connection";
    for (size_t i = 0; i < row.mailbox.size; ++i) EXPECT_EQ(shared(row.mailbox.words[i]), row.wipes ? 0 : 7) << i;
}

}  // namespace

std::vector<NullCall> nulls(const NullCall& call, std::initializer_list<bool> pointers) {
    std::vector<NullCall> calls;
    NullCall next = call;
    for (const bool is_pointer : pointers) {
        if (is_pointer) calls.push_back(next);
        ++next.null;
    }
    return calls;
}

Call::Call(Plain function, std::vector<NullCall> null_calls)
    : with_nulls(std::move(null_calls)), call_([function](ArmSocket arm, std::string&) { return function(arm); }) {}

Call::Call(Function function, std::vector<NullCall> null_calls)
    : with_nulls(std::move(null_calls)), call_(std::move(function)) {}

void FirstRecord::put(int count, int result) {
    set_shared(words[1], int32_t{result});
    set_shared(words[0], int32_t{count});
}

void FirstRecord::fill(int value) {
    for (size_t i = 0; i < size; ++i) set_shared(words[i], int32_t{value});
}

CommandCase queued(const std::string& name, Call call, const std::string& wire, int arm_mode) {
    return {name, call, wire, "", 0, arm_mode};
}

// The acknowledgement of a request by its key, if `reply` is a key.
static std::string whole_reply(const std::string& wire, const std::string& reply) {
    if (reply.empty() || reply.find('{') != std::string::npos) return reply;
    return R"({"command":")" + command_name(wire) + "\",\"" + reply + "\":true}";
}

CommandCase acknowledged(const std::string& name, Call call, FirstRecord mailbox, const std::string& wire,
                         const std::string& reply) {
    CommandCase row{name, call, wire, whole_reply(wire, reply)};
    row.mailbox = mailbox;
    row.refusable = true;
    return row;
}

CommandCase answered(const std::string& name, Call call, FirstRecord mailbox, const std::string& wire,
                     const std::string& reply, const std::string& outputs) {
    CommandCase row{name, call, wire, reply};
    row.mailbox = mailbox;
    row.outputs = outputs;
    row.adds = row.takes_old = true;
    return row;
}

CommandCase no_reply(const std::string& name, Call call, const std::string& wire, const std::string& reply) {
    CommandCase row{name, call, wire, whole_reply(wire, reply), 7};
    row.limit = 50;
    return row;
}

std::string formatted(const std::string& request) {
    if (request.find('{') == std::string::npos) return formatted(R"({"command": ")" + request + "\"}");
    if (request.find('\n') != std::string::npos) return request;
    std::string text;
    int depth = 0;
    bool in_text = false, in_array = false;
    const auto new_line = [&] { return '\n' + std::string(depth, '\t'); };
    for (size_t i = 0; i < request.size(); ++i) {
        const char c = request[i];
        const bool structure = !in_text && !in_array;
        if (c == '"') in_text = !in_text;
        if (!in_text && (c == '[' || c == ']')) in_array = c == '[';
        if (structure && c == '{') {
            ++depth;
            text += c + new_line();
        } else if (structure && c == '}') {
            --depth;
            text += new_line() + c;
        } else if (structure && (c == ',' || c == ':')) {
            text += c + (c == ',' ? new_line() : "\t");
            ++i;  // the space after it
        } else {
            text += c;
        }
    }
    return text;
}

std::string command_name(const std::string& wire) {
    const std::string text = formatted(wire), key = "\"command\":\t\"";
    const size_t start = text.find(key) + key.size();
    return text.substr(start, text.find('"', start) - start);
}

void run(const CommandCase& row) {
    ScriptedController controller;
    ZK_API_Init(row.arm_mode, nullptr);
    set_shared(m_nOutTime, int32_t{row.limit});
    set_shared(m_nOutTime_max, int32_t{row.limit});
    const ArmSocket arm = connect_arm(controller, row.arm_mode);
    if (row.mailbox.words) expect_counter(row);
    if (row.mailbox.words && row.refusable && row.mailbox.not_boolean) expect_acknowledgement(row);
    if (row.mailbox.words && !row.outputs.empty() && row.status < ZK_TIMEOUT && is_plain(row.name)) {
        expect_reading(row, nlohmann::ordered_json::parse(row.reply));
    }
    if (!row.then.wire.empty()) controller.answer(command_name(row.then.wire), row.then.reply);
    expect_exchange(row, controller, arm);
    if (row.refusable) expect_refusal(row, controller, arm);
    if (row.mailbox.words) expect_old_reply(row, controller, arm);
    if (row.mailbox.words && !row.outputs.empty()) expect_first_record(row, controller);
}

void expect_nothing_during_a_file_transfer(const std::vector<CommandCase>& rows) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    const ArmSocket arm = connect_arm(controller);
    set_shared(IsSendFile, 1);
    const std::regex unguarded("(Unwaited_)?(Set_[DA]O|Get_[DA][IO])_State");
    for (const CommandCase& row : rows) {
        if (!is_plain(row.name) || std::regex_match(row.name, unguarded)) continue;
        std::string outputs;
        EXPECT_EQ(row.call(arm, outputs), 18) << row.name;
        EXPECT_EQ(outputs, "") << row.name;
    }
    set_shared(IsSendFile, 0);
    expect_silence(controller, arm);
}

void expect_nothing_sent(const std::vector<BadCall>& calls, int status) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    const ArmSocket arm = connect_arm(controller);
    std::string outputs;
    for (const BadCall& bad : calls) EXPECT_EQ(bad.call(arm, outputs), status) << bad.name;
    expect_silence(controller, arm);
}

void expect_nulls_refused(const std::vector<CommandCase>& rows) {
    // Commands that test no pointer, and those that test only the first so many.
    const std::regex untested(
        "Electronic_Fence|Virtual_Wall|Self_Collision_Enable|Tool_Envelope|Joint_Drive|Drag_Teach_Sensitivity|"
        "Hand_Follow|Read_Multiple_(Holding|Input)|Get_[DA][IO]_State|Get_Install_Pose|Get_Arm_Angular_Speed");
    const std::map<std::string, size_t> tested = {
        {"Get_All_Tool_Frame", 1}, {"Get_All_Work_Frame", 1},       {"Get_Force_Data", 1},       {"Get_Fz", 1},
        {"Get_Lift_State", 3},     {"Get_Arm_Software_Version", 4}, {"Get_Current_Arm_State", 1}};
    std::vector<BadCall> all;
    for (const CommandCase& row : rows) {
        for (size_t i = 0; i < row.call.with_nulls.size(); ++i) {
            const NullCall& null = row.call.with_nulls[i];
            const auto limit = tested.find(null.name);
            if (!is_plain(null.name) || std::regex_search(null.name, untested)) continue;
            if (limit == tested.end() || i < limit->second) all.push_back({null.name, null});
        }
    }
    expect_nothing_sent(all);
}

std::string commands_without_row(const std::string& header, const std::vector<CommandCase>& rows) {
    std::ifstream file(std::string(kSourceFolder) + "/include/zk/" + header);
    std::stringstream text;
    text << file.rdbuf();
    const std::string declarations = text.str();
    const std::regex command(R"(ZK_API int (?!Par?ser_)(\w+)\()");
    std::string missing;
    int count = 0;
    for (std::sregex_iterator found(declarations.begin(), declarations.end(), command), end; found != end; ++found) {
        const std::string name = (*found)[1];
        const auto is_named = [&](const CommandCase& row) { return row.name == name; };
        if (std::none_of(rows.begin(), rows.end(), is_named)) missing += name + " ";
        ++count;
    }
    EXPECT_GT(count, 0) << header;
    return missing;
}

}  // namespace zk::test
