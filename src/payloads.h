// What the parsers of replies fill: the fields of each record, in the order of its parser's parameters.
#pragma once

#include <tuple>

#include "connection/routing.h"
#include "zk/replies/arm_limits.h"
#include "zk/replies/arm_state.h"
#include "zk/replies/attached_axes.h"
#include "zk/replies/drag_teach.h"
#include "zk/replies/file_transfer.h"
#include "zk/replies/force_control.h"
#include "zk/replies/frames.h"
#include "zk/replies/gripper_and_hand.h"
#include "zk/replies/io.h"
#include "zk/replies/joint_configuration.h"
#include "zk/replies/modbus.h"
#include "zk/replies/motion.h"
#include "zk/replies/programs.h"
#include "zk/replies/realtime.h"
#include "zk/replies/safety_geometry.h"
#include "zk/replies/system.h"
#include "zk/replies/trajectory.h"

namespace zk {

template <>
constexpr auto kPayload<GlobalWaypointReply> = std::tuple{&GlobalWaypointReply::waypoint};
template <>
constexpr auto kPayload<GlobalWaypointListReply> =
    std::tuple{&GlobalWaypointListReply::received, &GlobalWaypointListReply::waypoints};
template <>
constexpr auto kPayload<JointReply> = std::tuple{&JointReply::value};
template <>
constexpr auto kPayload<IntReply> = std::tuple{&IntReply::value};
template <>
constexpr auto kPayload<RealtimePushReply> = std::tuple{&RealtimePushReply::config};
template <>
constexpr auto kPayload<ExpandStateReply> = std::tuple{&ExpandStateReply::pos, &ExpandStateReply::err_flag,
                                                       &ExpandStateReply::current, &ExpandStateReply::mode};
template <>
constexpr auto kPayload<ExpandConfigReply> =
    std::tuple{&ExpandConfigReply::rpm_max, &ExpandConfigReply::rpm_acc, &ExpandConfigReply::conversin_coe,
               &ExpandConfigReply::limit_min, &ExpandConfigReply::limit_max};
template <>
constexpr auto kPayload<JointIntReply> = std::tuple{&JointIntReply::value};
template <>
constexpr auto kPayload<JointErrorReply> = std::tuple{&JointErrorReply::err_flag, &JointErrorReply::brake_state};
template <>
constexpr auto kPayload<FloatReply> = std::tuple{&FloatReply::value};
template <>
constexpr auto kPayload<DhDataReply> = std::tuple{&DhDataReply::data};
template <>
constexpr auto kPayload<FrameReply> = std::tuple{&FrameReply::frame};
template <>
constexpr auto kPayload<FrameNamesReply> = std::tuple{&FrameNamesReply::name, &FrameNamesReply::names};
template <>
constexpr auto kPayload<GivenWorkFrameReply> = std::tuple{&GivenWorkFrameReply::frame_name, &GivenWorkFrameReply::pose};
template <>
constexpr auto kPayload<ArmStateReply> =
    std::tuple{&ArmStateReply::joint, &ArmStateReply::pose, &ArmStateReply::arm_err, &ArmStateReply::sys_err};
template <>
constexpr auto kPayload<ArmAllStateReply> = std::tuple{&ArmAllStateReply::state};
template <>
constexpr auto kPayload<TrajectoryReply> = std::tuple{&TrajectoryReply::type, &TrajectoryReply::data};
template <>
constexpr auto kPayload<MoveAcknowledgement> = std::tuple{&MoveAcknowledgement::move_type};
template <>
constexpr auto kPayload<ControllerStateReply> =
    std::tuple{&ControllerStateReply::voltage, &ControllerStateReply::current, &ControllerStateReply::temperature,
               &ControllerStateReply::err_flag};
template <>
constexpr auto kPayload<SoftwareVersionReply> =
    std::tuple{&SoftwareVersionReply::plan, &SoftwareVersionReply::ctrl, &SoftwareVersionReply::kernel1,
               &SoftwareVersionReply::kernel2, &SoftwareVersionReply::product};
template <>
constexpr auto kPayload<SystemRuntimeReply> =
    std::tuple{&SystemRuntimeReply::known, &SystemRuntimeReply::day, &SystemRuntimeReply::hour,
               &SystemRuntimeReply::min, &SystemRuntimeReply::sec};
template <>
constexpr auto kPayload<JointOdomReply> = std::tuple{&JointOdomReply::known, &JointOdomReply::value};
template <>
constexpr auto kPayload<IoBankReply> = std::tuple{&IoBankReply::digital, &IoBankReply::analogue};
template <>
constexpr auto kPayload<ToolIoReply> = std::tuple{&ToolIoReply::mode, &ToolIoReply::state};
template <>
constexpr auto kPayload<DragOriginReply> = std::tuple{&DragOriginReply::device};
template <>
constexpr auto kPayload<ForceDataReply> =
    std::tuple{&ForceDataReply::force_data, &ForceDataReply::zero_force_data, &ForceDataReply::work_zero_force_data,
               &ForceDataReply::tool_zero_force_data};
template <>
constexpr auto kPayload<FzReply> =
    std::tuple{&FzReply::fz, &FzReply::zero_fz, &FzReply::work_zero_fz, &FzReply::tool_zero_fz};
template <>
constexpr auto kPayload<ModbusValuesReply> = std::tuple{&ModbusValuesReply::value, &ModbusValuesReply::values};
template <>
constexpr auto kPayload<LiftStateReply> =
    std::tuple{&LiftStateReply::height, &LiftStateReply::current, &LiftStateReply::err_flag, &LiftStateReply::mode};
template <>
constexpr auto kPayload<IoStateReply> = std::tuple{&IoStateReply::state, &IoStateReply::mode};
template <>
constexpr auto kPayload<ProgramListReply> = std::tuple{&ProgramListReply::received, &ProgramListReply::programs};
template <>
constexpr auto kPayload<ProgramRunStateReply> = std::tuple{&ProgramRunStateReply::state};
template <>
constexpr auto kPayload<HighEthernetReply> =
    std::tuple{&HighEthernetReply::ip, &HighEthernetReply::mask, &HighEthernetReply::gateway, &HighEthernetReply::mac};
template <>
constexpr auto kPayload<WiredNetReply> = std::tuple{&WiredNetReply::ip, &WiredNetReply::mask, &WiredNetReply::mac};
template <>
constexpr auto kPayload<WifiNetReply> = std::tuple{&WifiNetReply::net};
template <>
constexpr auto kPayload<Rs485Reply> = std::tuple{&Rs485Reply::mode, &Rs485Reply::baudrate, &Rs485Reply::timeout};
template <>
constexpr auto kPayload<FenceEnableReply> =
    std::tuple{&FenceEnableReply::enable, &FenceEnableReply::in_out_side, &FenceEnableReply::effective_region};
template <>
constexpr auto kPayload<FenceConfigReply> = std::tuple{&FenceConfigReply::fence};
template <>
constexpr auto kPayload<FenceNamesReply> = std::tuple{&FenceNamesReply::name, &FenceNamesReply::names};
template <>
constexpr auto kPayload<FenceListReply> = std::tuple{&FenceListReply::fence, &FenceListReply::fences};
template <>
constexpr auto kPayload<GripperStateReply> = std::tuple{&GripperStateReply::state};
template <>
constexpr auto kPayload<ArmSoftwareInfoReply> = std::tuple{&ArmSoftwareInfoReply::info};
template <>
constexpr auto kPayload<ToolEnvelopeReply> = std::tuple{&ToolEnvelopeReply::envelope};
template <>
constexpr auto kPayload<InstallPoseReply> =
    std::tuple{&InstallPoseReply::x, &InstallPoseReply::y, &InstallPoseReply::z};

}  // namespace zk
