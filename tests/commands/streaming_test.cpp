// Streamed motion: every command on the wire, its guards, and the reports that come back.
#include "zk/replies/motion.h"
#include "zk/replies/pending.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/wire_protocol.h"
#include "zk/queue.h"
#include "zk/trajectory.h"

namespace {

using namespace zk::test;

const float kStreamed[7] = {0.251f, -90.0f, 1.5f, -0.0009f, 178.0f, 12.3456f, -7.25f};
constexpr Pose kTurned{{0.3f, -0.2f, 0.1f}, {1, 0, 0, 0}, {9, 9, 9}};
constexpr Pose kTilted{{0.3f, -0.2f, 0.1f}, {0.5f, -0.5f, 0.5f, 0.5000019f}, {9, 9, 9}};
constexpr Pose kByAngles{{0.3f, -0.2f, 0.1f}, {}, {3.1415f, -0.5f, -0.0009f}};

constexpr Pose with_quaternion(const Quat& quaternion) {
    Pose pose = kByAngles;
    pose.quaternion = quaternion;
    return pose;
}

const char* const kStreamedAngles = R"({"command": "movep_follow", "pose": [300000, -200000, 100000, 3141, -500, 0]})";

// A direct write bypasses the queue; the row looks the same: the request is sent, and the call returns 0.
const std::vector<CommandCase> kStreamingRows = {
    queued(CALL(Movej_CANFD, (s, kStreamed, 1, 0)),
           R"({"command": "movej_canfd", "joint": [250, -90000, 1500, 0, 178000, 12345], "follow": true, )"
           R"("expand": 0})"),
    queued(CALL(Movej_CANFD_NonBlock, (s, kStreamed, 0, -1.9999f)),
           R"({"command": "movej_canfd", "joint": [250, -90000, 1500, 0, 178000, 12345, -7250], "follow": false, )"
           R"("expand": -1999})",
           75),
    queued(CALL(Movep_CANFD, (s, 0, kTurned)),
           R"({"command": "movep_canfd", "pose_quat": [300000, -200000, 100000, 1000000, 0, 0, 0], "follow": false})"),
    queued(CALL(Movep_CANFD_NonBlock, (s, 255, kByAngles)),
           R"({"command": "movep_canfd", "pose": [300000, -200000, 100000, 3141, -500, 0], "follow": true})"),
    queued(CALL(Movej_Follow, (s, kStreamed)),
           R"({"command": "movej_follow", "joint": [250, -90000, 1500, 0, 178000, 12345]})"),
    queued(CALL(Movej_Follow_NonBlock, (s, kStreamed)),
           R"({"command": "movej_follow", "joint": [250, -90000, 1500, 0, 178000, 12345, -7250]})", 72),
    queued(CALL(Movep_Follow, (s, kTilted)),
           R"({"command": "movep_follow", "pose_quat": [300000, -200000, 100000, 500000, -500000, 500000, 500001]})"),
    queued(CALL(Movep_Follow_NonBlock, (s, kByAngles)), kStreamedAngles),

    // A quaternion counts when its squared norm lies above 0.99 and below 1.1.
    queued("Short_" CALL(Movep_Follow, (s, with_quaternion({0.994987f, 0, 0, 0}))), kStreamedAngles),
    queued("Long_" CALL(Movep_Follow, (s, with_quaternion({0, 1.0488089f, 0, 0}))), kStreamedAngles),
    queued("NotANumber_" CALL(Movep_Follow, (s, with_quaternion({NAN, 1, 0, 0}))), kStreamedAngles),
    queued("NearlyShort_" CALL(Movep_Follow, (s, with_quaternion({0, 0, 0.995f, 0}))),
           R"({"command": "movep_follow", "pose_quat": [300000, -200000, 100000, 0, 0, 995000, 0]})"),
    queued("NearlyLong_" CALL(Movep_Follow, (s, with_quaternion({0, 0, 0, -1.048f}))),
           R"({"command": "movep_follow", "pose_quat": [300000, -200000, 100000, 0, 0, 0, -1048000]})"),

    // These wait on the list that no reply reaches. They always send the quaternion, in thousandths.
    no_reply(CALL(Movej_CANFD_Block, (s, kStreamed)),
             R"({"command": "movej_canfd", "joint": [250, -90000, 1500, 0, 178000, 12345]})",
             R"({"state":"joint_state","joint":[1,2,3,4,5,6],"arm_err":0})"),
    no_reply(CALL(Movep_CANFD_Block, (s, 1, kTilted)),
             R"({"command": "movep_canfd", "pose_quat": [300000, -200000, 100000, 500, -500, 500, 500], )"
             R"("follow": true})",
             R"({"state":"pose_state","pose":[1,2,3,4,5,6],"arm_err":0})"),
    no_reply("NoQuaternion_" CALL(Movep_CANFD_Block, (s, 0, kByAngles)),
             R"({"command": "movep_canfd", "pose_quat": [300000, -200000, 100000, 0, 0, 0, 0], "follow": false})",
             R"({"state":"pose_state","pose":[1,2,3,4,5,6],"arm_err":0})"),
};

ZK_WIRE_TESTS(Streaming, "streaming.h", "Streamed motion", kStreamingRows)

TEST(StreamingGuards, SetPointsWithoutAConnectionReturnZero) {
    ZK_API_Init(65, nullptr);
    constexpr ArmSocket kNoArm = 100000;
    EXPECT_EQ(Movej_CANFD(kNoArm, kStreamed, 1, 0), 0);
    EXPECT_EQ(Movep_CANFD(kNoArm, 1, kTurned), 0);
    EXPECT_EQ(Movej_Follow(kNoArm, kStreamed), 0);
    EXPECT_EQ(Movep_Follow(kNoArm, kTurned), 0);
    EXPECT_EQ(Movej_CANFD_Block(kNoArm, kStreamed), 6);
    EXPECT_EQ(Movep_CANFD_Block(kNoArm, 1, kTurned), 6);
    EXPECT_EQ(m_nSockeRIinfosLen, 0);
}

TEST(StreamingGuards, SetPointsBypassTheQueueDuringAFileTransfer) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    const ArmSocket arm = connect_arm(controller);
    set_shared(IsSendFile, 1);
    Move_Stop_Cmd_NonBlock(arm);
    for (int i = 0; i < 3; ++i) Movej_Follow_NonBlock(arm, kStreamed);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(command_name(controller.next_request()), "movej_follow");
    EXPECT_FALSE(ZK_Queue_Empty(&Socket_Tx_Buffer));
    set_shared(IsSendFile, 0);
    EXPECT_EQ(command_name(controller.next_request()), "set_arm_stop");
}

