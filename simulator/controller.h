#pragma once

#include <cstdint>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "devices/devices.h"
#include "devices/drag_teach.h"
#include "devices/force_hold.h"
#include "devices/force_sensor.h"
#include "devices/modbus.h"
#include "motion/arm.h"
#include "motion/frames.h"
#include "options.h"
#include "programs/files.h"
#include "programs/program.h"
#include "push/push.h"
#include "wire/client.h"
#include "wire/command_table.h"

namespace sim {

class InverseKinematics;

// Faults that a client injects.
struct Faults {
    std::set<std::string> silent_on;  // requests ignored
    std::set<std::string> refuse_on;  // actions refused
    int delay_ms = 0;                 // before each message is sent
    TransferFault transfer;
};

// The limits of the tool in the units of the wire: thousandths of a metre and of a radian, per second and per second
// squared.
struct CartesianLimits {
    int line_speed = 250;
    int line_acc = 1600;
    int angular_speed = 600;
    int angular_acc = 4000;
};

// The frame in whose axes the tool is jogged.
enum class TeachFrame { kWork = 0, kTool = 1 };

enum class ForceAxes { kSensor, kWork, kTool };

// The state of the controller and the commands that act on it. It runs in one thread and knows no sockets. Simulated
// time passes only in `step`.
class Controller {
 public:
    explicit Controller(const Options& options);
    ~Controller();
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;

    static constexpr int kStepMs = 5;

    // Executes one request. A malformed one causes at most a line on standard error.
    void handle(std::string_view text, const std::shared_ptr<Client>& client);

    // Advances the simulated time by `kStepMs`.
    void step();
    int64_t milliseconds() const { return steps_ * kStepMs; }

    KDL::Frame flange_pose() const;     // in the arm's own base
    KDL::Frame mounted_flange() const;  // in the room, with the mounting angles
    KDL::Frame tool_pose() const;       // of the current tool in the current work frame

    // In the arm's own base, for these joints.
    KDL::Frame flange_at(const JointVector& joints) const;

    // The frames and the mounting in force.
    Surroundings surroundings() const;

    // The joints near `seed` and within their limits that put the tool at this pose in the work frame; nothing if there
    // are none. Uses the frames in force or the given ones.
    std::optional<JointVector> joints_at(const KDL::Frame& tool, const JointVector& seed) const;
    std::optional<JointVector> joints_at(const KDL::Frame& tool, const JointVector& seed,
                                         const Surroundings& around) const;

    // The wrench on the sensor without that of the load: at the flange in the flange's axes, or at the tool in the axes
    // of the work frame or of the tool. A one-axis sensor measures its axis only.
    KDL::Wrench felt(ForceAxes axes) const;

    // False when the arm moves and holds a force in other axes.
    bool hold_force(const HoldOrder& order);

    const CommandTable& commands() const { return commands_; }

    Arm arm;
    Devices devices;
    DragTeach drag{arm};
    ForceSensor sensor;
    Wall wall;
    ForceHold hold;
    FrameStore tools{"Arm_Tip"};
    FrameStore works{"Base"};
    Frame payload;                    // in force; its pose is not used
    std::array<double, 3> install{};  // mounting rx, ry, rz in degrees
    JointVector init_pose;
    CartesianLimits tool_limits;
    TeachFrame teach_frame = TeachFrame::kWork;
    ModbusMaster modbus;
    PushSettings push;
    Files files;
    Programs programs;
    Faults faults;
    int64_t runtime_start = 0;  // simulated milliseconds

 private:
    void carry_out(const Command& command, Call& call);
    JointVector yielded(const JointVector& ordered);
    bool settle_hold();
    void step_hold(double seconds);
    void measure_force();
    KDL::Frame mounting() const;

    CommandTable commands_;
    mutable KDL::ChainFkSolverPos_recursive solver_;
    std::unique_ptr<InverseKinematics> inverse_;
    int64_t steps_ = 0;
};

}  // namespace sim
