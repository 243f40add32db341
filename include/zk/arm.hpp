/*
 * Arms for C++ programs: connections that close themselves, motions with handles, units, errors as values or as
 * exceptions. C++17, header only, over the C interface; docs/guides/cpp.md shows how to come from one to the other.
 *
 *     #include <zk/arm.hpp>
 *     using namespace zk::literals;
 *
 *     zk::Arm arm("192.168.1.18");
 *     arm.move_joints({0_deg, 20_deg, 70_deg, 0_deg, 90_deg, 0_deg}, {20_percent}).wait().value();
 *     zk::Pose here = arm.pose().value();
 *     arm.move_line(here.moved(0_mm, 0_mm, -50_mm)).wait().value();
 *     arm.gripper().pick().value();
 *
 * Every command of the interface, wrapped or not: arm.call<Set_Arm_Power>(true, true), see zk/call.hpp.
 *
 * Do not write `using namespace zk`: the C interface has a Pose and a Position of its own.
 */
#ifndef ZK_ARM_HPP
#define ZK_ARM_HPP

#include <chrono>
#include <cstdint>
#include <string>
#include <utility>

#include "zk/arm_limits.h"
#include "zk/arm_state.h"
#include "zk/call.hpp"
#include "zk/callbacks.hpp"
#include "zk/control.h"
#include "zk/force_position.h"
#include "zk/frames.hpp"
#include "zk/geometry.hpp"
#include "zk/joint_configuration.h"
#include "zk/model.hpp"
#include "zk/motion.h"
#include "zk/move.hpp"
#include "zk/programs.hpp"
#include "zk/result.hpp"
#include "zk/safety_geometry.h"
#include "zk/signals.hpp"
#include "zk/simulator.hpp"
#include "zk/state_stream.hpp"
#include "zk/streaming.h"
#include "zk/system.h"
#include "zk/teach.h"
#include "zk/tools.hpp"
#include "zk/trajectory.h"
#include "zk/units.hpp"

