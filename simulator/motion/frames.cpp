#include "motion/frames.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace sim {

KDL::Frame frame_of(const WirePose& pose) {
    return {KDL::Rotation::RPY(pose[3] / 1e3, pose[4] / 1e3, pose[5] / 1e3),
            KDL::Vector(pose[0] / 1e6, pose[1] / 1e6, pose[2] / 1e6)};
}

WirePose wire_pose(const KDL::Frame& frame) {
    double roll, pitch, yaw;
    frame.M.GetRPY(roll, pitch, yaw);
    // A frame may be too far away for the integers of the wire.
    const auto round = [](double value, double scale) {
        return static_cast<int>(std::lround(std::clamp<double>(value * scale, INT_MIN, INT_MAX)));
    };
    return {round(frame.p.x(), 1e6), round(frame.p.y(), 1e6), round(frame.p.z(), 1e6),
            round(roll, 1e3),        round(pitch, 1e3),       round(yaw, 1e3)};
}

FrameStore::FrameStore(const std::string& built_in) : built_in_(built_in), current_(built_in) {
    frames_.emplace(built_in, Frame{});
}

const Frame* FrameStore::find(const std::string& name) const {
    const auto found = frames_.find(name);
    return found == frames_.end() ? nullptr : &found->second;
}

std::vector<std::string> FrameStore::names() const {
    std::vector<std::string> names{built_in_};
    for (const auto& [name, frame] : frames_) {
        if (name != built_in_) names.push_back(name);
    }
    return names;
}

// "NULL" terminates a list of names on the wire.
bool FrameStore::add(const std::string& name, const Frame& frame) {
    if (name.empty() || name.size() > kMaxName || name == "NULL" || frames_.size() == kMaxFrames) return false;
    return frames_.emplace(name, frame).second;
}

bool FrameStore::update(const std::string& name, const Frame& frame) {
    const auto found = frames_.find(name);
    if (found == frames_.end() || name == built_in_) return false;
    found->second = frame;
    return true;
}

bool FrameStore::select(const std::string& name) {
    if (!find(name)) return false;
    current_ = name;
    return true;
}

bool FrameStore::remove(const std::string& name) {
    if (name == built_in_ || frames_.erase(name) == 0) return false;
    if (current_ == name) current_ = built_in_;
    return true;
}

}  // namespace sim
