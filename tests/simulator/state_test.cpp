// What the controller keeps in a file over a loss of power.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include "simulator/talk.h"
#include "support/temporary_file.h"

namespace zk::test {
namespace {

struct Request {
    const char* command;
    Json keys = Json::object();
};

const Json kPose{1000, 2000, 3000, 4, 5, 6};
const Json kBall{{"form", 3}, {"form_name", "ball"}, {"radius", 9000}, {"x", 1}, {"y", 2}, {"z", 3}};
const char* const kProgram = "{\"name\":\"wait\"}\n{\"command\":\"timer\",\"wait_time\":1}\n";

// One of each section, and the queries that show them.
const Request kSettings[] = {
    {"set_joint_max_speed", {{"joint_max_speed", {2, 20000}}}},
    {"set_joint_drive_min_pos", {{"joint_min_pos", {1, -5000}}}},
    {"set_arm_max_line_speed", {{"arm_line_speed", 123}}},
    {"set_DH_data", {{"data", {1, 2, 3, 4, 5}}}},
    {"set_collision_stage", {{"collision_stage", 7}}},
    {"set_teach_frame", {{"frame_type", 1}}},
    {"set_init_pose", {{"init_pose", {1, 2, 3, 4, 5, 6}}}},
    {"set_install_pose", {{"pose", {90, 0.5, 0}}}},
    {"set_manual_tool_frame", {{"tool_name", "grip"}, {"tool_pose", kPose}, {"payload", 7.5}, {"position", {1, 2, 3}}}},
    {"set_change_tool_frame", {{"tool_name", "grip"}}},
    {"set_manual_work_frame", {{"frame_name", "table"}, {"frame_pose", kPose}}},
    {"set_change_work_frame", {{"frame_name", "table"}}},
    {"set_payload", {{"payload", 500}, {"position", {1, 2, 3}}}},
    {"add_electronic_fence_config", kBall},
    {"set_electronic_fence_config", kBall},
    {"set_electronic_fence_enable", {{"set_enable", true}, {"in_out_side", 0}, {"effective_region", 1}}},
    {"set_virtual_wall_enable", {{"set_enable", false}, {"in_out_side", 2}, {"effective_region", 0}}},
    {"set_self_collision_enable", {{"set_enable", true}}},
    {"set_tool_envelope",
     {{"tool_name", "grip"}, {"list", {{{"name", "tip"}, {"radius", 5}, {"x", 1}, {"y", 2}, {"z", 3}}}}}},
    {"add_global_waypoint",
     {{"point_name", "home"},
      {"joint", {1, 2, 3, 4, 5, 6}},
      {"pose", kPose},
      {"work_frame", "Base"},
      {"tool_frame", "grip"},
      {"time", "noon"}}},
    {"set_NetIP", {{"ip", "10.0.0.3"}}},
    {"set_high_ethernet", {{"ip", "10.0.0.4"}, {"mask", "255.0.0.0"}, {"gateway", "10.0.0.1"}}},
    {"set_gripper_route", {{"min", 100}, {"max", 900}}},
    {"set_drag_teach_sensitivity", {{"grade", 80}}},
    {"expand_config", {{"rpm_max", 100}, {"rpm_acc", 200}, {"conversin_coe", 300}}},
    {"expand_set_version", {{"expand_version", 9}}},
};
const Request kQueries[] = {
    {"get_joint_max_speed"},
    {"get_joint_drive_min_pos"},
    {"get_arm_max_line_speed"},
    {"get_DH_data"},
    {"get_collision_stage"},
    {"get_teach_frame"},
    {"get_init_pose"},
    {"get_install_pose"},
    {"get_current_tool_frame"},
    {"get_current_work_frame"},
    {"get_electronic_fence_list_infos"},
    {"get_electronic_fence_config"},
    {"get_electronic_fence_enable"},
    {"get_virtual_wall_enable"},
    {"get_self_collision_enable"},
    {"get_tool_envelope", {{"tool_name", "grip"}}},
    {"get_global_waypoints_list"},
    {"get_program_trajectory_list"},
    {"get_default_run_program"},
    {"get_wired_net"},
    {"get_high_ethernet"},
    {"get_wifi_net"},
    {"get_drag_teach_sensitivity"},
    {"expand_get_config"},
    {"expand_get_version"},
};

class State : public testing::Test {
 protected:
    std::vector<std::string> options() const { return {"--quiet", "--speed", "max", "--state", path_}; }

    static std::vector<Json> replies_of(Talk& talk) {
        std::vector<Json> replies;
        for (const auto& [command, keys] : kQueries) replies.push_back(talk.ask(command, keys));
        return replies;
    }

    // Ends the simulator without a warning once the file holds this.
    void kill_when_saved(const Talk& talk, const std::string& text) const {
        while (content_of(path_).find(text) == std::string::npos) {
        }
        kill(talk.simulator.id(), SIGKILL);
    }