namespace zk {
inline namespace ZK_RESULT_NAMESPACE {

/* How to connect. */
struct ConnectOptions {
    std::chrono::milliseconds timeout = std::chrono::seconds(5); /* over all of it */
    int arm_mode = 0;                                            /* 0: the controller's own */
    std::chrono::milliseconds heartbeat{};                       /* finds a silent controller; 0: none */
    bool stop_at_exit = false;                                   /* stop the arm when the program ends */
    bool keep_model = false; /* leave the process-wide model of zk/model.h as it is */
};

/* How to move. */
struct MoveOptions {
    Percent speed = percent(20); /* 1 to 100 % of the limits */
    Percent blend{};             /* 0 to 100 %: how early the next joined motion begins */
    bool joined = false;         /* waits for the next motion, and runs with it as one */
};

/* Where an arm is, as its controller answers. */
struct ArmState {
    Joints joints;
    Pose pose; /* the tool in the work frame */
    std::uint16_t arm_error = 0, system_error = 0;
};

/*
 * A connection to a controller, which is closed at the end of its life. It can be moved. Several threads may use it, as
 * docs/threads.md says for connections of ZK_Connect. The families (gripper() and so on) may outlive it: their calls
 * then fail with ZK_NOT_CONNECTED or ZK_STALE_HANDLE.
 */
class Arm {
 public:
    /* Connects. Throws BadResult when that fails. host: name or address. */
    explicit Arm(const std::string& host, int port = 8080, const ConnectOptions& options = {})
        : Arm(connect(host, port, options).value()) {}

    /* The same without an exception. */
    [[nodiscard]] static Result<Arm> connect(const std::string& host, int port = 8080,
                                             const ConnectOptions& options = {}) {
        ZK_ConnectOptions c{};
        c.timeout_ms = milliseconds_of(options.timeout);
        c.arm_mode = options.arm_mode;
        c.heartbeat_ms = milliseconds_of(options.heartbeat);
        c.flags = (options.stop_at_exit ? std::uint32_t{ZK_STOP_AT_EXIT} : 0U) |
                  (options.keep_model ? std::uint32_t{ZK_KEEP_MODEL} : 0U);
        Arm arm;
        return detail::then(zk::call<ZK_Connect>(host, port, &c, &arm.handle_), [&] {
            ZK_ConnectionRecord record{};
            ZK_Connection(arm.handle_, &record);
            arm.joint_count_ = static_cast<std::size_t>(record.joint_count);
            return std::move(arm);
        });
    }

    Arm(Arm&& other) noexcept
        : handle_(std::exchange(other.handle_, 0)), joint_count_(std::exchange(other.joint_count_, 0)) {}
    Arm& operator=(Arm&& other) noexcept {
        std::swap(handle_, other.handle_);
        std::swap(joint_count_, other.joint_count_);
        return *this;
    }
    Arm(const Arm&) = delete;
    Arm& operator=(const Arm&) = delete;
    ~Arm() { close(); }

    /* Ends the calls that wait on it, and the connection. The arm moves on. */
    void close() {
        if (handle_ != 0) ZK_Close(std::exchange(handle_, 0));
    }

    /* For the calls of the C interface. */
    ArmSocket handle() const { return handle_; }
    /* 6 or 7. */
    std::size_t joint_count() const { return joint_count_; }

    /* Calls any command of the interface on this arm: call<Movej_Cmd>(joints, 20, 0, 0, true). See zk/call.hpp. Joints
     * of an arm with another number of them are an error. */
    template <auto kCommand, class... Arguments>
    [[nodiscard]] auto call(Arguments&&... arguments) const {
        using Answer = decltype(zk::call<kCommand>(handle_, std::forward<Arguments>(arguments)...));
        if constexpr (std::is_same_v<Answer, Result<void>>) {
            std::size_t joints = joint_count_;
            (count_joints(arguments, joints), ...);
            if (joints != joint_count_ && handle_ != 0) {
                return Answer(Unexpected(
                    make_error(ZK_BAD_ARGUMENT, detail::kName<kCommand>.data(),
                               std::to_string(joints) + " joints for an arm of " + std::to_string(joint_count_))));
            }
        }
        return zk::call<kCommand>(handle_, std::forward<Arguments>(arguments)...);
    }

    /* ------------------------------------------------------------------------------------------------ Motion -- */

    /* Start a motion and return its handle: of all joints to a target; of the tool to a pose of the work frame along a
     * line, with all joints arriving together, along a spline through successive poses, on a circle through a pose. */
    Move move_joints(const Joints& target, const MoveOptions& options = {}) const {
        return start<Movej_Cmd_NonBlock>(options, target);
    }
    Move move_line(const Pose& target, const MoveOptions& options = {}) const {
        return start<Movel_Cmd_NonBlock>(options, target);
    }
    Move move_pose(const Pose& target, const MoveOptions& options = {}) const {
        return start<Movej_P_Cmd_NonBlock>(options, target);
    }
    Move move_spline(const Pose& target, const MoveOptions& options = {}) const {
        return start<Moves_Cmd_NonBlock>(options, target);
    }
    /* whole_turns: in addition, before the target. */
    Move move_circle(const Pose& via, const Pose& target, const MoveOptions& options = {}, int whole_turns = 0) const {
        if (const std::string fault = fault_of(options); !fault.empty()) return refused<Movec_Cmd_NonBlock>(fault);
        return {
            handle_,
            call<Movec_Cmd_NonBlock>(via, target, options.speed, options.blend, whole_turns, options.joined ? 1 : 0),
            options.joined};
    }

    /* Streams a set-point at the rate of the caller's own loop; does not wait. smooth: within the acceleration limits
     * too. */
    [[nodiscard]] Result<void> stream_joints(const Joints& target, bool smooth = false) const {
        return call<Movej_CANFD>(target, smooth ? 0 : 1, 0);
    }
    [[nodiscard]] Result<void> stream_pose(const Pose& target, bool smooth = false) const {
        return call<Movep_CANFD>(smooth ? 0 : 1, target);
    }

    /* Jogs a joint, counted from 1, until stop_jog(). */
    [[nodiscard]] Result<void> jog_joint(int joint, bool forward, Percent speed) const {
        return call<Joint_Teach_Cmd>(joint, forward ? 1 : 0, speed, true);
    }
    [[nodiscard]] Result<void> stop_jog() const { return call<Teach_Stop_Cmd>(true); }

    /* Stops the arm ahead of all that is queued, which is dropped; from any thread. kind: ZK_SLOW_STOP,
     * ZK_EMERGENCY_STOP and so on. */
    [[nodiscard]] Result<void> stop(int kind = ZK_STOP | ZK_DROP_QUEUED) const { return call<ZK_Stop>(kind); }
    /* Halts on the path; goes on. */
    [[nodiscard]] Result<void> pause() const { return call<ZK_Stop>(ZK_PAUSE); }
    [[nodiscard]] Result<void> resume() const { return call<Move_Continue_Cmd>(true); }

    /* Waits until the controller reports no motion, whoever started it. */
    [[nodiscard]] Result<void> wait_idle(std::chrono::milliseconds time) const {
        return call<ZK_Wait_Idle>(milliseconds_of(time));
    }
    /* Ends the blocking calls of all threads on this arm with ZK_CANCELLED. */
    [[nodiscard]] Result<void> cancel() const { return call<ZK_Cancel>(); }
    /* Bounds every blocking call from now on: of this thread, or with ZK_DeadlineFlag flags of all, or with a stop. 0:
     * no bound. */
    [[nodiscard]] Result<void> set_deadline(std::chrono::milliseconds time, std::uint32_t flags = 0) const {
        return call<ZK_Set_Deadline>(milliseconds_of(time), flags);
    }

    /* ------------------------------------------------------------------------------------------------- State -- */

    /* Ask the controller. */
    [[nodiscard]] Result<ArmState> state() const {
        float degree[Joints::kMost] = {};
        ::Pose pose{};
        ArmState now;
        return detail::then(call<Get_Current_Arm_State>(&degree[0], &pose, &now.arm_error, &now.system_error), [&] {
            now.joints = Joints::from_c(degree, joint_count_);
            now.pose = Pose(pose);
            return now;
        });
    }
    [[nodiscard]] Result<Joints> joints() const {
        float degree[Joints::kMost] = {};
        return detail::then(call<Get_Joint_Degree>(&degree[0]), [&] { return Joints::from_c(degree, joint_count_); });
    }
    [[nodiscard]] Result<Pose> pose() const {
        Result<ArmState> now = state();
        return now ? Result<Pose>(now->pose) : Unexpected(std::move(now).error());
    }
    /* Temperatures, voltages, currents and errors of the joints. */
    [[nodiscard]] Result<ArmAllState> measurements() const {
        return detail::fetch<Get_Arm_All_State, ArmAllState>(handle_);
    }

    /* The states that the controller pushes, which take no request. */
    StateStream states() const { return StateStream(handle_); }

    /* What is known of the connection: address, traffic, round trips. */
    [[nodiscard]] Result<ZK_ConnectionRecord> connection() const {
        return detail::fetch<ZK_Connection, ZK_ConnectionRecord>(handle_);
    }
    /* A new model of this arm, as its controller described it at the start. */
    [[nodiscard]] Result<Model> model() const { return Model::adopt(ZK_Arm_Model(handle_), "ZK_Arm_Model"); }
    /* Model and versions of the software. */
    [[nodiscard]] Result<ArmSoftwareInfo> software() const {
        return detail::fetch<Get_Arm_Software_Info, ArmSoftwareInfo>(handle_);
    }

    [[nodiscard]] Result<void> set_power(bool on) const { return call<Set_Arm_Power>(on ? 1 : 0, true); }
    [[nodiscard]] Result<bool> is_powered() const {
        std::int32_t on = 0;
        return detail::then(call<Get_Arm_Power_State>(&on), [&] { return on != 0; });
    }
    /* Clears the error of the system. */
    [[nodiscard]] Result<void> clear_error() const { return call<Clear_System_Err>(true); }

    /* ---------------------------------------------------------------------------------------------- Families -- */

    Gripper gripper() const { return Gripper(handle_); }
    Hand hand() const { return Hand(handle_); }
    Lift lift() const { return Lift(handle_); }
    ForceControl force() const { return ForceControl(handle_); }
    DragTeaching drag() const { return DragTeaching(handle_); }
    Io io() const { return Io(handle_); }
    /* port: a serial port of the controller, counted from 0. */
    Modbus modbus(int port = 0) const { return {handle_, port}; }
    Programs programs() const { return Programs(handle_); }
    ToolFrames tool_frames() const { return ToolFrames(handle_); }
    WorkFrames work_frames() const { return WorkFrames(handle_); }

 private:
    Arm() = default;

    static void count_joints(const Joints& joints, std::size_t& count) { count = joints.size(); }
    template <class Other>
    static void count_joints(const Other&, std::size_t&) {}

    static std::string fault_of(const MoveOptions& options) {
        if (!(options.speed >= percent(1) && options.speed <= percent(100))) return "the speed is not 1 to 100 percent";
        if (!(options.blend >= percent(0) && options.blend <= percent(100))) return "the blend is not 0 to 100 percent";
        return {};
    }
    template <auto kMove>
    Move refused(std::string text) const {
        return {handle_, Unexpected(make_error(ZK_BAD_ARGUMENT, detail::kName<kMove>.data(), std::move(text)))};
    }
    template <auto kMove, class Target>
    Move start(const MoveOptions& options, const Target& target) const {
        if (const std::string fault = fault_of(options); !fault.empty()) return refused<kMove>(fault);
        return {handle_, call<kMove>(target, options.speed, options.blend, options.joined ? 1 : 0), options.joined};
    }

    ArmSocket handle_ = 0;
    std::size_t joint_count_ = 0;
};

}  // namespace ZK_RESULT_NAMESPACE
}  // namespace zk

#endif
