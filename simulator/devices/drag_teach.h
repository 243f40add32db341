#pragma once

#include <deque>
#include <string>
#include <vector>

#include "motion/arm.h"
#include "world/hand.h"

namespace sim {

// Drag teaching. A scripted hand replaces the operator's: it leads the arm while the arm yields, and the motion is
// recorded.
class DragTeach {
 public:
    explicit DragTeach(Arm& arm) : arm_(arm) {}

    static constexpr int kSampleMs = 20;

    // Lets the arm yield to the hand, which starts its script. The arm must be at rest. `status` is the name of this
    // state in the real-time push.
    void start(bool record, const std::string& status);
    void stop();
    bool active() const { return active_; }
    // True while the hand has a way to go.
    bool leads() const { return active_ && (leg_seconds_ > 0 || !legs_.empty()); }
    const std::string& status() const { return status_; }

    // Appends a leg to the script.
    void lead(const HandLeg& leg);

    void step(double seconds);

    // The joints of the last recording, sampled every kSampleMs, and those at its end.
    const std::vector<JointVector>& recording() const { return recording_; }

    // The recording as a path at its recorded pace, or slower where the limits demand it. It starts near the current
    // joints.
    Path replay(const JointVector& start) const;

    std::vector<HandLeg> script;  // restarts with each start
    int sensitivity = 50;         // percent; stored, without effect

 private:
    void begin_leg();
    JointVector within_limits(JointVector joints) const;
    void record(double seconds);

    Arm& arm_;
    bool active_ = false;
    bool recording_now_ = false;
    std::string status_;
    std::deque<HandLeg> legs_;
    JointVector from_;                 // of the leg in progress
    std::vector<JointLimits> limits_;  // when it began; with others it begins anew
    double leg_time_ = 0;              // seconds
    double leg_seconds_ = 0;           // 0: none is in progress
    double sample_time_ = 0;
    std::vector<JointVector> recording_;
};

}  // namespace sim
