/*
 * ZK Base: the client library for six- and seven-axis robot arms. This is the one header that an application needs.
 *
 *     ZK_API_Init(65, NULL);
 *     ArmSocket arm = Arm_Socket_Start("192.168.1.18", 8080, 5000);
 *     float target[6] = {0, 20, 70, 0, 90, 0};
 *     int status = Movej_Cmd(arm, target, 20, 0, 0, true);
 *     Arm_Socket_Close(arm);
 *
 * Every command returns a status, 0 for success; zk/status.h lists them and says what the forms of a command share.
 * ZK_Status_Text names a status, ZK_Explain says what to do about it. Joint angles are degrees, lengths metres, Euler
 * angles of a pose radians. One blocking call per connection at a time.
 */
#ifndef ZK_BASE_H
#define ZK_BASE_H

/* Starting, connecting, watching */
#include "zk/connection.h"
#include "zk/control.h"
#include "zk/realtime.h"
#include "zk/status.h"

/* Commands to the arm */
#include "zk/arm_limits.h"
#include "zk/arm_state.h"
#include "zk/frames.h"
#include "zk/joint_configuration.h"
#include "zk/motion.h"
#include "zk/streaming.h"
#include "zk/system.h"
#include "zk/teach.h"
#include "zk/trajectory.h"

/* Hands, tools and force */
#include "zk/attached_axes.h"
#include "zk/drag_teach.h"
#include "zk/force_control.h"
#include "zk/force_position.h"
#include "zk/gripper_and_hand.h"
#include "zk/io.h"
#include "zk/modbus.h"

/* Files, programs, safety */
#include "zk/file_transfer.h"
#include "zk/programs.h"
#include "zk/safety_geometry.h"

/* The local model and its mathematics, without a wire */
#include "zk/algorithm.h"
#include "zk/arm_model.h"
#include "zk/checked_inverse.h"
#include "zk/dense_matrix.h"
#include "zk/inverse_kinematics.h"
#include "zk/kinematics.h"
#include "zk/model.h"
#include "zk/numeric.h"
#include "zk/pose.h"
#include "zk/seven_axis.h"

/* The library's own machinery */
#include "zk/mailboxes.h"
#include "zk/queue.h"

/* Replies: the mailboxes that hold them, and the parsers that read them */
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
#include "zk/replies/pending.h"
#include "zk/replies/programs.h"
#include "zk/replies/realtime.h"
#include "zk/replies/safety_geometry.h"
#include "zk/replies/second_parsers.h"
#include "zk/replies/system.h"
#include "zk/replies/trajectory.h"

#endif
