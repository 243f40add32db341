#pragma once

#include "motion/tool.h"
#include "world/faults.h"

namespace sim {

struct Devices;

// Makes the arm and its devices fail.
class FaultEffects {
 public:
    FaultEffects(Arm& arm, const Tool& tool, Devices& devices) : arm_(arm), tool_(tool), devices_(devices) {}
    FaultEffects(const FaultEffects&) = delete;
    FaultEffects& operator=(const FaultEffects&) = delete;

    const ArmFaults& faults() const { return faults_; }
    void set(const ArmFaults& faults);

    // Call it before the arm and the devices step.
    void step(double seconds);

    // True when nothing changes before the next request.
    bool rests() const { return rests_; }

 private:
    void change_temperatures(double seconds);
    void collide();
    void sink(double seconds);
    double height(const JointVector& joints) const;

    Arm& arm_;
    const Tool& tool_;
    Devices& devices_;
    ArmFaults faults_;
    bool rests_ = true;
};

}  // namespace sim
