// Arms of the C++ interface against the simulator.
#include <future>

#include "cpp/standard.h"
#include "support/simulator_process.h"
#include "zk/arm.hpp"

namespace {

using namespace zk::literals;
using zk::test::eventually, zk::test::SimulatorProcess;

const zk::Joints kHome{0_deg, 20_deg, 70_deg, 0_deg, 90_deg, 0_deg},
    kAway{60_deg, 20_deg, 70_deg, 0_deg, 90_deg, 0_deg};

// A simulated arm at kHome, and a connection to it.
struct Cell {
    explicit Cell(std::vector<std::string> arguments = {}, const char* speed = "max")
        : simulator(with(std::move(arguments), speed)), arm("127.0.0.1", simulator.port(), {60_s}) {}
    static std::vector<std::string> with(std::vector<std::string> arguments, const char* speed) {
        arguments.insert(arguments.end(), {"--joints", "0,20,70,0,90,0", "--speed", speed});
        return arguments;
    }
    SimulatorProcess simulator;
    zk::Arm arm;
};

TEST(SUITE(Arm), ConnectsAndClosesItself) {
    const int port = SimulatorProcess().port();  // of one that has ended
    zk::Result<zk::Arm> nobody = zk::Arm::connect("127.0.0.1", port);
    ASSERT_FALSE(nobody);
    EXPECT_EQ(nobody.error().status, ZK_CONNECTION_REFUSED);
    EXPECT_EQ(nobody.error().go_on, ZK_RETRY);
    EXPECT_THROW(zk::Arm("127.0.0.1", port), zk::BadResult);

    Cell cell;
    EXPECT_EQ(cell.arm.joint_count(), 6U);
    zk::Arm other = std::move(cell.arm);
    const ArmSocket handle = other.handle();
    EXPECT_EQ(other.connection().value().state, ZK_CONNECTION_UP);
    EXPECT_EQ(cell.arm.joints().error().status, ZK_NOT_CONNECTED) << "moved from";
    const zk::Gripper gripper = other.gripper();
    { const zk::Arm last = std::move(other); }
    ZK_ConnectionRecord record;
    EXPECT_EQ(ZK_Connection(handle, &record), ZK_STALE_HANDLE);
    EXPECT_EQ(gripper.state().error().status, ZK_NOT_CONNECTED);
}

TEST(SUITE(Arm), MovesAndWaits) {
    Cell cell;
    const zk::Arm& arm = cell.arm;
    const zk::Pose start = arm.pose().value();
    arm.move_joints(kAway, {80_percent}).wait().value();
    EXPECT_NEAR((arm.joints().value()[0] - 60_deg).degrees(), 0, 0.01);
    arm.move_pose(start).wait().value();
    const zk::Pose beside = start.moved(0_m, 50_mm, 0_m), beyond = start.moved(50_mm, 50_mm, 0_m);
    arm.move_line(beside).wait().value();
    EXPECT_LT((arm.state().value().pose.position - beside.position).norm(), 0.1_mm);
    arm.move_circle(beyond, start.moved(50_mm, 0_m, 0_m)).wait().value();
    arm.move_spline(beyond, {20_percent, 0_percent, true}).accepted().value();
    arm.move_spline(beside).wait().value();
    const zk::Move first = arm.move_joints(kHome, {100_percent, 50_percent, true});
    first.accepted().value();
    EXPECT_EQ(first.wait().error().status, ZK_BAD_ARGUMENT) << "it ends with the next one";
    EXPECT_TRUE(arm.move_joints(kAway).wait()) << "joined";
    EXPECT_NEAR((arm.model().value().forward(kAway).value().position - arm.pose().value().position).norm().metres(), 0,
                1e-4);

    struct {
        zk::Move move;
        int status;
        const char* text;
    } refused[] = {{arm.move_joints({0_deg}), ZK_BAD_ARGUMENT, "1 joints for an arm of 6"},
                   {arm.move_joints(kHome, {0.5_percent}), ZK_BAD_ARGUMENT, "speed"},
                   {arm.move_circle(start, start, {20_percent, 101_percent}), ZK_BAD_ARGUMENT, "blend"},
                   {arm.move_line(start.shifted(zk::metres(NAN), 0_m, 0_m)), ZK_BAD_ARGUMENT, "not finite"},
                   {arm.move_line(start.shifted(5_m, 0_m, 0_m)), ZK_REFUSED, "refused"}};
    for (const auto& [move, status, text] : refused) {
        EXPECT_EQ(move.wait().error().status, status);
        EXPECT_EQ(move.accepted().error().status, status);
        EXPECT_CONTAINS(move.wait_for(1_ms).error().text, text);
    }
    EXPECT_CONTAINS(arm.stream_joints({20_deg}).error().text, "1 joints for an arm of 6");
    EXPECT_CONTAINS(arm.call<Movej_CANFD>(zk::Joints{20_deg}, 0, 0).error().text, "1 joints for an arm of 6");
}

TEST(SUITE(Arm), AWaitEndsEarly) {
    Cell cell({}, "1");
    const zk::Arm& arm = cell.arm;
    eventually([&] { return arm.states().latest().has_value(); });
    zk::Move move = arm.move_joints(kAway, {1_percent});
    EXPECT_EQ(move.wait_for(1_ms).error().status, ZK_TIMEOUT);
    EXPECT_TRUE(eventually([&] { return move.progress().value_or(0) > 0; }));
    auto wait = std::async(std::launch::async, [&] { return move.wait(); });
    while (wait.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) move.cancel().value();
    EXPECT_EQ(wait.get().error().status, ZK_CANCELLED);
    arm.pause().value();
    arm.resume().value();
    move.stop().value();
    EXPECT_EQ(move.wait().error().status, ZK_REFUSED);
    arm.wait_idle(60_s).value();
    arm.set_deadline(1_ms).value();
    EXPECT_EQ(arm.wait_idle(60_s).error().status, ZK_DEADLINE);
}

TEST(SUITE(Arm), StatesArriveAndAFunctionEndsWithItsStream) {
    Cell cell({}, "1");
    zk::StateStream states(cell.arm);
    const zk::State first = states.next(60_s).value(), second = states.next(60_s).value();
    EXPECT_GT(second.record.sequence, first.record.sequence);
    EXPECT_NEAR(first.joints()[4].degrees(), 90, 0.01);
    EXPECT_LT((first.pose().position - cell.arm.pose().value().position).norm(), 0.1_mm);
    EXPECT_GE(states.latest().value().age(), std::chrono::nanoseconds(0));

    std::atomic<int> calls{0}, after{0};
    {
        zk::StateStream counting = cell.arm.states();
        counting.on_state([&](const zk::State&) { ++calls; });
        EXPECT_TRUE(eventually([&] { return calls > 2; }));
    }
    after = calls.load();
    states.on_state([](const zk::State&) { throw std::runtime_error("no more"); });
    EXPECT_TRUE(eventually([&] { return states.failure() != nullptr; }));
    EXPECT_EQ(calls, after);
    cell.arm.close();
    EXPECT_EQ(states.next(60_s).error().status, ZK_STALE_HANDLE);
}

TEST(SUITE(Arm), FunctionsAreCalledUntilTheirSubscriptionEnds) {
    std::atomic<int> lines{0}, frames{0}, thrown{0}, reports{0};
    std::vector<ZK_ConnectionState> states;
    zk::Subscription itself;
    zk::Subscription all =
        zk::on_log(ZK_LOG_FRAMES, [&](const zk::LogLine& line) { line.level == ZK_LOG_FRAMES ? ++frames : ++lines; });
    zk::Subscription failing = zk::on_log(ZK_LOG_EVENTS, [&](const zk::LogLine& line) {
        EXPECT_EQ(line.level, ZK_LOG_EVENTS);
        throw ++thrown;
    });
    zk::Subscription changes = zk::on_connection([&](const zk::ConnectionChange& change) {
        states.push_back(change.state);
        itself.end();
    });
    int once = 0;
    itself = zk::on_connection([&](const zk::ConnectionChange&) { ++once; });
    zk::Subscription motion = zk::on_motion_report([&](const ArmMotionReport&) { ++reports; });
    {
        Cell cell({}, "1");
        EXPECT_TRUE(eventually([&] { return cell.arm.stream_joints(kHome).has_value() && reports > 0; }));
        cell.arm.stream_pose(cell.arm.pose().value(), true).value();
        EXPECT_GT(frames, 0);
        all.end();
        frames = 0;
        cell.arm.joints().value();
    }
    EXPECT_EQ(frames, 0);
    EXPECT_GT(lines, 0);
    EXPECT_GT(thrown, 1) << "an exception ends no subscription";
    EXPECT_NE(failing.failure(), nullptr);
    EXPECT_EQ(changes.failure(), nullptr);
    EXPECT_EQ(states, (std::vector{ZK_CONNECTION_UP, ZK_CONNECTION_CLOSED}));
    EXPECT_EQ(once, 0) << "it was ended by the function before it";
}

}  // namespace