// ---------------------------------------------------------------------------------------------------------- Reports --

TEST(StreamingParsers, SetPoints) {
    expect_parsed(
        parsing(Parser_Movej_CANFD),
        {{R"({"arm_err":4099,"pose":[0.5,-2,3,1,2,3.25],"joint":[1.5,2,3,4,5,-6]})", 4099,
          "0.5 -2 3, 1 2 3.25; 1.5 2 3 4 5 -6; 4099"},
         {R"({"arm_err":0,"pose":[1,2,3,4,5,6,7],"joint":[1,2,3,4,5,6,7,8]})", 0, "1 2 3, 4 5 6; 1 2 3 4 5 6; 0"},
         {R"({"arm_err":65537,"joint":[1,2]})", 65537, "-; 1 2; 1"},
         {R"({"arm_err":0,"pose":[1,2,3],"joint":7})", 0, "-; -; 0"},
         {R"({"arm_err":"3","pose":{"a":1,"b":2,"c":3,"d":4,"e":5,"f":6},"joint":{"a":1}})", 0, "-; -; 0"},
         {R"({"pose":[1,2,3,4,5,6],"joint":[1,2,3,4,5,6]})", 9, ""}});
}

// Reports on a stream come to the application's callback, on every connection.
TEST(Reports, ReachTheCallbackDuringAStream) {
    ReportLog log;
    ScriptedController controller;
    ZK_API_Init(75, ReportLog::callback);
    const ArmSocket arm = connect_arm(controller, 75);
    controller.answer("movej_canfd", R"({"state":"joint_state","joint":[1,2,3,4,5,6,7.5],"arm_err":0})");
    controller.answer("movep_canfd", R"({"state":"pose_state","pose":[0.25,2,3,4,5,6],"arm_err":4097})");
    EXPECT_EQ(Movej_CANFD(arm, kStreamed, 1, 0), 0);
    EXPECT_EQ(Movep_CANFD(arm, 1, kTurned), 0);
    const std::vector<ArmMotionReport> reports = log.wait_for(2);
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].socket, arm);
    EXPECT_EQ(reports[0].report_type, 1);
    EXPECT_EQ(reports[0].result, 0);
    EXPECT_EQ(reports[0].joint[6], 7.5f);
    EXPECT_EQ(reports[1].report_type, 2);
    EXPECT_EQ(reports[1].result, 4097);
    EXPECT_EQ(reports[1].pose.position.x, 0.25f);
}

}  // namespace
