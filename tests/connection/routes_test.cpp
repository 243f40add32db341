// The route of a message: the first literal of the table that it contains decides its code, and its result reaches the
// mailbox of its own slot and no other. The rows of the commands show which mailbox that is.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <sstream>

#include "support/paths.h"
#include "support/pattern.h"
#include "zk_base.h"

namespace {

struct Literal {
    std::string text;
    int code;
};

// clang-format off
const Literal kLiterals[] = {
    {"add_global_waypoint", 265}, {"update_global_waypoint", 266}, {"delete_global_waypoint", 267},
    {"given_global_waypoint", 268}, {"get_global_waypoints_list", 269}, {"point", 231},
    {"set_joint_drive_max_speed", 218}, {"set_joint_max_drive_speed", 218}, {"get_joint_drive_max_speed", 222},
    {"set_joint_drive_max_acc", 219}, {"set_joint_max_drive_acc", 219}, {"get_joint_drive_max_acc", 223},
    {"set_joint_drive_max_pos", 221}, {"get_joint_drive_max_pos", 203}, {"set_joint_drive_min_pos", 220},
    {"get_joint_drive_min_pos", 202}, {"set_joint_max_speed", 2}, {"expand_get_version", 217},
    {"expand_set_version", 216}, {"get_realtime_push", 230}, {"expand_state", 224}, {"expand_config", 225},
    {"expand_get_config", 226}, {"joint_max_speed", 1}, {"joint_zero_pos", 7}, {"set_joint_max_acc", 3},
    {"set_joint_min_pos", 4}, {"set_joint_max_pos", 5}, {"set_joint_en_state", 6}, {"set_joint_clear_err", 8},
    {"start_calibrate", 9}, {"stop_calibrate", 10}, {"calibrate_state", 11}, {"joint_max_acc", 12},
    {"joint_min_pos", 13}, {"joint_max_pos", 14}, {"joint_en_state", 15}, {"joint_err_flag", 16},
    {"joint_software_version", 17}, {"set_arm_max_line_speed", 19}, {"set_arm_max_line_acc", 20},
    {"set_arm_max_angular_speed", 21}, {"set_arm_max_angular_acc", 22}, {"arm_max_line_speed", 23},
    {"arm_max_line_acc", 24}, {"arm_max_angular_speed", 25}, {"arm_max_angular_acc", 26}, {"set_arm_init", 27},
    {"get_collision_stage", 29}, {"set_DH_data", 30}, {"DH_data", 31}, {"set_joint_zero_offset", 32},
    {"set_arm_dynamic_parm", 33}, {"tool_software_version", 34}, {"set_arm_servo", 35}, {"set_system_state_servo", 36},
    {"set_auto_tool_frame", 37}, {"generate_auto_tool_frame", 38}, {"set_manual_tool_frame", 39},
    {"set_change_tool_frame", 40}, {"set_delete_tool_frame", 41}, {"set_payload", 42}, {"set_none_payload", 43},
    {"current_tool_frame", 44}, {"given_tool_frame", 45}, {"get_tool_frame", 45}, {"total_tool_frame", 46},
    {"set_auto_work_frame", 47}, {"set_manual_work_frame", 48}, {"set_change_work_frame", 49},
    {"set_delete_work_frame", 50}, {"current_work_frame", 51}, {"given_work_frame", 52}, {"get_work_frame", 52},
    {"total_work_frame", 53}, {"current_arm_state", 54}, {"current_joint_current", 56}, {"current_joint_voltage", 57},
    {"joint_degree", 58}, {"arm_all_state", 59}, {"arm_plan_num", 60}, {"set_init_pose", 61}, {"init_pose", 62},
    {"set_install_pose", 63}, {"current_trajectory_state", 64}, {"joint_state", 65}, {"pose_state", 66},
    {"set_arm_stop", 67}, {"set_arm_slow_stop", 232}, {"set_arm_pause", 68}, {"set_delete_current_trajectory", 70},
    {"set_arm_delete_trajectory", 71}, {"arm_current_trajectory", 72}, {"movej", 189}, {"movel", 189}, {"movec", 189},
    {"moves", 189}, {"add_waypoint", 73}, {"start_waypoint", 74}, {"clear_waypoint", 75}, {"timer", 77},
    {"set_joint_teach", 78}, {"set_pos_teach", 79}, {"set_ort_teach", 80}, {"set_stop_teach", 81},
    {"set_joint_step", 82}, {"set_pos_step", 83}, {"set_ort_step", 84}, {"controller_state", 85}, {"set_arm_power", 86},
    {"arm_power_state", 87}, {"clear_system_err", 88}, {"arm_hardware_version", 89}, {"arm_software_version", 90},
    {"get_log_file", 91}, {"get_system_runtime", 92}, {"clear_system_runtime", 93}, {"get_joint_odom", 94},
    {"clear_joint_odom", 95}, {"set_high_speed_eth", 96}, {"set_tool_DO_state", 106}, {"set_DO_state", 97},
    {"set_AO_state", 98}, {"DO_state", 100}, {"DI_state", 101}, {"AO_state", 102}, {"AI_state", 103}, {"IO_input", 99},
    {"IO_output", 104}, {"set_tool_IO_mode", 107}, {"tool_IO_state", 108}, {"Start_Force_Position_Move", 160},
    {"Stop_Force_Position_Move", 162}, {"set_tool_voltage", 109}, {"tool_voltage", 110}, {"set_gripper_route", 111},
    {"set_gripper", 112}, {"start_drag_teach", 113}, {"stop_drag_teach", 114}, {"set_drag_teach_sensitivity", 272},
    {"get_drag_teach_sensitivity", 273}, {"run_drag_trajectory", 115}, {"pause_drag_trajectory", 116},
    {"continue_drag_trajectory", 117}, {"stop_drag_trajectory", 118}, {"drag_trajectory_origin", 119},
    {"start_multi_drag_teach", 120}, {"set_force_position", 121}, {"stop_force_position", 122}, {"get_force_data", 123},
    {"clear_force_data", 124}, {"stop_set_force_sensor", 126}, {"set_force_sensor", 125}, {"set_hand_posture", 127},
    {"set_hand_seq", 128}, {"set_hand_angle", 129}, {"set_hand_speed", 130}, {"set_PWM", 132}, {"get_Fz", 133},
    {"clear_Fz", 134}, {"auto_set_Fz", 135}, {"manual_set_Fz", 136}, {"close_modbus_mode", 138}, {"read_coils", 139},
    {"read_multiple_coils", 215}, {"input_status", 140}, {"multiple_holding_registers", 211},
    {"multiple_input_registers", 270}, {"holding_registers", 141}, {"input_registers", 142}, {"write_single_coil", 143},
    {"write_coils", 144}, {"write_single_register", 145}, {"write_registers", 146}, {"set_vehicle", 147},
    {"set_lift_speed", 149}, {"set_lift_height", 150}, {"set_lift", 148}, {"lift_state", 151}, {"set_car_move", 152},
    {"set_car_speed", 153}, {"set_car_navigation_speed", 154}, {"set_car_navigation_mode", 155}, {"get_car_state", 156},
    {"set_car_charge", 157}, {"set_car_station_num", 158}, {"set_collision_state", 28},
    {"current_joint_temperature", 55}, {"set_arm_continue", 69}, {"set_hand_force", 131}, {"hand_follow_angle", 274},
    {"hand_follow_pos", 275}, {"set_modbus_mode", 137}, {"set_modbustcp_mode", 252}, {"Force_Position_State", 161},
    {"set_teach_frame", 165}, {"get_teach_frame", 241}, {"download_project", 164}, {"run_project", 163},
    {"install_pose", 167}, {"auto_set_joint_limit", 206}, {"IO_state", 105}, {"set_arm_run_mode", 181},
    {"get_arm_run_mode", 182}, {"run_update_software", 183}, {"online_next", 184}, {"set_lift_version", 185},
    {"set_sale_version", 192}, {"get_tool_hardware_version", 193}, {"save_trajectory", 194}, {"popup", 197},
    {"get_program_trajectory_list", 235}, {"get_program_run_state", 236}, {"set_program_id_start", 237},
    {"program_run_finish", 240}, {"delete_program_trajectory", 239}, {"set_high_ethernet", 198},
    {"get_high_ethernet", 199}, {"save_device_info_all", 200}, {"set_NetIP", 201}, {"get_wired_net", 208},
    {"get_wifi_net", 209}, {"get_controller_RS485_mode", 233}, {"get_tool_RS485_mode", 234}, {"set_net_default", 210},
    {"set_IO_mode", 212}, {"set_voltage", 213}, {"voltage_state", 214}, {"set_realtime_push", 229},
    {"set_electronic_fence_enable", 242}, {"get_electronic_fence_enable", 243}, {"set_electronic_fence_config", 244},
    {"get_electronic_fence_config", 245}, {"add_electronic_fence_config", 246}, {"update_electronic_fence_config", 247},
    {"delete_electronic_fence_config", 248}, {"get_electronic_fence_list_names", 249},
    {"given_electronic_fence_config", 250}, {"get_electronic_fence_list_infos", 251}, {"close_modbustcp_mode", 253},
    {"set_self_collision_enable", 254}, {"get_self_collision_enable", 255}, {"get_gripper_state", 204},
    {"auto_fix_joint_over_soft_limit", 205}, {"arm_software_info", 207}, {"plan_speed", 196},
    {"set_force_drag_threshold", 186}, {"get_force_drag_threshold", 187}, {"init_force_drag_threshold", 188},
    {"set_tool_envelope", 190}, {"velope", 191}, {"set_virtual_wall_config", 256}, {"get_virtual_wall_config", 257},
    {"set_virtual_wall_enable", 258}, {"get_virtual_wall_enable", 259}, {"update_work_frame", 260},
    {"update_tool_frame", 261}, {"set_default_run_program", 263}, {"get_default_run_program", 264},
    {"update_program_trajectory", 262},
};
// clang-format on

// No mailbox waits for these, nor for reports without a callback and points without a file.
// clang-format off
const std::set<std::string> kDropped = {
    "start_calibrate", "stop_calibrate", "calibrate_state", "set_system_state_servo", "add_waypoint", "timer",
    "set_joint_step", "set_pos_step", "set_ort_step", "arm_hardware_version", "get_log_file", "set_PWM", "set_vehicle",
    "set_lift_speed", "set_lift_height", "set_lift", "set_car_move", "set_car_speed", "set_car_navigation_speed",
    "set_car_navigation_mode", "get_car_state", "set_car_charge", "set_car_station_num", "set_lift_version", "point",
    "joint_state", "pose_state", "Force_Position_State", "start_waypoint", "clear_waypoint",
};
// clang-format on

constexpr int kSlot = 3;

bool contains(const std::string& text, const std::string& part) { return text.find(part) != text.npos; }

// The first literal in the order that a text contains.
const Literal* deciding(const std::string& text) {
    return std::find_if(std::begin(kLiterals), std::end(kLiterals),
                        [&](const Literal& literal) { return contains(text, literal.text); });
}

TEST(Classification, EveryLiteralHasItsCode) {
    for (const auto& [text, code] : kLiterals) {
        int expected = code;
        // These contain an earlier literal, so no message has their code.
        for (const char* dead : {"add_waypoint", "start_waypoint", "clear_waypoint"}) {
            if (text == dead) expected = ZK_KEY_DRAG_POINT;
        }
        if (text == "set_lift_version") expected = ZK_KEY_LIFT;
        EXPECT_EQ(Get_Json_KeyCode(("{\"command\":\"" + text + "\"}").c_str()), expected) << text;
    }
}

TEST(Classification, TheOrderOfTheTableDecidesAndNotTheOrderInTheText) {
    for (const Literal& a : kLiterals) {
        for (const Literal& b : kLiterals) {
            const int code = std::min(deciding(a.text), deciding(b.text))->code;
            ASSERT_EQ(Get_Json_KeyCode((a.text + " " + b.text).c_str()), code) << a.text << " " << b.text;
        }
    }
}

// Literals run into each other, cut anywhere, at even and odd places, and end with the text.
TEST(Classification, JoinsOfLiteralsAreDecidedByTheTable) {
    std::mt19937 random(1);
    const auto below = [&](size_t limit) { return random() % limit; };
    for (int i = 0; i < 100'000; ++i) {
        std::string text;
        for (size_t pieces = below(4); pieces <= 3; ++pieces) {
            const std::string& literal = kLiterals[below(std::size(kLiterals))].text;
            const size_t start = below(3) ? 0 : below(literal.size());
            text += literal.substr(start, below(3) ? literal.npos : below(literal.size()));
            if (below(2)) text += "\"_:x"[below(4)];
        }
        const Literal* literal = deciding(text);
        ASSERT_EQ(Get_Json_KeyCode(text.c_str()), literal == std::end(kLiterals) ? 0 : literal->code) << text;
    }
}

TEST(Classification, LiteralsAreFoundInKeysValuesAndNames) {
    for (const auto& [message, code] : {std::pair{"", 0},
                                        {"{\"state\":\"nothing\"}", 0},
                                        {"{\"command\":\"set_change_tool_frame\",\"tool_name\":\"point_2\"}", 231},
                                        {"{\"waypoint_state\":true}", 231},
                                        {"{\"total_tool_frame\":1,\"state\":\"current_tool_frame\"}", 44},
                                        {"{\"state\":\"get_program_run_state\",\"plan_speed\":50}", 236},
                                        {"{\"command\":\"movej_p\"}", 189},
                                        {"start_force_position_move", 0},
                                        {"JOINT_STATE", 0}}) {
        EXPECT_EQ(Get_Json_KeyCode(message), code) << message;
    }
    EXPECT_EQ(Get_Json_KeyCode(nullptr), 0);
}

// A table of records of any kind: count and result stand first in each.
struct Mailbox {
    int32_t* record(int slot) const { return reinterpret_cast<int32_t*>(records + size * slot); }

