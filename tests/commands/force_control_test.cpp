// Force control: every command on the wire, its guards, and its parsers.
#include "zk/replies/force_control.h"

#include <gtest/gtest.h>

#include "commands/wire.h"
#include "support/command_case.h"
#include "support/parser_case.h"
#include "support/wire_protocol.h"

namespace {

using namespace zk::test;

// The sixth angle is half a thousandth of a degree, which the calibrations do not cut off.
const float kJoint[7] = {10, 20.5f, -30, 40, 50, 0.0005f, 70.25f};
const float kOther[7] = {1, 2, 3, 4, 5, 6, 7};
const char* const kSix = "[10000, 20500, -30000, 40000, 50000, 0.500000]";
const char* const kSeven = "[10000, 20500, -30000, 40000, 50000, 0.500000, 70250]";
const std::string kCalibrated = done("set_force_sensor");
const ForcePositionNew kNew{
    1, 0, {0, 0, 3, 0, 0, 8}, {0, 0, -5.25f, 0, 0, 0.16f}, {0.1f, 0.1f, 0.05f, 10, 10, 0.0019f}};
const char* const kNewWire =
    R"({"command": "set_force_position", "sensor": 1, "mode": 0, "desired_force": [0, 0, -52.500000, 0, 0, 1.600000], )"
    R"("control_mode": [0, 0, 3, 0, 0, 8], "limit_vel": [100, 100, 50, 10000, 10000, 1.900000]})";
const char* const kForces =
    R"({"state":"get_force_data","force_data":[1000,2,-3.5,0,5,6],"zero_force_data":[1,2,3,4,5,6],)"
    R"("work_zero_force_data":[7,8,9,10,11,12],"tool_zero_force_data":[0,0,0,0,0,1]})";
const char* const kForcesOutputs =
    "1 0.002 -0.0035 0 0.005 0.006; 0.001 0.002 0.003 0.004 0.005 0.006; 0.007 0.008 0.009 0.01 0.011 0.012; "
    "0 0 0 0 0 0.001";
const Reading kForcesRead{{0, 0, 0}, {{"/force_data", {9, 11, 0}}}};
const char* const kFz =
    R"({"state":"get_Fz","set_state":false,"Fz":1000,"zero_Fz":-500,"work_zero_Fz":1,"tool_zero_Fz":2.5})";

std::string hold(int tenths) {
    return R"({"command": "set_force_position", "sensor": 1, "mode": 2, "direction": 3, "N": )" +
           std::to_string(tenths) + "}";
}
std::string manual(int number, const std::string& joints) {
    return R"({"command": "manual_set_force_pose)" + std::to_string(number) + R"(", "joint": )" + joints + "}";
}
std::string manual_fz(const std::string& pose1, const std::string& pose2) {
    return R"({"command": "manual_set_Fz", "pose1": )" + pose1 + R"(, "pose2": )" + pose2 + "}";
}

const std::vector<CommandCase> kForceControlRows = {
    // The plain name counts in newtons, the forms in tenths of them.
    acknowledged(CALL(Set_Force_Postion, (s, 1, 2, 3, 5, true)), Set_Force_Postion_Cmd, hold(50), "set_state"),
    acknowledged(CALL(Set_Force_Postion_Block, (s, 1, 2, 3, 5)), Set_Force_Postion_Cmd, hold(5), "set_state"),
    queued(CALL(Set_Force_Postion_NonBlock, (s, 1, 2, 3, -5)), hold(-5)),
    queued("Unwaited_" CALL(Set_Force_Postion, (s, 1, 2, 3, 429496730, false)), hold(4)),  // a product beyond 32 bits
    WAITING(Set_Force_Postion_New, Set_Force_Postion_Cmd, kNewWire, "set_state", kNew),
    SETTER(Stop_Force_Postion, Stop_Force_Postion_Cmd, "stop_force_position", "stop_state"),

    QUERY(Get_Force_Data, Get_Force_Data_Cmd, "get_force_data", kForces, kForcesOutputs, .wiping().reads(kForcesRead)),
    SETTER(Clear_Force_Data, Clear_Force_Data_Cmd, "clear_force_data", "clear_state"),
    WAITING(Set_Force_Sensor, Set_Force_Sensor_Cmd, "set_force_sensor", kCalibrated),
    queued(CALL(Set_Force_Sensor_NonBlock, (s)), "set_force_sensor"),
    // Only the fourth pose waits for a reply.
    queued("First_" CALL(Manual_Set_Force, (s, 1, kJoint)), manual(1, kSix)),
    queued("Second_" CALL(Manual_Set_Force, (s, 2, kJoint)), manual(2, kSix)),
    queued("Third_" CALL(Manual_Set_Force, (s, 3, kJoint)), manual(3, kSeven), 72),
    acknowledged(CALL(Manual_Set_Force, (s, 4, kJoint)), Set_Force_Sensor_Cmd, manual(4, kSix), kCalibrated),
    acknowledged(CALL(Manual_Set_Force_Block, (s, 1, kJoint)), Set_Force_Sensor_Cmd, manual(1, kSeven), kCalibrated)
        .on(75),
    queued(CALL(Manual_Set_Force_NonBlock, (s, 4, kJoint)), manual(4, kSix)),
    SETTER(Stop_Set_Force_Sensor, Stop_Set_Force_Sensor_Cmd, "stop_set_force_sensor", "stop_state"),

    QUERY(Get_Fz, Get_FZ_Data_Cmd, "get_Fz", kFz, "1; -0.5; 0.001; 0.0025", .reads({{}, {{"/set_state", {9, 9}}}})),
    SETTER(Clear_Fz, Clear_Fz_Cmd, "clear_Fz", "set_state"),
    WAITING(Auto_Set_Fz, Auto_Set_Fz_Cmd, "auto_set_Fz", kCalibrated),
    queued(CALL(Auto_Set_Fz_NonBlock, (s)), "auto_set_Fz"),
    acknowledged(CALL(Manual_Set_Fz, (s, kJoint, kOther)), Auto_Set_Fz_Cmd,
                 manual_fz(kSix, "[1000, 2000, 3000, 4000, 5000, 6000]"), kCalibrated),
    acknowledged(CALL(Manual_Set_Fz_Block, (s, kJoint, kOther)), Auto_Set_Fz_Cmd,
                 manual_fz("[10000, 20500, -30000, 40000, 50000, 0.500000, 70250, 7000]",
                           "[1000, 2000, 3000, 4000, 5000, 6000]"),
                 kCalibrated)
        .on(75),
};

ZK_WIRE_ROWS(ForceControl, kForceControlRows, static_cast<void>(0));
ZK_WIRE_GUARDS(ForceControl, "force_control.h", "Force control", kForceControlRows)

// A request that no controller understands: there is no fifth pose.
TEST(Calibration, AnUnknownPoseIsSentWithoutACommand) {
    run(queued(CALL(Manual_Set_Force, (s, 5, kJoint)), std::string(R"({"joint": )") + kSix + "}"));
}

TEST(Calibration, EveryPoseClearsEarlierReplies) {
    ScriptedController controller;
    ZK_API_Init(65, nullptr);
    const ArmSocket arm = connect_arm(controller);
    set_shared(Set_Force_Sensor_Cmd[0].count, 1);
    EXPECT_EQ(Manual_Set_Force(arm, 2, kJoint), 0);
    EXPECT_EQ(shared(Set_Force_Sensor_Cmd[0].count), 0);
    EXPECT_EQ(Manual_Set_Force(arm + 1, 2, kJoint), 0) << "the non-blocking form needs no connection";
}

TEST(ForceControlParsers, ReadArraysOfAnySize) {
    expect_parsed(parsing(Parser_Get_Force_Data),
                  {{R"({"force_data":[1,2,3,4,5,6,7,8],"zero_force_data":{},"tool_zero_force_data":[1]})", 0,
                    "0.001 0.002 0.003 0.004 0.005 0.006; -; -; 0.001"},
                   {R"({"force_data":["1",null,3]})", 0, "0 0 0.003; -; -; -"}});
    expect_parsed(parsing(Parser_Get_Force_Drag_Threshold), {{R"({"threshold":1234})", 0, "1234"}});
}

// A good reply says false.
TEST(ForceControlParsers, RefuseAnFzThatIsSet) {
    expect_parsed(parsing(Parser_Get_Fz),
                  {{R"({"set_state":true,"Fz":1,"zero_Fz":1,"work_zero_Fz":1,"tool_zero_Fz":1})", 9, ""}});
}

}  // namespace
