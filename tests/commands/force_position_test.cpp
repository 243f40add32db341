// Force-position moves: every command on the wire, its guards, and the parser of its reports.
#include "zk/replies/motion.h"
#include "zk/replies/pending.h"

#include <gtest/gtest.h>

#include "commands/wire.h"
#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/wire_protocol.h"

namespace {

using namespace zk::test;

const float kHeldJoint[7] = {1.9f, -2, 3, 4, 5, 6.0006f, 1.9f};
const Position kPosition{0.1f, -0.2f, 0.3f};
const Euler kEuler{1.5f, -0.5f, 3};
const Pose kByEuler{kPosition, {}, kEuler};
const Pose kByQuaternion{kPosition, {1, 0, 0, 0}, kEuler};
const Pose kBeside{kPosition, {0.5f, 0.5f, 0.5f, 0.59f}, kEuler};  // squares of 1.0981

const char* const kSixHeld = "[1900, -2000, 3000, 4000, 5000, 6000]";
const char* const kSevenHeld = "[1900, -2000, 3000, 4000, 5000, 6000, 1000]";  // the seventh lost its fraction
const char* const kPose = R"("pose": [100000, -200000, 300000, 1500, -500, 3000])";
const char* const kPoseQuat = R"("pose_quat": [100000, -200000, 300000, 1000000, 0, 0, 0])";
const char* const kReport = R"({"state":"Force_Position_State","joint":[1,2,3,4,5,6],"force":20,"arm_err":0})";

std::string wire(const std::string& set_point, const std::string& rest) {
    return R"({"command": "Force_Position_Move", )" + set_point +
           R"(, "sensor": 1, "mode": 255, "dir": -3, "force": 2.500000)" + rest + "}";
}
std::string joints(const std::string& array) { return R"("joint": )" + array; }
const char* const kFollow = R"(, "follow": true)";
const char* const kSmooth = R"(, "follow": false)";

ForcePositionMove move(int flag, const Pose& pose) {
    return {flag,
            pose,
            {1.9f, -2, 3, 4, 5, 6.0006f, 1.9f},
            1,
            2,
            7,
            {0, 1, 2, 3, 4, 5},
            {0, 0, -0.25f, 0, 0, 1},
            {0.1f, 0.1f, 0.0005f, 10, 10, 10}};
}
std::string move_wire(const std::string& set_point) {
    return R"({"command": "Force_Position_Move", "sensor": 1, "mode": 2, "follow": true, )" + set_point +
           R"(, "desired_force": [0, 0, -2.500000, 0, 0, 10], "control_mode": [0, 1, 2, 3, 4, 5], )"
           R"("limit_vel": [100, 100, 0.500000, 10000, 10000, 10000]})";
}

const std::vector<CommandCase> kForcePositionRows = {
    SETTER(Start_Force_Position_Move, Start_Force_Position_Move_Cmd, "Start_Force_Position_Move", "set_state"),
    SETTER(Stop_Force_Position_Move, Stop_Force_Position_Move_Cmd, "Stop_Force_Position_Move", "set_state"),

    queued(CALL(Force_Position_Move_Pose, (s, 1, 255, -3, 9, kByQuaternion, 0.25f)), wire(kPoseQuat, kFollow)),
    queued("Euler_" CALL(Force_Position_Move_Pose, (s, 1, 255, -3, 0, kByEuler, 0.25f)), wire(kPose, kSmooth)),
    queued("Beside_" CALL(Force_Position_Move_Pose, (s, 1, 255, -3, 0, kBeside, 0.25f)),
           wire(R"("pose_quat": [100000, -200000, 300000, 500000, 500000, 500000, 590000])", kSmooth)),
    queued(CALL(Force_Position_Move_Pose_NonBlock, (s, 1, 255, -3, 0, kByEuler, 0.25f)), wire(kPose, kSmooth)),
    no_reply(CALL(Force_Position_Move_Pose_Block, (s, 1, 255, -3, kByQuaternion, 0.25f)), wire(kPose, ""), kReport),
    queued(CALL(Force_Position_Move_Joint, (s, kHeldJoint, 1, 255, -3, 1, 0.25f)), wire(joints(kSixHeld), kFollow)),
    queued("Seven_" CALL(Force_Position_Move_Joint, (s, kHeldJoint, 1, 255, -3, 1, 0.25f)),
           wire(joints(kSevenHeld), kFollow), 75),
    queued(CALL(Force_Position_Move_Joint_NonBlock, (s, kHeldJoint, 1, 255, -3, 0, 0.25f)),
           wire(joints(kSixHeld), kSmooth)),
    no_reply(CALL(Force_Position_Move_Joint_Block, (s, kHeldJoint, 1, 255, -3, 0.25f)), wire(joints(kSixHeld), ""),
             kReport),
    queued(CALL(Force_Position_Move, (s, move(0, kByEuler))), move_wire(joints(kSixHeld))),
    queued("Seven_" CALL(Force_Position_Move, (s, move(2, kByEuler))),
           move_wire(joints("[1900, -2000, 3000, 4000, 5000, 6000, 1900]")), 72),
    queued("Euler_" CALL(Force_Position_Move, (s, move(1, kByEuler))), move_wire(kPose)),
    queued(CALL(Force_Position_Move_NonBlock, (s, move(1, kByQuaternion))), move_wire(kPoseQuat)),
};

ZK_WIRE_TESTS(ForcePosition, "force_position.h", "Force-position moves", kForcePositionRows)

// Unlike the streaming of plain moves.
TEST(ForcePositionGuards, ReturnSixWhenTheSetPointIsNotWritten) {
    ZK_API_Init(65, nullptr);
    expect_nothing_sent({{CALL(Force_Position_Move, (-s, move(0, kByEuler)))},
                         {CALL(Force_Position_Move_Pose, (-s, 1, 2, 3, 0, kByEuler, 5))},
                         {CALL(Force_Position_Move_Joint, (-s, kHeldJoint, 1, 2, 3, 0, 5))},
                         {CALL(Force_Position_Move_Pose_Block, (-s, 1, 2, 3, kByEuler, 5))},
                         {CALL(Force_Position_Move_Joint_Block, (-s, kHeldJoint, 1, 2, 3, 5))}},
                        6);
    EXPECT_EQ(shared(m_nSockeRIinfosLen), 0);
}

// Three arrays of numbers with fractions and a pose do not fit the 300 bytes of a request.
TEST(ForcePositionDeathTest, ARequestThatDoesNotFitEndsTheProcess) {
    ForcePositionMove longest = move(1, kBeside);
    for (int i = 0; i < 6; ++i) longest.desired_force[i] = longest.limit_vel[i] = -12345.678f;
    EXPECT_DEATH(Force_Position_Move_NonBlock(-1, longest), "Force_Position_Move.*bytes");
}

TEST(ForcePositionParsers, ReadReports) {
    const std::string six = R"("joint":[1.5,2,3,4,5,6,7])", forces = R"("all_direction_force":[1,2,3,4,5,6.5,7])";
    expect_parsed(parsing(Parser_Force_Position_Move),
                  {{R"({"state":"Force_Position_State",)" + six + "," + forces + R"(,"force":-19,"arm_err":65539})", 0,
                    "1.5 2 3 4 5 6; 1 2 3 4 5 6.5; -1; 3"},
                   {R"({"state":0,"joint":[1,2]})", 0, "1 2; -; -; -"},
                   {R"({"state":true,"force":125})", 11, "-; -; 12; -"},
                   {R"({"state":true,"joint":7,"all_direction_force":{"x":1}})", 11, ""},
                   {"{" + six + "}", 9, ""},
                   {R"({"state":true,)" + six, 9, ""}});
}

}  // namespace
