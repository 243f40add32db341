#include <algorithm>
#include <memory>

#include "programs/programs.h"
#include "report.h"

namespace tool {
namespace {

Json row_of(const GlobalWaypoint& point, std::size_t joints) {
    return {{"name", point.point_name},
            {"joints_deg", json_of(zk::Joints::from_c(&point.joint[0], joints))},
            {"pose", json_of(zk::Pose(point.pose))},
            {"work_frame", point.work_frame},
            {"tool", point.tool_frame},
            {"time", point.time}};
}

Json waypoints_of(const zk::Arm& arm) {
    constexpr std::int32_t kPage = 30, kMostPages = 1000;
    Json rows = Json::array();
    const auto page = std::make_unique<GlobalWaypointList>();
    for (page->page_num = 1; page->page_num <= kMostPages; ++page->page_num) {
        page->page_size = kPage;
        arm.call<Get_Global_Point_List>(page.get()).value();
        const std::int64_t left = page->total_size - static_cast<std::int64_t>(rows.size());
        for (std::int64_t i = 0; i < std::min<std::int64_t>(left, kPage); ++i)
            rows.push_back(row_of(page->list[i], arm.joint_count()));
        if (left <= kPage) break;
    }
    return rows;
}

}  // namespace

void add_waypoints(CLI::App& zk) {
    add_looking_at_arm(zk, "waypoints", "the named places that the controller keeps", waypoints_of);
}

}  // namespace tool
