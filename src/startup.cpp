// The start-up: connects to a controller, asks for the arm's model, frames, mounting and limits, and puts the replies
// into the local model.
#include "zk/connection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <mutex>

#include "connection/elapsed.h"
#include "connection/in_use.h"
#include "connection/product.h"
#include "connection/realtime.h"
#include "connection/slots.h"
#include "routes.h"
#include "startup.h"
#include "zk/algorithm.h"
#include "zk/arm_state.h"
#include "zk/frames.h"
#include "zk/joint_configuration.h"
#include "zk/status.h"
#include "zk/system.h"

int32_t Curr_Robot_Type = 0;
int32_t Curr_Senser_Type = 0;
uint8_t g_is_robot_type_i = 0;
Matrix Tool_Matrix;
Matrix Frame_Matrix;

using namespace zk;

namespace {

// A model or a sensor that the text does not name stays.
void recognise_model(const char* text) {
    const Product product = product_of(text);
    if (product.model >= 0) write(Curr_Robot_Type, product.model);
    if (product.sensor >= 0) write(Curr_Senser_Type, product.sensor);
}

bool connected(int socket, const char* address, int32_t port) {
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(static_cast<uint16_t>(port));
    if (!address || inet_pton(AF_INET, address, &peer.sin_addr) != 1) return false;
    return connect(socket, reinterpret_cast<sockaddr*>(&peer), sizeof peer) == 0;
}

int learn_model(ArmSocket s) {
    ArmSoftwareInfo info{};
    if (const int status = Get_Arm_Software_Info(s, &info)) return status;
    recognise_model(info.product_version);
    select_model();
    return ZK_OK;
}

int learn_frames(ArmSocket s) {
    FrameRec tool{}, work{};
    if (const int status = Get_Current_Tool_Frame(s, &tool)) return status;
    put_tool(tool);
    if (const int status = Get_Current_Work_Frame(s, &work)) return status;
    put_work_frame(work);
    // These replace what the receive thread stored from the same replies.
    Tool_Matrix = Algo_Pos2Matrix(tool.pose);
    Frame_Matrix = Algo_Pos2Matrix(work.pose);
    return ZK_OK;
}

// Returns -1 when an angle in the model differs from the controller's by more than 0.001 degrees.
int learn_mounting(ArmSocket s) {
    float x = 0, y = 0, z = 0;
    return Get_Install_Pose(s, &x, &y, &z);
}

// Each query also puts its limits into the model.
int learn_limits(ArmSocket s) {
    float limits[8];
    for (const auto query : {Get_Joint_Speed, Get_Joint_Acc, Get_Joint_Min_Pos, Get_Joint_Max_Pos}) {
        if (const int status = query(s, limits)) return status;
    }
    return ZK_OK;
}

int prepare_listener(ArmSocket s) {
    RealtimePushConfig config{};
    const int status = Get_Realtime_Push(s, &config);
    write(listener.receiving, uint8_t{0});
    write<RealtimeCallback>(listener.callback, nullptr);
    write(listener.cycle, config.cycle);
    write(listener.custom_expand_state, static_cast<uint8_t>(config.expand_state != 0));
    write(listener.custom_lift_state, static_cast<uint8_t>(config.lift_state != 0));
    write(listener.custom_joint_speed, static_cast<uint8_t>(config.joint_speed != 0));
    if (status != ZK_OK || !config.enable || is_listening(read(listener.socket))) return ZK_OK;
    return listen_on(config.port);
}

// Everything from a connected socket to a usable connection, but the listener.
int converse(ArmSocket socket) {
    if (Init_Socket_Joint(read(CUR_ARM_MODE), socket) != 0) return ZK_TABLE_FULL;
    if (const int status = start_afresh(Connection(socket))) return status;
    for (const auto learn : {learn_model, learn_frames, learn_mounting, learn_limits}) {
        if (const int status = learn(socket)) return status;
    }
    return ZK_OK;
}

int tcp_socket() {
    const int descriptor = lift_descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int on = 1;  // a set-point does not wait for the acknowledgement of the last one
    (void)setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return descriptor;
}

}  // namespace

void zk::select_model() {
    Algo_Init_Sys_Data(Curr_Robot_Type, Curr_Senser_Type);
    write(g_is_robot_type_i, uint8_t{1});
}

void zk::put_tool(FrameRec& tool) {
    FrameRec held{};
    Algo_Set_ToolFrame(&tool);
    Algo_Get_Curr_ToolFrame(&held);
    g_tool_pose = held.pose;
}

void zk::put_work_frame(FrameRec& work) {
    FrameRec held{};
    Algo_Set_WorkFrame(&work);
    Algo_Get_Curr_WorkFrame(&held);
    g_work_pose = held.pose;
}

std::mutex& zk::start_lock() {
    static auto& only = *new std::mutex;
    return only;
}

int zk::start_afresh(const Connection& connection) {
    if (const int status = connection.status()) return status;
    const int32_t start = Get_Program_Runtime();
    for (Pause pause; dispatch_use.is_using(connection.slot()); pause.next()) {
        if (elapsed_since(start) >= read(m_nOutTime)) return ZK_TIMEOUT;
    }
    forget_replies(connection.slot());
    return ZK_OK;
}

ZK_API ArmSocket Arm_Socket_Start(const char* address, int32_t port, int32_t /*timeout*/) {
    const int descriptor = tcp_socket();
    if (descriptor <= 0 || descriptor > 100000) return ZK_NO_SOCKET;
    if (!connected(descriptor, address, port)) {
        Arm_Socket_Close(descriptor);
        return ZK_NOT_CONNECTED;
    }
    const std::lock_guard guard(start_lock());
    if (const int status = converse(descriptor)) {
        Arm_Socket_Close(descriptor);
        return status;
    }
    // Without a listener the connection stays open.
    const int status = prepare_listener(descriptor);
    return status == ZK_OK ? descriptor : status;
}
