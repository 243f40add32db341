#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "motion/survey.h"
#include "world/arm_body.h"
#include "world/fences.h"

namespace sim {

// The fence or wall in use and its switch.
struct Barrier {
    Fence shape;
    bool enabled = false;
    int side = 0;    // 0: the arm stays inside; any other number: outside
    int region = 0;  // 0: the tool does; any other number: the whole arm
};

// A part of a tool's envelope, in the frame of the tool; lengths in thousandths of a metre.
struct EnvelopeBall {
    std::string name;
    int radius, x, y, z;
};
using Envelope = std::vector<EnvelopeBall>;

// A region, with the side on which the arm stays.
struct Zone {
    Region region;
    bool outside;
    bool whole_arm;

    bool operator==(const Zone&) const = default;
};

// All that decides whether a posture is allowed.
struct Scene {
    std::array<std::optional<Zone>, 2> zones;  // fence and wall
    bool self_collision = false;
    KDL::Frame room_T_base;
    std::vector<Capsule> tool;  // in the frame of the flange

    bool empty() const { return !zones[0] && !zones[1] && !self_collision; }
    bool operator==(const Scene&) const = default;
};

// What clients have set.
struct Safety {
    Barrier fence, wall;
    FenceStore fences;
    bool self_collision = false;
    std::map<std::string, Envelope> envelopes;  // by the name of their tool

    // With this tool in use. A tool without an envelope is its tip.
    Scene scene(const std::string& tool, const KDL::Frame& flange_T_tool, const KDL::Frame& room_T_base) const;
};

// The body must outlive the survey.
Survey survey_of(const Scene& scene, const ArmBody& body);

}  // namespace sim
