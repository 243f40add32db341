#include "world/guard.h"

#include <utility>

namespace sim {

Guard::Guard(Arm& arm, const Tool& tool) : arm_(arm), tool_(tool), body_(arm) {
    arm.hazards = [this] { return survey_of(scene(), body_); };
}

// The envelope of a tool goes with the tool.
void Guard::step() {
    std::erase_if(safety.envelopes, [this](const auto& envelope) { return !tool_.tools.find(envelope.first); });
    Scene now = scene();
    if (now == scene_) return;
    scene_ = std::move(now);
    arm_.hazards_changed();
}

Scene Guard::scene() const {
    return safety.scene(tool_.tools.current_name(), tool_.surroundings().flange_T_tool, tool_.room_T_base());
}

}  // namespace sim
