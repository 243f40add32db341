#include "support/command_case.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <future>
#include <map>
#include <regex>
#include <sstream>

#include "support/paths.h"
#include "zk/dispatch.h"
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

void expect_exchange(const CommandCase& row, ScriptedController& controller, ArmSocket arm) {
    std::string outputs;
    EXPECT_EQ(row.call(arm, outputs), row.status);
    EXPECT_EQ(outputs, row.outputs);
    EXPECT_EQ(controller.next_request(), formatted(row.wire));
    if (!row.then.wire.empty()) {
        EXPECT_EQ(controller.next_request(), formatted(row.then.wire));
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

// A reply that came when nobody waited any more.
void expect_old_reply(const CommandCase& row, ScriptedController& controller, ArmSocket arm) {
    FirstRecord(row.mailbox).put(1, kOldResult);
    std::string outputs;
    EXPECT_EQ(row.call(arm, outputs), row.takes_old && !row.status_lost ? kOldResult : row.status) << "an old reply";
    EXPECT_EQ(controller.next_request(), formatted(row.wire));
    if (row.takes_old) eventually([&] { return row.mailbox.count() == 1; });
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

void FirstRecord::put(int count, int result) {
    set_shared(words[1], int32_t{result});
    set_shared(words[0], int32_t{count});
}

void FirstRecord::fill(int value) {
    for (size_t i = 0; i < size; ++i) set_shared(words[i], int32_t{value});
}

CommandCase CommandCase::followed_by(const Exchange& exchange) const {
    CommandCase row = *this;
    row.then = exchange;
    return row;
}
CommandCase CommandCase::adding() const {
    CommandCase row = *this;
    row.adds = true;
    return row;
}
CommandCase CommandCase::setting_the_count() const {
    CommandCase row = *this;
    row.adds = false;
    return row;
}
CommandCase CommandCase::taking_old_replies() const {
    CommandCase row = *this;
    row.takes_old = true;
    return row;
}
CommandCase CommandCase::clearing_old_replies() const {
    CommandCase row = *this;
    row.takes_old = false;
    return row;
}
CommandCase CommandCase::wiping() const {
    CommandCase row = *this;
    row.wipes = true;
    return row;
}
CommandCase CommandCase::with_the_status_of_another() const {
    CommandCase row = *this;
    row.status_lost = true;
    return row;
}
CommandCase CommandCase::on(int mode) const {
    CommandCase row = *this;
    row.arm_mode = mode;
    return row;
}
CommandCase CommandCase::giving(int other_status) const {
    CommandCase row = *this;
    row.status = other_status;
    return row;
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
            ++i;  // the space behind it
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
    if (!row.reply.empty()) controller.answer(command_name(row.wire), row.reply);
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
    for (const CommandCase& row : rows) {
        if (!is_plain(row.name)) continue;
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
            if (limit == tested.end() || i < limit->second) all.push_back({null.name, null.call});
        }
    }
    expect_nothing_sent(all);
}

void expect_kept(ArmSocket arm, const std::vector<Setting>& settings) {
    for (const Setting& setting : settings) {
        std::string outputs;
        EXPECT_EQ(setting.set(arm, outputs), setting.status) << setting.name;
        EXPECT_EQ(setting.ask(arm, outputs), 0) << setting.name;
        EXPECT_EQ(outputs, setting.outputs) << setting.name;
    }
}

void expect_suspension(const std::vector<SuspendedCall>& calls) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    const ArmSocket arm = connect_arm(controller);
    for (const SuspendedCall& call : calls) {
        SCOPED_TRACE(call.name);
        set_shared(m_nOutTime, 60000);
        std::string outputs;
        std::future<int> status = std::async(std::launch::async, [&] { return call.call(arm, outputs); });
        EXPECT_NE(controller.next_request(), "");
        EXPECT_EQ(shared(SuspendQueue), 1);
        if (call.reply.empty()) set_shared(m_nOutTime, 1);
        if (!call.reply.empty()) controller.say(call.reply);
        EXPECT_EQ(status.get(), call.reply.empty() ? 7 : 0);
        EXPECT_EQ(shared(SuspendQueue), 0);
    }
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
