/* What an arm holds, carries and is carried by: gripper, hand, force sensor, drag teaching, lift. C++17, header only.
 */
#ifndef ZK_TOOLS_HPP
#define ZK_TOOLS_HPP

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>

#include "zk/attached_axes.h"
#include "zk/call.hpp"
#include "zk/drag_teach.h"
#include "zk/file_transfer.h"
#include "zk/force_control.h"
#include "zk/gripper_and_hand.h"

namespace zk {
inline namespace ZK_RESULT_NAMESPACE {

/* How a gripper closes, in the gripper's own units, and how long to wait for it. */
struct Grip {
    int speed = 500;
    int force = 200;
    std::chrono::milliseconds patience = std::chrono::seconds(10);
};

/* arm.gripper(). What moves waits for the gripper's report: ZK_TIMEOUT after the patience, in whole seconds. */
class Gripper {
 public:
    explicit Gripper(ArmSocket arm) : arm_(arm) {}

    /* Closes until it grips with the force, or is closed. */
    [[nodiscard]] Result<void> pick(const Grip& grip = {}) const {
        return call<Set_Gripper_Pick>(arm_, grip.speed, grip.force, true, seconds(grip));
    }
    /* The same, and keeps the force. */
    [[nodiscard]] Result<void> hold(const Grip& grip = {}) const {
        return call<Set_Gripper_Pick_On>(arm_, grip.speed, grip.force, true, seconds(grip));
    }
    /* Opens. The force does not matter. */
    [[nodiscard]] Result<void> release(const Grip& grip = {}) const {
        return call<Set_Gripper_Release>(arm_, grip.speed, true, seconds(grip));
    }
    /* Goes to an opening, in the gripper's own unit. */
    [[nodiscard]] Result<void> move_to(int opening,
                                       std::chrono::milliseconds patience = std::chrono::seconds(10)) const {
        return call<Set_Gripper_Position>(arm_, opening, true, seconds({0, 0, patience}));
    }
    /* Sets the range of openings in use. */
    [[nodiscard]] Result<void> set_range(int min, int max) const {
        return call<Set_Gripper_Route>(arm_, min, max, true);
    }

    [[nodiscard]] Result<GripperState> state() const { return detail::fetch<Get_Gripper_State, GripperState>(arm_); }
    /* The opening, in the gripper's own unit: above 0 after a pick when there is something between the fingers. */
    [[nodiscard]] Result<int> position() const {
        GripperState state{};
        return detail::then(call<Get_Gripper_State>(arm_, &state), [&] { return int{state.actpos}; });
    }

 private:
    static std::int64_t seconds(const Grip& grip) {
        return std::chrono::ceil<std::chrono::seconds>(grip.patience).count();
    }
    ArmSocket arm_;
};

/* arm.hand(): six fingers, in the hand's own units. */
class Hand {
 public:
    using Fingers = std::array<std::int32_t, 6>;

    explicit Hand(ArmSocket arm) : arm_(arm) {}

    /* Brings it into a posture, runs a sequence, by their numbers in the hand; waits for its report. */
    [[nodiscard]] Result<void> take_posture(int number) const { return call<Set_Hand_Posture>(arm_, number, true); }
    [[nodiscard]] Result<void> run_sequence(int number) const { return call<Set_Hand_Seq>(arm_, number, true); }

    /* Sends the angles of the fingers; does not wait for their arrival. */
    [[nodiscard]] Result<void> set_angles(const Fingers& angles) const {
        return call<Set_Hand_Angle>(arm_, angles, true);
    }

    /* Stream angles and positions, at the rate of the caller's own loop. */
    [[nodiscard]] Result<void> stream_angles(const Fingers& angles) const {
        return call<Set_Hand_Follow_Angle>(arm_, angles, false);
    }
    [[nodiscard]] Result<void> stream_positions(const Fingers& positions) const {
        return call<Set_Hand_Follow_Pos>(arm_, positions, false);
    }

    [[nodiscard]] Result<void> set_speed(int speed) const { return call<Set_Hand_Speed>(arm_, speed, true); }
    [[nodiscard]] Result<void> set_force(int force) const { return call<Set_Hand_Force>(arm_, force, true); }

 private:
    ArmSocket arm_;
};

/* Forces x, y, z in newtons, moments x, y, z in newton metres. */
using Forces = std::array<float, 6>;

/* What the six-axis sensor measures; the last three are without the payload. */
struct ForceReading {
    Forces measured, net, net_in_work_frame, net_in_tool_frame;
};

/* A force to hold. */
struct ForceHold {
    ZK_ForceDirection direction = ZK_FORCE_Z;
    double newtons = 0; /* newton metres about an axis; sent in whole numbers */
    ZK_ForceFrame frame = ZK_FORCE_IN_WORK_FRAME;
    ZK_ForceSensor sensor = ZK_SENSOR_SIX_AXIS;
};

/* arm.force(). */
class ForceControl {
 public:
    explicit ForceControl(ArmSocket arm) : arm_(arm) {}

    /* Reads the six-axis sensor. */
    [[nodiscard]] Result<ForceReading> read() const {
        ForceReading r{};
        return detail::then(call<Get_Force_Data>(arm_, r.measured, r.net, r.net_in_work_frame, r.net_in_tool_frame),
                            [&] { return r; });
    }
    /* Reads the one-axis sensor, without the payload, in newtons. */
    [[nodiscard]] Result<double> read_one_axis() const {
        float measured = 0, net = 0, work = 0, tool = 0;
        return detail::then(call<Get_Fz>(arm_, &measured, &net, &work, &tool),
                            [&] { return static_cast<double>(net); });
    }
    /* Takes the present reading of the six-axis sensor as zero. */
    [[nodiscard]] Result<void> zero() const { return call<Clear_Force_Data>(arm_, true); }

    /* Holds a force until release(). */
    [[nodiscard]] Result<void> hold(const ForceHold& hold) const {
        return call<Set_Force_Postion>(arm_, hold.sensor, hold.frame, hold.direction, detail::rounded(hold.newtons),
                                       true);
    }
    [[nodiscard]] Result<void> release() const { return call<Stop_Force_Postion>(arm_, true); }

    /* Calibrates the six-axis sensor. The arm moves: keep clear. */
    [[nodiscard]] Result<void> calibrate() const { return call<Set_Force_Sensor>(arm_); }

 private:
    ArmSocket arm_;
};

/* arm.drag(): guiding the arm by hand, and replaying the way. */
class DragTeaching {
 public:
    explicit DragTeaching(ArmSocket arm) : arm_(arm) {}

    /* From now on the arm yields, and the controller records its way until stop(). */
    [[nodiscard]] Result<void> start() const { return call<Start_Drag_Teach>(arm_, true); }
    [[nodiscard]] Result<void> stop() const { return call<Stop_Drag_Teach>(arm_, true); }

    /* Moves to the start of the recording, replays it; both wait for the end. */
    [[nodiscard]] Result<void> go_to_start() const { return call<Drag_Trajectory_Origin>(arm_, true); }
    [[nodiscard]] Result<void> replay() const { return call<Run_Drag_Trajectory>(arm_, true); }

    /* Of the replay, from another thread. */
    [[nodiscard]] Result<void> pause() const { return call<Pause_Drag_Trajectory>(arm_, true); }
    [[nodiscard]] Result<void> resume() const { return call<Continue_Drag_Trajectory>(arm_, true); }
    [[nodiscard]] Result<void> stop_replay() const { return call<Stop_Drag_Trajectory>(arm_, true); }

    /* Saves the recording to a local file, a point a line, and returns how many points there are. They arrive after the
     * call has returned: see Save_Trajectory. */
    [[nodiscard]] Result<int> save(const std::string& path) const {
        return detail::fetch<Save_Trajectory, std::int32_t>(arm_, path);
    }

 private:
    ArmSocket arm_;
};

/* Where the lift is. */
struct LiftState {
    Length height;
    int current = 0;
    int error = 0;
    bool moving = false;
};

/* arm.lift(): the column that carries the arm. */
class Lift {
 public:
    explicit Lift(ArmSocket arm) : arm_(arm) {}

    /* Moves to a height, in whole millimetres, and waits for the lift's report. */
    [[nodiscard]] Result<void> move_to(Length height, Percent speed) const {
        return call<Set_Lift_Height>(arm_, detail::rounded(height.millimetres()), speed, true);
    }
    /* Runs at a speed, below 0 downward, until it is set to 0. */
    [[nodiscard]] Result<void> run(Percent speed) const { return call<Set_Lift_Speed>(arm_, speed); }

    [[nodiscard]] Result<LiftState> state() const {
        std::int32_t height = 0, current = 0, mode = 0;
        std::uint16_t error = 0;
        return detail::then(call<Get_Lift_State>(arm_, &height, &current, &error, &mode), [&] {
            return LiftState{millimetres(height), current, error, mode != 0};
        });
    }

 private:
    ArmSocket arm_;
};

}  // namespace ZK_RESULT_NAMESPACE
}  // namespace zk

#endif
