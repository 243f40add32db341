#pragma once

#include <cstdint>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "arm.h"
#include "client.h"
#include "command_table.h"
#include "devices.h"
#include "drag_teach.h"
#include "files.h"
#include "force_hold.h"
#include "force_sensor.h"
#include "frames.h"
#include "modbus.h"
#include "options.h"
#include "program.h"
#include "push.h"

namespace sim {

class InverseKinematics;

// The faults on demand.
struct Faults {
    std::set<std::string> silent_on;  // requests ignored
    std::set<std::string> refuse_on;  // actions refused
    int delay_ms = 0;                 // between a message and its sending
    TransferFault transfer;
};

// The limits of the tool as the wire has them: thousandths of a metre and of a radian, per second and per second
// squared.
struct CartesianLimits {
    int line_speed = 250;
    int line_acc = 1600;
    int angular_speed = 600;
    int angular_acc = 4000;
};

// Whose axes the tool is jogged along and about.
enum class TeachFrame { kWork = 0, kTool = 1 };

enum class ForceAxes { kSensor, kWork, kTool };

// Everything that the controller knows, and the commands that act on it. Runs in one thread, knows no sockets, and
// moves only when `step` tells it that time has passed.
class Controller {
 public:
    explicit Controller(const Options& options);
    ~Controller();
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;

    static constexpr int kStepMs = 5;

    // Carries out one request. Whatever it holds, the worst that comes of it is a note.
    void handle(std::string_view text, const std::shared_ptr<Client>& client);

    // Lets `kStepMs` of simulated time pass.
    void step();
    int64_t milliseconds() const { return steps_ * kStepMs; }

    KDL::Frame flange_pose() const;     // in the arm's own base
    KDL::Frame mounted_flange() const;  // in the room, with the mounting angles
    KDL::Frame tool_pose() const;       // of the current tool in the current work frame

    // In the arm's own base, were these its joints.
    KDL::Frame flange_at(const JointVector& joints) const;

    // The frames and the mounting in force.
    Surroundings surroundings() const;

    // The joints near `seed`, within their limits, at which the tool has this pose in the work frame; nothing where the
    // arm cannot have it. With the frames in force, or with given ones.
    std::optional<JointVector> joints_at(const KDL::Frame& tool, const JointVector& seed) const;
    std::optional<JointVector> joints_at(const KDL::Frame& tool, const JointVector& seed,
                                         const Surroundings& around) const;

    // What the sensor feels beyond its load: at the flange in its own axes, or at the tool in the axes of the work
    // frame or of the tool. A one-axis sensor feels nothing across its axis.
    KDL::Wrench felt(ForceAxes axes) const;

    // False when the arm, in motion, holds a force in other axes.
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
    Frame payload;                    // in force; its pose means nothing
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
