// A controller that does not answer.
#include <gtest/gtest.h>

#include "support/arm.h"
#include "support/scaled_time.h"
#include "support/start_up.h"
#include "zk/connection.h"
#include "zk/realtime.h"

namespace {

using namespace zk::test;

TEST(SilentController, EachQuestionCanTimeOutAndTheConnectionCloses) {
    ZK_API_Init(65, nullptr);
    ScriptedController controller;
    int connections = 0;
    for (const char* command :
         {"get_arm_software_info", "get_current_tool_frame", "get_current_work_frame", "get_install_pose",
          "get_joint_max_speed", "get_joint_max_acc", "get_joint_min_pos", "get_joint_max_pos"}) {
        SCOPED_TRACE(command);
        answer_start_up(controller);
        controller.ignore(command);
        controller.forget_requests();
        m_nOutTime = 2000000000;
        std::thread hurry([&] {  // only the limit of the unanswered question is let run out
            controller.wait_for_request(command);
            set_time_factor(1000000000);
        });
        EXPECT_EQ(Arm_Socket_Start("127.0.0.1", controller.port(), 1000), 7);
        hurry.join();
        set_time_factor(1);
        controller.wait_for_connections(++connections);
        controller.wait_for_close();
        EXPECT_EQ(Get_Socket_Idx(0), 0);
    }
}

TEST(SilentController, EndsTheStartAfterThreeSeconds) {
    ZK_API_Init(65, nullptr);
    ScriptedController controller;
    const int32_t start = Get_Program_Runtime();
    set_time_factor(100);
    EXPECT_EQ(Arm_Socket_Start("127.0.0.1", controller.port(), 1000), 7);
    const int32_t passed = Get_Program_Runtime() - start;
    EXPECT_GE(passed, 3000);
}

}  // namespace
