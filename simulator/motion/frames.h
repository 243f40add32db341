#pragma once

#include <array>
#include <kdl/frames.hpp>
#include <map>
#include <string>
#include <vector>

namespace sim {

// A pose in the units of the wire: x, y, z in millionths of a metre, rx, ry, rz in thousandths of a radian.
using WirePose = std::array<int, 6>;

KDL::Frame frame_of(const WirePose& pose);
WirePose wire_pose(const KDL::Frame& frame);

// The frames at both ends of the arm: its base in the work frame and the tool on its flange.
struct Surroundings {
    KDL::Frame work_T_base;
    KDL::Frame flange_T_tool;

    KDL::Frame tool_of(const KDL::Frame& flange) const { return work_T_base * flange * flange_T_tool; }
    KDL::Frame flange_of(const KDL::Frame& tool) const {
        return work_T_base.Inverse() * tool * flange_T_tool.Inverse();
    }
};

struct Frame {
    WirePose pose{};
    double payload = 0;             // thousandths of a kilogram, as sent
    std::array<int, 3> position{};  // centre of gravity, millionths of a metre
};

// The named frames of one kind, one of which is in use. The built-in one cannot be changed.
class FrameStore {
 public:
    explicit FrameStore(const std::string& built_in);

    static constexpr size_t kMaxName = 10;    // bytes
    static constexpr size_t kMaxFrames = 11;  // as many names as a client takes

    const std::string& current_name() const { return current_; }
    const Frame& current() const { return frames_.at(current_); }
    const Frame* find(const std::string& name) const;
    std::vector<std::string> names() const;  // the built-in one first

    // Each is false if the name is taken, unknown, invalid or that of the built-in frame.
    bool add(const std::string& name, const Frame& frame);
    bool update(const std::string& name, const Frame& frame);
    bool select(const std::string& name);
    bool remove(const std::string& name);  // the built-in frame replaces a removed frame in use

 private:
    std::string built_in_;
    std::string current_;
    std::map<std::string, Frame> frames_;
};

}  // namespace sim