    std::string name;
    char* records;
    size_t size;
};

// With the address sanitizer a symbol includes the guard after its data.
extern "C" [[gnu::weak]] void* __asan_region_is_poisoned(void* start, size_t size);

size_t size_without_guard(void* start, size_t size) {
    void* const guard = __asan_region_is_poisoned ? __asan_region_is_poisoned(start, size) : nullptr;
    return guard ? static_cast<char*>(guard) - static_cast<char*>(start) : size;
}

// Every mailbox that the headers declare.
std::vector<Mailbox> all_mailboxes() {
    std::vector<Mailbox> all;
    for (const auto& header :
         std::filesystem::recursive_directory_iterator(std::string(zk::test::kSourceFolder) + "/include/zk")) {
        if (!header.is_regular_file()) continue;
        std::ostringstream text;
        text << std::ifstream(header.path()).rdbuf();
        for (const std::string& name : zk::test::found_in(text.str(), R"(ZK_API \w+ (\w+_Cmd)\[ZK_SLOTS\];)")) {
            void* const records = dlsym(RTLD_DEFAULT, name.c_str());
            Dl_info info;
            ElfW(Sym)* symbol = nullptr;
            dladdr1(records, &info, reinterpret_cast<void**>(&symbol), RTLD_DL_SYMENT);
            all.push_back({name, static_cast<char*>(records), size_without_guard(records, symbol->st_size) / ZK_SLOTS});
        }
    }
    return all;
}

class Routes : public testing::Test {
 protected:
    void SetUp() override {
        for (int i = 0; i < 5; ++i) Init_Socket_Joint(65, 1000 + i);
        EXPECT_GT(mailboxes_.size(), 200u);
    }

