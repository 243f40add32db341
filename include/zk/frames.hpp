/* The tool frames and work frames that a controller keeps by name. C++17, header only. */
#ifndef ZK_FRAMES_HPP
#define ZK_FRAMES_HPP

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "zk/call.hpp"
#include "zk/frames.h"

namespace zk {
inline namespace ZK_RESULT_NAMESPACE {

/* What an arm carries. */
struct Load {
    double kilograms = 0;
    Position centre_of_gravity; /* in the flange frame */
};

/* A frame by its name, of at most ten bytes. */
struct Frame {
    std::string name;
    Pose pose; /* of a tool in the flange frame, of a work frame in the world */
    Load load; /* of tools alone */
};

namespace detail {

inline Frame frame_of(const FrameRec& c) {
    const auto length = [](float value) { return metres(static_cast<double>(value)); };
    return {c.frame_name, Pose(c.pose), {static_cast<double>(c.payload), {length(c.x), length(c.y), length(c.z)}}};
}

template <auto kQuery, class... Name>
Result<Frame> frame(ArmSocket arm, const Name&... name) {
    FrameRec c{};
    return then(call<kQuery>(arm, name..., &c), [&] { return frame_of(c); });
}

template <auto kQuery>
Result<std::vector<std::string>> frame_names(ArmSocket arm) {
    std::array<FrameName, ZK_FRAME_NAMES> names{};
    std::int32_t count = 0;
    return then(call<kQuery>(arm, names, &count), [&] {
        const auto known = static_cast<std::size_t>(std::clamp(count, 0, ZK_FRAME_NAMES));
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < known; ++i) texts.emplace_back(names[i].text);
        return texts;
    });
}

}  // namespace detail

/* arm.tool_frames(). A change waits for the controller, and the process-wide model follows it. */
class ToolFrames {
 public:
    explicit ToolFrames(ArmSocket arm) : arm_(arm) {}

    [[nodiscard]] Result<Frame> current() const { return detail::frame<Get_Current_Tool_Frame>(arm_); }
    /* ZK_REFUSED when there is none of that name. */
    [[nodiscard]] Result<Frame> get(const std::string& name) const {
        return detail::frame<Get_Given_Tool_Frame>(arm_, name);
    }
    [[nodiscard]] Result<std::vector<std::string>> names() const {
        return detail::frame_names<Get_All_Tool_Frame>(arm_);
    }

    /* Selects a frame. */
    [[nodiscard]] Result<void> use(const std::string& name) const { return call<Change_Tool_Frame>(arm_, name, true); }
    [[nodiscard]] Result<void> add(const Frame& tool) const { return set<Manual_Set_Tool_Frame_Block>(tool); }
    [[nodiscard]] Result<void> update(const Frame& tool) const { return set<Update_Tool_Frame>(tool); }
    [[nodiscard]] Result<void> remove(const std::string& name) const {
        return call<Delete_Tool_Frame>(arm_, name, true);
    }

 private:
    template <auto kSetter>
    [[nodiscard]] Result<void> set(const Frame& tool) const {
        const Position& centre = tool.load.centre_of_gravity;
        return call<kSetter>(arm_, tool.name, tool.pose, tool.load.kilograms, centre.x.metres(), centre.y.metres(),
                             centre.z.metres());
    }
    ArmSocket arm_;
};

/* arm.work_frames(). A change waits for the controller, and the process-wide model follows it. */
class WorkFrames {
 public:
    explicit WorkFrames(ArmSocket arm) : arm_(arm) {}

    [[nodiscard]] Result<Frame> current() const { return detail::frame<Get_Current_Work_Frame>(arm_); }
    /* ZK_REFUSED when there is none of that name; ZK_BAD_ARGUMENT for a name of more than ten bytes. */
    [[nodiscard]] Result<Frame> get(const std::string& name) const {
        std::array<char, 12> text{};
        ::Pose pose{};
        if (name.size() > 10) return detail::failure_of<Get_Given_Work_Frame>(ZK_BAD_ARGUMENT);
        std::copy(name.begin(), name.end(), text.begin());
        return detail::then(call<Get_Given_Work_Frame>(arm_, text, &pose), [&] { return Frame{name, Pose(pose), {}}; });
    }
    [[nodiscard]] Result<std::vector<std::string>> names() const {
        return detail::frame_names<Get_All_Work_Frame>(arm_);
    }

    /* Selects a frame. */
    [[nodiscard]] Result<void> use(const std::string& name) const { return call<Change_Work_Frame>(arm_, name, true); }
    [[nodiscard]] Result<void> add(const Frame& work) const {
        return call<Manual_Set_Work_Frame_Block>(arm_, work.name, work.pose);
    }
    [[nodiscard]] Result<void> update(const Frame& work) const {
        return call<Update_Work_Frame>(arm_, work.name, work.pose);
    }
    [[nodiscard]] Result<void> remove(const std::string& name) const {
        return call<Delete_Work_Frame>(arm_, name, true);
    }

 private:
    ArmSocket arm_;
};

}  // namespace ZK_RESULT_NAMESPACE
}  // namespace zk

#endif
