// Moves of the tool, from the library's call to where the simulated arm reports its tool.
#include <gtest/gtest.h>

#include <functional>

#include "support/arm.h"
#include "support/kdl_frames.h"
#include "support/scaled_time.h"
#include "support/simulated_arm.h"
#include "zk/arm_state.h"
#include "zk/motion.h"
#include "zk/trajectory.h"

namespace {

using namespace zk::test;

// A move from where the tool is to where it must be then.
struct Row {
    const char* call;
    std::function<int(ArmSocket, const KDL::Frame& target, bool block)> move;
    std::function<KDL::Frame(const KDL::Frame& from)> target;
};

// Lengths along the axes of the work frame, turned about them.
std::function<KDL::Frame(const KDL::Frame&)> by(const KDL::Vector& way, const KDL::Vector& turn) {
    return [=](const KDL::Frame& from) { return KDL::addDelta(from, KDL::Twist(way, turn)); };
}

const KDL::Rotation kReference = KDL::Rotation::RPY(0.3, -0.2, 0.5);

const Row kRows[] = {
    {"Movel_Cmd",
     [](ArmSocket arm, const KDL::Frame& to, bool block) { return Movel_Cmd(arm, to_pose(to), 50, 0, 0, block); },
     by({0, 0.03, -0.02}, {0.1, 0, -0.2})},
    {"Moves_Cmd",
     [](ArmSocket arm, const KDL::Frame& to, bool block) { return Moves_Cmd(arm, to_pose(to), 50, 0, 0, block); },
     by({0, -0.03, 0.01}, {-0.1, 0.1, 0})},
    {"Movec_Cmd",
     [](ArmSocket arm, const KDL::Frame& to, bool block) {
         const KDL::Frame via(to.M, to.p + KDL::Vector(0.01, -0.02, 0));
         return Movec_Cmd(arm, to_pose(via), to_pose(to), 50, 0, 0, 0, block);
     },
     by({0, 0.02, 0.01}, {0, -0.1, 0.1})},
    {"Movej_P_Cmd",
     [](ArmSocket arm, const KDL::Frame& to, bool block) { return Movej_P_Cmd(arm, to_pose(to), 50, 0, 0, block); },
     by({0, -0.02, -0.03}, {0.1, 0, 0.2})},
    {"MoveCartesianTool_Cmd",
     [](ArmSocket arm, const KDL::Frame&, bool block) {
         return MoveCartesianTool_Cmd(arm, 50, 0, 0, block, 0.01f, -0.02f, -0.03f);
     },
     [](const KDL::Frame& from) { return from * KDL::Frame(KDL::Vector(0.01, -0.02, -0.03)); }},
    {"MoveRotate_Cmd",
     [](ArmSocket arm, const KDL::Frame&, bool block) {
         return MoveRotate_Cmd(arm, 3, 50, 0, 0, block, to_pose(KDL::Frame(kReference)), 10);
     },
     [](const KDL::Frame& from) {
         const double radians = 10 * M_PI / 180;
         return KDL::Frame(KDL::Rotation::Rot(kReference.UnitZ(), radians) * from.M, from.p);
     }},
};

KDL::Frame tool_of(ArmSocket arm) {
    float joint[7] = {};
    Pose pose{};
    uint16_t arm_err = 0, sys_err = 0;
    EXPECT_EQ(Get_Current_Arm_State(arm, joint, &pose, &arm_err, &sys_err), 0);
    return to_kdl(pose);
}

bool at_rest(ArmSocket arm) {
    int type = -1;
    float data[7] = {};
    EXPECT_EQ(Get_Current_Trajectory(arm, &type, data), 0);
    return type == 0;
}

struct Model {
    const char* name;
    int arm_mode;
};
std::ostream& operator<<(std::ostream& out, const Model& model) { return out << model.name; }

class ToolMotion : public testing::TestWithParam<Model> {
 protected:
    void SetUp() override { set_time_factor(0); }  // the arm may take its time
    SimulatedArm connect() { return SimulatedArm({"--quiet", "--model", GetParam().name}, GetParam().arm_mode); }
};
INSTANTIATE_TEST_SUITE_P(Simulated, ToolMotion, testing::Values(Model{"ZK65-B", 65}, Model{"ZK75-6F", 75}));

TEST_P(ToolMotion, BringsTheToolToWhereItIsTold) {
    const SimulatedArm arm = connect();
    for (const Row& row : kRows) {
        for (const bool block : {true, false}) {
            const KDL::Frame target = row.target(tool_of(arm));
            EXPECT_EQ(row.move(arm, target, block), 0) << row.call;
            EXPECT_TRUE(block || eventually([&] { return at_rest(arm); })) << row.call;
            const KDL::Frame tool = tool_of(arm);
            // The wire truncates to micrometres and milliradians, and joints to thousandths of a degree.
            EXPECT_LT((tool.p - target.p).Norm(), 3e-5) << row.call << (block ? " block" : "");
            EXPECT_LT(angle_between(tool.M, target.M), 4e-3) << row.call << (block ? " block" : "");
        }
    }
}

}  // namespace
