// The families of an arm of the C++ interface against the simulator: what one call sets another one reads.
#include <cmath>

#include "cpp/standard.h"
#include "support/simulator_process.h"
#include "support/temporary_file.h"
#include "zk/arm.hpp"

namespace {

using namespace zk::literals;

// With a six-axis sensor, and a part of 300 between the fingers.
struct ToolCell {
    ToolCell()
        : simulator({"--model", "ZK65-6F", "--object", "300", "--speed", "max"}),
          arm("127.0.0.1", simulator.port(), {60_s}) {}
    zk::test::SimulatorProcess simulator;
    zk::Arm arm;
};

TEST(SUITE(Families), ToolsMove) {
    const ToolCell cell;
    const zk::Gripper gripper = cell.arm.gripper();
    gripper.release().value();
    EXPECT_GT(gripper.position().value(), 300);
    gripper.pick({100, 100}).value();
    EXPECT_EQ(gripper.position().value(), 300);
    gripper.hold().value();
    gripper.move_to(500).value();
    EXPECT_EQ(gripper.state().value().actpos, 500);
    gripper.set_range(100, 400).value();

    const zk::Hand hand = cell.arm.hand();
    hand.set_angles({100, 200, 300, 400, 500, 600}).value();
    hand.stream_positions({1, 2, 3, 4, 5, 6}).value();
    hand.stream_angles({1, 2, 3, 4, 5, 6}).value();
    hand.set_speed(200).value();
    hand.set_force(200).value();
    hand.take_posture(1).value();
    hand.run_sequence(1).value();

    cell.arm.lift().move_to(200_mm, 50_percent).value();
    EXPECT_EQ(cell.arm.lift().state().value().height, 200_mm);
    EXPECT_EQ(cell.arm.lift().move_to(200_mm, 300_percent).error().status, ZK_REFUSED);
    cell.arm.lift().run(0_percent).value();
}

TEST(SUITE(Families), ForcesAreHeldAndTheHandGuides) {
    ToolCell cell;
    const zk::ForceControl force = cell.arm.force();
    force.zero().value();
    EXPECT_NEAR(force.read().value().net[2], 0, 0.5);
    EXPECT_EQ(force.read_one_axis().error().status, ZK_BAD_REPLY) << "there is none";
    cell.simulator.set_speed(1);  // a held force does not come to rest
    force.hold({ZK_FORCE_Z, 5}).value();
    force.release().value();
    cell.simulator.run_at_once();

    const zk::DragTeaching drag = cell.arm.drag();
    drag.start().value();
    drag.stop().value();
    drag.go_to_start().value();
    drag.replay().value();
    const zk::test::TemporaryDirectory directory;
    EXPECT_GE(drag.save(directory / "way.txt").value(), 1);
}

TEST(SUITE(Families), SignalsReadBack) {
    const ToolCell cell;
    const zk::Io io = cell.arm.io();
    io.set_digital(2, true).value();
    EXPECT_TRUE(io.digital_output(2).value());
    EXPECT_EQ(io.outputs().value().digital[1], 1);
    io.set_volts(1, 2.5).value();
    EXPECT_EQ(io.outputs().value().volts[0], 2.5f);
    EXPECT_EQ(io.inputs().value().digital[0], 0);
    io.set_tool_is_output(1, true).value();
    io.set_tool_digital(1, true).value();
    EXPECT_TRUE(io.tool_digital().value()[0]);
    io.set_tool_voltage(2).value();

    const zk::Modbus modbus = cell.arm.modbus(1);
    modbus.open(115200, 500_ms).value();
    modbus.write_register(1, 10, 0x1234).value();
    EXPECT_EQ(modbus.holding_register(1, 10).value(), 0x1234);
    modbus.write_registers(1, 11, std::array<std::uint16_t, 2>{0xabcd, 7}).value();
    EXPECT_EQ(modbus.holding_registers(1, 10, 3).value(), (std::vector<std::uint16_t>{0x1234, 0xabcd, 7}));
    EXPECT_EQ(modbus.input_registers(1, 40, 2).value(), (std::vector<std::uint16_t>{40, 41}));
    EXPECT_EQ(modbus.input_register(1, 40).value(), 40);
    modbus.write_coil(1, 3, true).value();
    EXPECT_EQ(modbus.coils(1, 2, 3).value(), 2);
    EXPECT_EQ(modbus.discrete_inputs(1, 0, 2).value(), 2);
    EXPECT_EQ(modbus.holding_register(9, 0).error().status, ZK_REFUSED);
    EXPECT_EQ(modbus.holding_registers(1, 0, 129).error().status, ZK_BAD_ARGUMENT);
    modbus.close().value();
}

TEST(SUITE(Families), FramesComeAndGo) {
    const ToolCell cell;
    const zk::ToolFrames tools = cell.arm.tool_frames();
    const zk::Pose before = cell.arm.pose().value();
    const zk::Frame tool{"finger", {{0_m, 0_m, 100_mm}, {}}, {1.5, {0_m, 0_m, 20_mm}}};
    tools.add(tool).value();
    tools.use("finger").value();
    EXPECT_LT((cell.arm.pose().value().position - before.moved(0_m, 0_m, 100_mm).position).norm(), 0.1_mm);
    const zk::Frame now = tools.current().value();
    EXPECT_EQ(now.name, "finger");
    EXPECT_LT((now.pose.position - tool.pose.position).norm(), 0.01_mm);
    EXPECT_NEAR(now.load.kilograms, 1.5, 0.001);
    tools.update({"finger", {{0_m, 0_m, 50_mm}, {}}, {}}).value();
    EXPECT_NEAR(tools.get("finger").value().pose.position.z.millimetres(), 50, 0.01);

    const zk::WorkFrames frames = cell.arm.work_frames();
    frames.add({"table", {{100_mm, 0_m, 0_m}, zk::Rotation::about_z(90_deg)}, {}}).value();
    frames.update({"table", {{200_mm, 0_m, 0_m}, zk::Rotation::about_z(90_deg)}, {}}).value();
    EXPECT_NEAR(frames.get("table").value().pose.rotation.euler().rz.degrees(), 90, 0.1);
    EXPECT_EQ(frames.get("a long name").error().status, ZK_BAD_ARGUMENT);
    EXPECT_EQ(frames.get("none").error().status, ZK_REFUSED);
    frames.use("table").value();
    EXPECT_EQ(frames.current().value().name, "table");

    EXPECT_EQ(tools.names().value().size(), 2U);
    EXPECT_EQ(frames.names().value().back(), "table");
    frames.use("Base").value();
    frames.remove("table").value();
    EXPECT_EQ(frames.names().value().size(), 1U);
}

TEST(SUITE(Families), ProgramsAreSentListedAndRun) {
    const ToolCell cell;
    const zk::Programs programs = cell.arm.programs();
    const zk::test::TemporaryDirectory directory;
    for (int id = 1; id <= 60; ++id) {
        programs
            .send(directory.file("turn" + std::to_string(id) + ".txt",
                                 "{\"command\":\"movej\",\"joint\":[30000,0,0,0,0,0],\"v\":20}\n"),
                  {100_percent, id})
            .value();
    }
    const std::vector<zk::Program> all = programs.list().value();
    ASSERT_EQ(all.size(), 60U);
    EXPECT_EQ(all.back().id, 60);
    EXPECT_EQ(programs.list("turn5").value().size(), 11U);
    programs.start(7, 50_percent).value();
    EXPECT_EQ(programs.wait().value().run_state, ZK_PROGRAM_NONE);
    EXPECT_NEAR(cell.arm.joints().value()[0].degrees(), 30, 0.01);
    EXPECT_EQ(programs.state().value().run_state, ZK_PROGRAM_NONE);
    programs.remove(7).value();
    EXPECT_EQ(programs.start(7).error().status, ZK_REFUSED);
    const auto bad = programs.send(directory.file("bad.txt", "{}\n[]\n"));
    ASSERT_FALSE(bad);
    EXPECT_CONTAINS(bad.error().text, "line 2");
}

TEST(SUITE(Families), TheSystemAnswers) {
    const ToolCell cell;
    cell.arm.set_power(false).value();
    EXPECT_FALSE(cell.arm.is_powered().value());
    EXPECT_EQ(cell.arm.move_joints(cell.arm.joints().value()).wait().error().status, ZK_REFUSED);
    cell.arm.set_power(true).value();
    cell.arm.clear_error().value();
    EXPECT_STREQ(cell.arm.software().value().product_version, "ZK65-6F");
    EXPECT_GT(cell.arm.measurements().value().voltage[5], 0);
    cell.arm.jog_joint(1, true, 10_percent).value();
    cell.arm.stop_jog().value();
}

}  // namespace
