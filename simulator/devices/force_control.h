#pragma once

#include <optional>
#include <vector>

#include "devices/force_hold.h"
#include "devices/force_sensor.h"
#include "motion/tool.h"
#include "world/wall.h"

namespace sim {

enum class ForceAxes { kSensor, kWork, kTool };

// The force control of an arm: the sensor at its flange, and the hold, to which the arm yields.
class ForceControl {
 public:
    ForceControl(Arm& arm, const Tool& tool, const Wall& wall, const ForceSensor& sensor);
    ForceControl(const ForceControl&) = delete;
    ForceControl& operator=(const ForceControl&) = delete;

    // The wrench on the sensor without that of the load: at the flange in the flange's axes, or at the tool in the axes
    // of the work frame or of the tool. A one-axis sensor measures its axis only.
    KDL::Wrench felt(ForceAxes axes) const;

    // False when the arm moves and holds a force in other axes.
    bool begin_hold(const HoldOrder& order);

    void step_hold(double seconds);
    void measure();

    ForceSensor sensor;
    ForceHold hold;
    Wall wall;
    Load carried;  // by the gripper, beside the load of the sensor

 private:
    // A pose of the flange that is out of reach. While nothing changes, every step would search for it again.
    struct OutOfReach {
        KDL::Frame flange;
        JointVector from;
        std::vector<JointLimits> limits;
    };

    JointVector yielded(const JointVector& ordered);
    std::optional<JointVector> joints_near(const KDL::Frame& flange);
    bool settle_hold();

    Arm& arm_;
    const Tool& tool_;
    std::optional<OutOfReach> out_of_reach_;
};

}  // namespace sim