    // The mailboxes whose record of the slot the message changes; the other records keep what they hold.
    std::set<std::string> reached_by(std::string message) {
        const auto contents = [&] {
            std::vector<std::string> all;
            for (const Mailbox& mailbox : mailboxes_) all.emplace_back(mailbox.records, mailbox.size * ZK_SLOTS);
            return all;
        };
        std::vector<std::string> before = contents();
        EXPECT_EQ(handle_Recv_Json(kSlot, message.data()), 0);
        std::vector<std::string> after = contents();
        std::set<std::string> reached;
        for (size_t i = 0; i < after.size(); ++i) {
            if (before[i] == after[i]) continue;
            const Mailbox& mailbox = mailboxes_[i];
            reached.insert(mailbox.name);
            for (std::string* all : {&before[i], &after[i]}) all->erase(mailbox.size * kSlot, mailbox.size);
            EXPECT_TRUE(before[i] == after[i]) << message << " changed another slot's record in " << mailbox.name;
        }
        return reached;
    }

    const std::vector<Mailbox> mailboxes_ = all_mailboxes();
};

TEST_F(Routes, AMessageThatDoesNotParseSetsNineInItsMailbox) {
    for (const Literal& literal : kLiterals) {
        const std::set<std::string> reached = reached_by("{\"state\":\"" + literal.text + "\",");
        const bool dropped = kDropped.count(literal.text) > 0;
        const bool calibrates = literal.code == 125 || literal.code == 135 || literal.code == 136;
        EXPECT_EQ(reached.size(), dropped ? 0u : calibrates ? 2u : 1u) << literal.text;
        for (const Mailbox& mailbox : mailboxes_) {
            if (!reached.count(mailbox.name)) continue;
            EXPECT_GE(mailbox.record(kSlot)[0], 1) << literal.text;
            EXPECT_EQ(mailbox.record(kSlot)[1], 9) << literal.text;
            std::fill_n(mailbox.records, mailbox.size * ZK_SLOTS, '\0');
        }
    }
}

// No command reads these.
TEST_F(Routes, RepliesWithoutACommandReachTheirMailboxes) {
    for (const auto& [literal, mailbox, count] :
         {std::tuple{"set_force_drag_threshold", "Set_Force_Drag_Threshold_Cmd", 2},
          {"get_force_drag_threshold", "Get_Force_Drag_Threshold_Cmd", 2},
          {"init_force_drag_threshold", "Init_Force_Drag_Threshold_Cmd", 2},
          {"popup", "Set_Popup_Cmd", 1}}) {
        for (int i = 0; i < 2; ++i) reached_by(std::string("{\"command\":\"") + literal + "\"}");
        for (const Mailbox& each : mailboxes_) {
            EXPECT_EQ(each.record(kSlot)[0], each.name == mailbox ? count : 0) << literal << " " << each.name;
            std::fill_n(each.records, each.size * ZK_SLOTS, '\0');
        }
    }
}

TEST_F(Routes, AnImpossibleSlotIsIgnored) {
    char message[] = "{\"command\":\"set_arm_stop\",\"arm_stop\":true}";
    for (const int slot : {-1, 20, 2147483647}) EXPECT_EQ(handle_Recv_Json(slot, message), 0);
    EXPECT_EQ(handle_Recv_Json(0, nullptr), 0);
    for (const Mailbox& mailbox : mailboxes_) {
        for (int slot = 0; slot < ZK_SLOTS; ++slot) EXPECT_EQ(mailbox.record(slot)[0], 0) << mailbox.name;
    }
}

TEST_F(Routes, AnInstallPoseReplySetsTheModelsMounting) {
    Algo_Init_Sys_Data(0, 0);
    for (const char* pose : {"[0.5,90.0,-45.0]", "\"flat\""}) {  // the second one changes nothing
        reached_by(std::string(R"({"state":"install_pose","pose":)") + pose + "}");
        float x, y, z;
        Algo_Get_Angle(&x, &y, &z);
        EXPECT_NEAR(x, 0.5f, 1e-6);
        EXPECT_NEAR(y, 90.0f, 1e-5);
        EXPECT_NEAR(z, -45.0f, 1e-5);
    }
    EXPECT_EQ(Get_Install_Pose_Cmd[kSlot].count, 2);
}

TEST_F(Routes, ACalibrationReplyReachesBothMailboxes) {
    for (const char* literal : {"set_force_sensor", "auto_set_Fz", "manual_set_Fz"}) {
        Set_Force_Sensor_Cmd[kSlot] = Auto_Set_Fz_Cmd[kSlot] = {7, 7};
        reached_by(std::string("{\"command\":\"") + literal + "\",\"set_state\":false}");
        for (const AckReply& record : {Set_Force_Sensor_Cmd[kSlot], Auto_Set_Fz_Cmd[kSlot]}) {
            EXPECT_EQ(record.count, 1) << literal;
            EXPECT_EQ(record.result, 1) << literal;
        }
    }
}

TEST_F(Routes, AMoveAcknowledgementHoldsTheTypeOfTheMove) {
    for (const auto& [command, type] :
         {std::pair{"movej", 1}, {"movel", 2}, {"movec", 3}, {"movej_p", 0}, {"moves", 5}}) {
        Move_Receive_Cmd[kSlot] = {4, 4, 4};
        reached_by(std::string("{\"command\":\"") + command + "\",\"receive_state\":true}");
        EXPECT_EQ(Move_Receive_Cmd[kSlot].count, 1) << command;
        EXPECT_EQ(Move_Receive_Cmd[kSlot].result, 0) << command;
        EXPECT_EQ(Move_Receive_Cmd[kSlot].move_type, type) << command;
    }
}

// A missing device counts as the arm, whatever the last report contained.
TEST_F(Routes, AnArrivalReportHoldsDeviceAndSegment) {
    struct Row {
        const char* rest;
        int result, device, connect;
    };
    for (const Row& row : {Row{R"("trajectory_state":true,"device":1,"trajectory_connect":2)", 0, 1, 2},
                           Row{R"("trajectory_state":true,"device":1)", 0, 1, -1},
                           Row{R"("trajectory_state":true,"device":"x","trajectory_connect":true)", 0, 0, -1},
                           Row{R"("trajectory_state":true,"trajectory_connect":1)", 9, 0, 0},
                           Row{R"("trajectory_state":false,"device":1,"trajectory_connect":2)", 1, 1, 0},
                           Row{R"("trajectory_state":false)", 1, 0, 0},
                           Row{R"("trajectory_state":1,"device":1)", 11, 0, 0}, Row{R"("device":1)", 9, 0, 0}}) {
        Move_Cmd[kSlot] = {5, 5, 77, 88};
        reached_by(std::string(R"({"state":"current_trajectory_state",)") + row.rest + "}");
        EXPECT_EQ(Move_Cmd[kSlot].count, 1) << row.rest;
        EXPECT_EQ(Move_Cmd[kSlot].result, row.result) << row.rest;
        EXPECT_EQ(Move_Cmd[kSlot].device, row.device) << row.rest;
        EXPECT_EQ(Move_Cmd[kSlot].trajectory_connect, row.connect) << row.rest;
    }
}

// A report holds nothing of the one before, and no seventh joint on a six-joint connection.
TEST_F(Routes, AReportReachesTheCallback) {
    static std::vector<ArmMotionReport> reports;
    Init_Socket_Joint(75, 1005);
    callback1 = [](ArmMotionReport report) { reports.push_back(report); };
    const std::string joints = R"("joint":[1.5,2,3,4,5,6,7])";
    std::string messages[] = {R"({"state":"joint_state",)" + joints + R"(,"pose":[0.1,2,3,4,5,6],"arm_err":4099})",
                              R"({"state":"pose_state",)" + joints + R"(,"pose":[0.1,2,3],"arm_err":0})",
                              R"({"state":"joint_state"})",
                              R"({"state":"Force_Position_State","force":125,"arm_err":3,"all_direction_force":)"
                              R"([1,2,3,4,5,6,7],)" +
                                  joints + "}",
                              R"({"state":"Force_Position_State","joint":5,"force":-19})"};
    for (std::string& message : messages) {
        for (const int slot : {kSlot, 5}) handle_Recv_Json(slot, message.data());
    }
    const auto words = [](const ArmMotionReport& r) {
        std::ostringstream text;
        text << r.report_type << ": " << r.result << ' ' << r.arm_err << ", " << r.joint[0] << ' ' << r.joint[6] << ", "
             << r.pose.position.x << ' ' << r.pose.euler.rz << ", " << r.force << ' ' << r.all_direction_force[0] << ' '
             << r.all_direction_force[6];
        return text.str();
    };
    const char* expected[] = {"1: 4099 4099, 1.5 0, 0.1 6, 0 0 0", "1: 4099 4099, 1.5 7, 0.1 6, 0 0 0",
                              "2: 0 0, 1.5 0, 0 0, 0 0 0",         "2: 0 0, 1.5 7, 0 0, 0 0 0",
                              "1: 9 8, 0 0, 0 0, 0 0 0",           "1: 9 8, 0 0, 0 0, 0 0 0",
                              "3: 0 3, 1.5 0, 0 0, 12 1 0",        "3: 0 3, 1.5 7, 0 0, 12 1 7",
                              "3: 11 8, 0 0, 0 0, -1 0 0",         "3: 11 8, 0 0, 0 0, -1 0 0"};
    ASSERT_EQ(reports.size(), std::size(expected));
    for (size_t i = 0; i < reports.size(); ++i) {
        EXPECT_EQ(words(reports[i]), expected[i]);
        EXPECT_EQ(reports[i].socket, i % 2 ? 1005 : 1003);
    }
}

}  // namespace
