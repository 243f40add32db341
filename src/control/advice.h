// What a code means, and what to do about it. ZK_Explain and docs/troubleshooting.md are made from this one table.
#pragma once

#include <cstddef>

#include "zk/control.h"
#include "zk/streaming.h"

namespace zk {

struct AdviceRow {
    int code;             // a status, a result of a set-point, or one of the words below
    const char* symptom;  // what a user sees
    ZK_Advice advice;
};

struct AdviceSection {
    const char* title;
    const AdviceRow* begin;
    const AdviceRow* end;
};

// No status and no result of a set-point.
constexpr int kArmWord = 1 << 16;
constexpr int kSystemWord = kArmWord + 1;

// clang-format off
inline constexpr AdviceRow kConnecting[] = {
    {ZK_UNKNOWN_HOST, "connecting by name fails",
     {"The host name has no address.", ZK_MEND_FIRST,
      "Check the spelling and the name service (getent hosts NAME), or connect to the address."}},
    {ZK_CONNECTION_REFUSED, "connecting fails at once",
     {"The host is there, but nothing listens on the port.", ZK_RETRY,
      "Wait until the controller has started, or correct the port."}},
    {ZK_NO_ROUTE, "connecting fails at once, or with a cable that is not plugged in",
     {"The system knows no way to the address, or forbids it.", ZK_MEND_FIRST,
      "Check the cable, this host's address and mask, and its firewall (ip route get ADDRESS)."}},
    {ZK_NO_ANSWER, "connecting fails after the time limit",
     {"No answer came within the time limit of the connection.", ZK_RETRY,
      "Check that the controller is on and that the address is its own; raise timeout_ms of the options."}},
    {ZK_NO_CONTROLLER, "something answers, but connecting fails",
     {"What answers is no controller of this family.", ZK_MEND_FIRST,
      "Correct the address and the port; ZK_Failure quotes what was received."}},
    {ZK_WRONG_JOINT_COUNT, "the controller answers, but connecting fails",
     {"The arm mode has another number of joints than the controller's arm.", ZK_MEND_FIRST,
      "Leave arm_mode of the options at 0, or set that of this arm."}},
    {ZK_TABLE_FULL, "connecting fails with many connections open, or with a tilted arm",
     {"All 20 connections are taken, or the mounting angles read back from the local model differ from those of the controller.",
      ZK_MEND_FIRST, "Close a connection that is not used; otherwise set the mounting angles by Set_Install_Pose."}},
    {ZK_NO_SOCKET, "connecting fails with many files open",
     {"The system has no socket left for the process.", ZK_MEND_FIRST,
      "Close descriptors that are not used, or raise the limit of open files (ulimit -n)."}},
    {ZK_NO_MEMORY, "connecting fails on a host that is short of memory",
     {"There is not enough memory, or no thread could be started.", ZK_MEND_FIRST, "Free memory, then call again."}},
    {ZK_NOT_RUNNING, "the liveness probe fails before the first connection",
     {"The library's threads do not run.", ZK_MEND_FIRST, "Call ZK_API_Init or ZK_Connect first."}},
};

inline constexpr AdviceRow kConnections[] = {
    {ZK_NOT_CONNECTED, "every call on a socket fails at once, or a wait ends early",
     {"The socket is no open connection: it was refused, or was closed during the call; or the controller does not answer.",
      ZK_MEND_FIRST, "Connect again by ZK_Connect, whose status names the reason when that fails."}},
    {ZK_LOST, "every call on a connection fails at once, or a wait ends early",
     {"The controller closed or reset the connection, or fell silent.", ZK_MEND_FIRST,
      "ZK_Close, then ZK_Connect. The arm may still move: look at it first."}},
    {ZK_STALE_HANDLE, "every call on a handle fails at once after a reconnect",
     {"The handle is that of a closed connection, or of none made by ZK_Connect.", ZK_MEND_FIRST,
      "Use the handle that the last ZK_Connect delivered."}},
    {ZK_SEND_FAILED, "a stop, a set-point or a file does not leave the host",
     {"The system did not take the bytes: the controller does not read, or has closed the connection.", ZK_RETRY,
      "Try again; when it stays so, close the connection and connect again."}},
};

inline constexpr AdviceRow kCalls[] = {
    {ZK_OK, "", {"The call succeeded.", ZK_GO_ON, ""}},
    {ZK_TIMEOUT, "a blocking call ends after seconds, though the arm may have done it",
     {"No reply came within the time limit. The controller may execute the command all the same, now or later.", ZK_MEND_FIRST,
      "Ask what the arm does by Get_Current_Trajectory before you repeat a command. A command without a reply has a non-blocking form."}},
    {ZK_CANCELLED, "a wait ends early after ZK_Cancel",
     {"ZK_Cancel ended the call. The arm goes on with what it does.", ZK_GO_ON, "ZK_Stop stops the arm."}},
    {ZK_DEADLINE, "a wait ends early, always after the same time",
     {"The deadline of ZK_Set_Deadline passed during the call. The arm goes on unless ZK_STOP_AT_DEADLINE was set.", ZK_MEND_FIRST,
      "Wait for the arm by ZK_Wait_Idle or stop it by ZK_Stop, then call again."}},
    {ZK_BUSY, "a call fails at once while another thread waits on the connection",
     {"A call of another thread on this connection excludes this one.", ZK_RETRY,
      "Call again when the other call has returned; docs/threads.md lists the pairs."}},
    {ZK_SENDING_FILE, "nearly every call fails at once during a transfer",
     {"A file is being sent to a controller.", ZK_RETRY, "Wait until the transfer has ended. ZK_Stop works meanwhile."}},
    {ZK_LIST_FULL, "calls of many threads fail at once",
     {"200 calls wait for replies that do not come.", ZK_RETRY,
      "Wait until some have returned; use the non-blocking form of commands without a reply."}},
};

inline constexpr AdviceRow kMoving[] = {
    {ZK_REFUSED, "a command does nothing, or a move ends before its target",
     {"The controller refused the command, or the motion ended before its target: the target is out of reach or beyond a limit, a value such as the speed is out of range, the arm is off or in error, or the motion was stopped.",
      ZK_MEND_FIRST,
      "Check the units: positions are metres, angles of poses radians, joints degrees. ZK_Model_Inverse says whether the target can be reached, and if not why; Get_Current_Arm_State reads the error words, Get_Arm_Power_State the power."}},
    {ZK_OTHER_DEVICE, "a blocking move ends while another device moves",
     {"The report that came is about another device.", ZK_MEND_FIRST,
      "Move one device of a controller at a time; wait until the motion has ended, then look where the device is."}},
    {ZK_NO_TRAJECTORY, "a blocking move fails, though the arm has moved",
     {"The arm is at rest, and no report of the end of the move came.", ZK_MEND_FIRST,
      "Compare Get_Joint_Degree with the target: the move may have ended there."}},
    {ZK_NO_SOLUTION, "a pose has no joints",
     {"No posture within the joint limits brings the tool to the pose.", ZK_MEND_FIRST,
      "ZK_Model_Inverse names the cause: out of reach, beyond limits, or singular."}},
    {kArmWord, "the arm stops and refuses to move",
     {"The controller reports an error of the arm and keeps it from moving. Its manual lists the numbers.", ZK_MUST_NOT,
      "Look at the arm and at the teach pendant, remove the cause, then call Clear_System_Err, and Set_Joint_Err_Clear for each joint whose word of Get_Joint_Err_Flag is not 0."}},
    {kSystemWord, "the arm refuses to move",
     {"The controller reports an error of its own and keeps the arm from moving. Its manual lists the numbers.", ZK_MUST_NOT,
      "Look at the teach pendant, remove the cause, then call Clear_System_Err."}},
};

inline constexpr AdviceRow kStreaming[] = {
    {ZK_SET_POINT_MALFORMED, "the arm does not follow the stream",
     {"The set-point lacks a key, or has a wrong type or number of values.", ZK_MEND_FIRST,
      "Stream one value for each joint of the connection; complete a queried pose by ZK_Complete_Pose."}},
    {ZK_SET_POINT_BEYOND_LIMIT, "the arm stops following at a limit",
     {"A joint of the set-point is beyond its limit.", ZK_MEND_FIRST,
      "Keep the set-points within the limits of Get_Joint_Min_Pos and Get_Joint_Max_Pos."}},
    {ZK_SET_POINT_TOO_FAR, "the arm does not follow the first set-point, or a jump",
     {"The set-point is too far from the current joints.", ZK_MEND_FIRST,
      "Begin at the current joints (Get_Joint_Degree), and take smaller steps."}},
    {ZK_SET_POINT_UNREACHABLE, "the arm stops following streamed poses",
     {"The pose of the set-point is out of reach.", ZK_MEND_FIRST,
      "Check the path by ZK_Model_Follow before you stream it."}},
    {ZK_SET_POINT_NOT_NOW, "the arm ignores the stream",
     {"The arm may not move: it is off, in error, has other moves to do, or was stopped.", ZK_RETRY,
      "Wait until the arm is idle; after a stop pause the stream for 100 ms; Get_Arm_Power_State reads the power."}},
};

inline constexpr AdviceRow kState[] = {
    {ZK_NO_STATE, "the stream has no values",
     {"No datagram of this arm has come: the controller sends none, sends them elsewhere, or their port is taken on this host.",
      ZK_MEND_FIRST,
      "Enable the stream by Set_Realtime_Push, with this host's address and a free port, then connect again."}},
    {ZK_STATE_TOO_OLD, "the stream's values stand still",
     {"The last datagram of this arm is older than asked for.", ZK_RETRY,
      "ZK_Connection says whether the controller is lost, Get_Realtime_Push how often it sends."}},
    {ZK_NO_STREAM, "the stream has no values (settled calls)",
     {"The listener could not be set up, or no datagram came in time.", ZK_MEND_FIRST,
      "Enable the stream by Set_Realtime_Push, with this host's address and a free port, then connect again."}},
};

inline constexpr AdviceRow kFiles[] = {
    {ZK_PATH_TOO_LONG, "a transfer does not start",
     {"The path is longer than 300 bytes.", ZK_MEND_FIRST, "Use a shorter path."}},
    {ZK_BAD_PATH, "a transfer does not start, or the file is rejected",
     {"The path has no '/', or the controller rejected the file.", ZK_MEND_FIRST,
      "Write the path with its directory (./NAME); err_line names the line that was rejected."}},
    {ZK_FILE_UNREADABLE, "a transfer does not start",
     {"The file cannot be opened or read, is empty, or is too large.", ZK_MEND_FIRST,
      "Check that the file is there, and who may read it."}},
    {ZK_FILE_NOT_CREATED, "a recording cannot be saved",
     {"The local file cannot be created.", ZK_MEND_FIRST, "Check the directory, who may write to it, and its free space."}},
    {ZK_NOTHING_SAVED, "a recording cannot be saved",
     {"The controller has no recorded points.", ZK_MEND_FIRST,
      "Record some first, by Start_Drag_Teach and Stop_Drag_Teach."}},
    {ZK_BAD_FILE_NAME, "a project with a type does not start",
     {"The path has no '/'.", ZK_MEND_FIRST, "Write the path with its directory (./NAME)."}},
};

inline constexpr AdviceRow kReplies[] = {
    {ZK_BAD_ARGUMENT, "a call fails at once",
     {"A required pointer is null, or a value is out of its range, not finite, or too large for the wire.", ZK_MEND_FIRST,
      "Compare the arguments with the call's header, and their units: positions are metres, angles of poses radians, joints degrees."}},
    {ZK_NOT_BOOLEAN, "the controller answers, but the call fails",
     {"The reply's acknowledgement or data are missing or of the wrong type, or there is no such command on the wire.",
      ZK_MEND_FIRST, "The controller's software may not know the command: compare Get_Arm_Software_Info with its manual."}},
    {ZK_BAD_REPLY, "the controller answers, but the call fails",
     {"The reply is not valid JSON, or a key is missing.", ZK_MEND_FIRST,
      "ZK_Set_Log shows the reply; docs/wire-protocol.md says what it should have."}},
    {ZK_WRONG_SIZE, "queries of joints fail",
     {"An array in the reply has the wrong number of elements, often since the arm has another number of joints than the arm mode.",
      ZK_MEND_FIRST, "Give ZK_API_Init the arm mode of this arm, or connect by ZK_Connect."}},
    {ZK_WRONG_TYPE, "the controller answers, but the call fails",
     {"A value in the reply, or an argument's kind, is of the wrong type.", ZK_MEND_FIRST,
      "Compare the arguments with the call's header; ZK_Set_Log shows the reply."}},
    {ZK_UNKNOWN_CODE, "ZK_Explain does not know a number",
     {"The code is none of this library: the controller's own, perhaps.", ZK_MEND_FIRST,
      "Look the number up in the controller's manual."}},
};
// clang-format on

template <size_t size>
constexpr AdviceSection section(const char* title, const AdviceRow (&rows)[size]) {
    return {title, rows, rows + size};
}

inline constexpr AdviceSection kAdvice[] = {
    section("Connecting", kConnecting), section("Connections", kConnections),
    section("Calls", kCalls),           section("Moving", kMoving),
    section("Streaming", kStreaming),   section("The real-time state", kState),
    section("Files", kFiles),           section("Arguments and replies", kReplies),
};

// The row of a code, or null.
constexpr const AdviceRow* row_of(int code) {
    for (const AdviceSection& part : kAdvice) {
        for (const AdviceRow* row = part.begin; row != part.end; ++row) {
            if (row->code == code) return row;
        }
    }
    return nullptr;
}

}  // namespace zk
