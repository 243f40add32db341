#include "support/start_up.h"

namespace zk::test {
namespace {

std::string realtime_push(bool enable, int port, int cycle) {
    return R"({"state":"get_realtime_push","cycle":)" + std::to_string(cycle) + R"(,"enable":)" +
           (enable ? "true" : "false") + R"(,"port":)" + std::to_string(port) +
           R"(,"force_coordinate":0,"ip":"127.0.0.1","custom":{"joint_speed":false,"lift_state":false,)"
           R"("expand_state":false,"hand":false,"arm_current_status":false,"aloha_state":false}})";
}

std::string limits(const std::string& state, const std::string& key, const char* six, const char* seven, int joints) {
    return R"({"state":")" + state + R"(",")" + key + R"(":[)" + (joints == 7 ? seven : six) + "]}";
}

}  // namespace

std::string realtime_push_on(int port, int cycle) { return realtime_push(true, port, cycle); }

void answer_start_up(ScriptedController& controller, int joint_count, const std::string& model) {
    const std::string product = !model.empty() ? model : joint_count == 7 ? "ZK75-6F" : "ZK65-6F";
    controller.answer("get_arm_software_info",
                      R"({"state":"arm_software_info","Product_version":")" + product +
                          R"(","algorithm_info":{"version":"1.4.8"},)"
                          R"("ctrl_info":{"build_time":"2024/05/17 10:12:13","version":"V1.6.5"},)"
                          R"("dynamic_info":{"model_version":"2"},)"
                          R"("plan_info":{"build_time":"2024/05/17 10:14:15","version":"V1.6.5"}})");
    controller.answer("get_current_tool_frame",
                      R"({"state":"current_tool_frame","tool_name":"Arm_Tip","pose":[0,0,0,0,0,0],"payload":0,)"
                      R"("position":[0,0,0]})");
    controller.answer("get_current_work_frame",
                      R"({"state":"current_work_frame","frame_name":"Base","pose":[0,0,0,0,0,0]})");
    controller.answer("get_install_pose", R"({"state":"install_pose","pose":[0.0,0.0,0.0]})");
    // Speeds and accelerations in thousandths of a revolution per minute, positions in thousandths of a degree.
    controller.answer("get_joint_max_speed",
                      limits("joint_max_speed", "joint_speed", "30000,30000,37500,37500,37500,37500",
                             "30000,30000,37500,37500,37500,37500,37500", joint_count));
    controller.answer("get_joint_max_acc",
                      limits("joint_max_acc", "joint_acc", "100000,100000,100000,100000,100000,100000",
                             "100000,100000,100000,100000,100000,100000,100000", joint_count));
    controller.answer("get_joint_min_pos",
                      limits("joint_min_pos", "min_pos", "-178000,-130000,-135000,-178000,-128000,-360000",
                             "-178000,-130000,-178000,-135000,-178000,-128000,-360000", joint_count));
    controller.answer("get_joint_max_pos",
                      limits("joint_max_pos", "max_pos", "178000,130000,135000,178000,128000,360000",
                             "178000,130000,178000,135000,178000,128000,360000", joint_count));
    controller.answer("get_realtime_push", realtime_push(false, 8089, 1));
}

}  // namespace zk::test
