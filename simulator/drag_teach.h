#pragma once

#include <deque>
#include <string>
#include <vector>

#include "arm.h"

namespace sim {

// One leg of the way on which a hand leads the arm: to these joints, in so many seconds or as soon as the joints can.
struct HandLeg {
    double seconds;
    JointVector joints;  // degrees
};

// Legs from a file: on each line the seconds and then the joints, with commas or blanks between them; what stands
// behind a '#' is not read. Throws std::invalid_argument.
std::vector<HandLeg> read_hand(const std::string& path);

// Drag teaching. A scripted hand stands in for the operator's: it leads the arm while the arm gives way, and where the
// arm goes is recorded.
class DragTeach {
 public:
    explicit DragTeach(Arm& arm) : arm_(arm) {}

    static constexpr int kSampleMs = 20;

    // From now on the arm gives way to the hand, which begins its script. The arm must be at rest. `status` is how the
    // real-time push names it.
    void start(bool record, const std::string& status);
    void stop();
    bool active() const { return active_; }
    const std::string& status() const { return status_; }

    // Adds a leg behind those that the hand has yet to go.
    void lead(const HandLeg& leg);

    void step(double seconds);

    // The joints every kSampleMs from the start of the last recording on, and at its end.
    const std::vector<JointVector>& recording() const { return recording_; }

    // The recording as a path at the pace of the recording, beginning near where the arm stands.
    Path replay(const JointVector& start) const;

    std::vector<HandLeg> script;  // begins anew with each start
    int sensitivity = 50;         // percent; told and kept

 private:
    void begin_leg();
    void record(double seconds);

    Arm& arm_;
    bool active_ = false;
    bool recording_now_ = false;
    std::string status_;
    std::deque<HandLeg> legs_;
    JointVector from_;        // of the leg in progress
    double leg_time_ = 0;     // seconds
    double leg_seconds_ = 0;  // 0: none is in progress
    double sample_time_ = 0;
    std::vector<JointVector> recording_;
};

}  // namespace sim