    const TemporaryDirectory directory_;
    const std::string path_ = directory_ / "state.json";
};

TEST_F(State, OutlivesTheProgram) {
    std::vector<Json> before, kept;
    {
        Talk talk(options());
        before = replies_of(talk);
        for (const auto& [command, keys] : kSettings) {
            for (const auto& reply : talk.ask(command, keys)) EXPECT_NE(reply, false) << command;
        }
        talk.send("set_wifi_sta", {{"router_name", "hall"}, {"password", "secret"}});
        talk.ask("run_project", {{"project_name", "wait"},
                                 {"file_size", std::string(kProgram).size()},
                                 {"plan_speed", 30},
                                 {"save_id", 5},
                                 {"only_save", 1},
                                 {"auto_start", 1}});
        talk.client.send_bytes(kProgram);
        EXPECT_EQ(talk.read().at("project_state"), true);
        kept = replies_of(talk);
    }
    for (size_t i = 0; i < kept.size(); ++i) EXPECT_NE(kept[i], before[i]);
    Talk talk(options());
    EXPECT_EQ(replies_of(talk), kept);
    EXPECT_EQ(talk.ask("set_program_id_start", {{"id", 5}, {"speed", 100}}).at("start_state"), true);
    EXPECT_EQ(talk.read().at("finish_id"), 5);
    EXPECT_EQ(talk.ask("set_gripper_position", {{"position", 950}}).at("state"), false) << "beyond the route";
    EXPECT_NE(content_of(path_).find(R"("payload":{"payload":500.0,"position":[1,2,3]})"), std::string::npos);
}

TEST_F(State, OutlivesASuddenEndOnceItIsWritten) {
    {
        Talk talk(options());
        for (const char* ip : {"10.0.0.1", "10.0.0.2"})
            EXPECT_EQ(talk.ask("set_NetIP", {{"ip", ip}}).at("status"), true);
        kill_when_saved(talk, "10.0.0.2");
    }
    Talk talk(options());
    EXPECT_EQ(talk.ask("get_wired_net").at("ip"), "10.0.0.2");
}

TEST_F(State, OutlivesARestartAndNothingElseDoes) {
    Talk talk(options());
    talk.ask("set_NetIP", {{"ip", "10.0.0.2"}});
    talk.ask("set_DO_state", {{"IO_Num", 1}, {"state", 1}});
    talk.ask("zk_sim_fault", {{"arm_err", 5}, {"max_clients", 1}});
    EXPECT_EQ(talk.ask("zk_sim_restart", {{"pause_ms", 1}}).at("done"), true);
    EXPECT_TRUE(talk.client.wait_for_close());
    const auto again = talk.new_client();
    const auto ask = [&](const std::string& request) { return Json::parse(again->ask(request)); };
    EXPECT_EQ(ask(R"({"command":"get_wired_net"})").at("ip"), "10.0.0.2");
    EXPECT_EQ(ask(R"({"command":"get_DO_state","IO_Num":1})").at("IO_state"), 0);
    EXPECT_EQ(ask(R"({"command":"get_current_arm_state"})").at("arm_state").at("arm_err"), 0);
}

TEST_F(State, ThatCannotBeWrittenAtTheEndIsAnError) {
    const std::string folder = directory_ / "gone";
    std::filesystem::create_directory(folder);
    Talk talk({"--quiet", "--state", folder + "/state.json"});
    std::filesystem::remove_all(folder);
    talk.ask("set_NetIP", {{"ip", "10.0.0.2"}});
    kill(talk.simulator.id(), SIGTERM);
    EXPECT_EQ(talk.simulator.wait_for_exit(), 1);
}

TEST_F(State, EachArmHasItsOwn) {
    { const SimulatorProcess two({"--quiet", "--arms", "2", "--model", "ZK75-B", "--state", path_}); }
    for (const char* number : {".1", ".2"})
        EXPECT_EQ(Json::parse(content_of(path_ + number)).at("model"), "ZK75-B") << number;
}

TEST_F(State, BelongsToOneArm) {
    const auto expect_refusal = [](const std::string& arguments) {
        const auto [output, status] = run_simulator("--port 0 --push-port 0 " + arguments);
        EXPECT_EQ(status, 2) << arguments;
        EXPECT_NE(output.find("is in use by another"), std::string::npos) << output;
    };
    {
        const SimulatorProcess first(options());
        std::filesystem::create_symlink(path_, directory_ / "link");
        for (const char* name : {"state.json", "./state.json", "link"})
            expect_refusal("--state " + (directory_ / name));
    }
    const Json both{{{"state", path_}}, {{"state", directory_ / "none/../state.json"}}};
    expect_refusal("--arms " + directory_.file("arms.json", both.dump()));
    EXPECT_FALSE(std::filesystem::exists(path_ + ".lock"));
}

TEST_F(State, IsRefusedWhenItIsNoneOfThisArm) {
    const std::pair<const char*, const char*> files[] = {
        {"", "holds no state of zk_simulator"},
        {"{\"zk_simulator_state\":1,\"model\":\"ZK65-B\",\"kept\":{\"gripper\"", "holds no state of zk_simulator"},
        {R"({"options":{}})", "holds no state of zk_simulator"},
        {R"({"zk_simulator_state":2})", "a version that this program cannot read"},
        {R"({"zk_simulator_state":1,"model":"ZK75-B","kept":{}})", "the state of another model than ZK65-B"},
        {R"({"zk_simulator_state":1,"model":"ZK65-B","kept":{"weather":{}}})", "unknown section weather"},
        {R"({"zk_simulator_state":1,"model":"ZK65-B","kept":{"gripper":{"min":500,"max":400}}})",
         "state.gripper: \"max\" is out of range"},
        {R"({"zk_simulator_state":1,"model":"ZK65-B","kept":{"programs":{"default":0,"programs":[{"id":1,"name":"x",)"
         R"("size":1,"plan_speed":1,"lines":["no"]}]}}})",
         "the program x is wrong"},
    };
    for (const auto& [content, reason] : files) {
        directory_.file("state.json", content);
        const auto [output, status] = run_simulator("--port 0 --push-port 0 --state " + path_);
        EXPECT_EQ(status, 2) << content;
        EXPECT_NE(output.find(reason), std::string::npos) << output;
        EXPECT_EQ(content_of(path_), content);
    }
    const auto [output, status] = run_simulator("--port 0 --push-port 0 --state " + directory_.path() + "/none/state");
    EXPECT_EQ(status, 2) << output;
    EXPECT_NE(output.find("cannot be written"), std::string::npos) << output;
}

}  // namespace
}  // namespace zk::test
