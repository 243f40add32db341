// Tool and work frames from the poses that a client has recorded.
#include <gtest/gtest.h>

#include "simulator/talk.h"

namespace zk::test {
namespace {

// The axes of the wrist joints meet 144 mm before the flange: a tool with its tip there stays in place while they
// rotate.
TEST(AutomaticTool, TipIsWhereTheFlangePosesMeet) {
    Talk talk({"--quiet", "--model", "ZK65-B"});
    const Json keys{{"tool_name", "tip"}, {"payload", 750}, {"position", {1, 2, 3}}};
    int point = 0;
    for (const auto& [wrist, bend, turn] : {std::array{10.0, -40.0, 20.0}, {-60.0, 50.0, 90.0}, {80.0, 20.0, -120.0}}) {
        EXPECT_FALSE(talk.ask("generate_auto_tool_frame", keys).at("auto_tool_frame"));  // too few points
        talk.move_to({15, -20, -60, wrist, bend, turn});
        EXPECT_TRUE(talk.ask("set_auto_tool_frame", {{"point_num", ++point}}).at("auto_tool_frame"));
    }
    ASSERT_TRUE(talk.ask("generate_auto_tool_frame", keys).at("auto_tool_frame"));
    const Json frame = talk.ask("get_tool_frame", {{"tool_name", "tip"}});
    EXPECT_EQ(frame.at("pose"), Json({0, 0, -144000, 0, 0, 0}));
    EXPECT_EQ(frame.at("payload"), 750);
    EXPECT_EQ(frame.at("position"), Json({1, 2, 3}));
}

TEST(AutomaticTool, NeedsDifferentOrientations) {
    Talk talk({"--quiet"});
    for (int point = 1; point <= 4; ++point) talk.ask("set_auto_tool_frame", {{"point_num", point}});
    const Json keys{{"tool_name", "tip"}, {"payload", 0}, {"position", {0, 0, 0}}};
    EXPECT_FALSE(talk.ask("generate_auto_tool_frame", keys).at("auto_tool_frame"));
}

TEST(AutomaticWork, IsInThePlaneOfItsPoints) {
    Talk talk({"--quiet", "--install", "20,-30,40", "--tool", "0.01,0.02,0.1,0,0,0"});
    const std::vector<std::vector<double>> points{
        {10, -20, -60, 15, -40, 20}, {40, -20, -60, 15, -40, 20}, {10, 10, -40, 15, -40, 20}};
    const auto ask = [&](int point) {
        return talk.ask("set_auto_work_frame", {{"frame_name", "table"}, {"point_num", point}})
            .at("auto_work_frame")
            .get<bool>();
    };
    EXPECT_FALSE(ask(4));
    for (int point = 0; point < 3; ++point) {
        talk.move_to(points[point]);
        EXPECT_TRUE(ask(point + 1));
    }
    EXPECT_TRUE(ask(4));
    ASSERT_TRUE(talk.ask("set_change_work_frame", {{"frame_name", "table"}}).at("change_work_frame"));
    std::vector<std::vector<int>> seen;
    for (const auto& point : points) {
        talk.move_to(point);
        seen.push_back(talk.pose());
    }
    // The frame's angles are rounded to a thousandth of a radian, which is half a millimetre at a metre.
    constexpr int kRounding = 600;
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(seen[0][i], 0, 2) << i;
    EXPECT_GT(seen[1][0], 100000);
    for (const int i : {1, 2}) EXPECT_NEAR(seen[1][i], 0, kRounding) << i;
    EXPECT_GT(seen[2][1], 100000);
    EXPECT_NEAR(seen[2][2], 0, kRounding);
}

}  // namespace
}  // namespace zk::test
