// The conversation that turns an address into an arm: who are you, how are you mounted, what do you carry, where are
// your limits. Its answers go into the local model.
#include "zk/startup.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstring>

#include "connection/realtime.h"
#include "connection/slots.h"
#include "routes.h"
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

struct Mark {
    const char* text;
    int32_t number;
};

// The first mark of a list that the model string holds decides; with none the number stays.
template <size_t size>
void recognise(const char* model, const std::array<Mark, size>& marks, int32_t& number) {
    for (const Mark& mark : marks) {
        if (!std::strstr(model, mark.text)) continue;
        write(number, mark.number);
        return;
    }
}

void recognise_model(const char* model) {
    recognise(model, std::array<Mark, 2>{{{"ZK65", 0}, {"ZK75", 1}}}, Curr_Robot_Type);
    recognise(model, std::array<Mark, 5>{{{"ORB63", 8}, {"63", 3}, {"ORB65", 5}, {"62", 6}, {"72", 7}}},
              Curr_Robot_Type);
    recognise(model, std::array<Mark, 3>{{{"-B", 0}, {"-ZF", 1}, {"-6F", 2}}}, Curr_Senser_Type);
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
    Algo_Init_Sys_Data(Curr_Robot_Type, Curr_Senser_Type);
    write(g_is_robot_type_i, uint8_t{1});
    return ZK_OK;
}

int learn_frames(ArmSocket s) {
    FrameRec tool{}, work{}, held{};
    if (const int status = Get_Current_Tool_Frame(s, &tool)) return status;
    Algo_Set_ToolFrame(&tool);
    Algo_Get_Curr_ToolFrame(&held);
    g_tool_pose = held.pose;
    if (const int status = Get_Current_Work_Frame(s, &work)) return status;
    Algo_Set_WorkFrame(&work);
    Algo_Get_Curr_WorkFrame(&held);
    g_work_pose = held.pose;
    // These replace what the receive thread made of the same replies.
    Tool_Matrix = Algo_Pos2Matrix(tool.pose);
    Frame_Matrix = Algo_Pos2Matrix(work.pose);
    return ZK_OK;
}

// -1 when the model does not give back what it was told.
int learn_mounting(ArmSocket s) {
    float x = 0, y = 0, z = 0;
    return Get_Install_Pose(s, &x, &y, &z);
}

// Each query puts its limits into the model on its way.
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

// Everything up to a usable connection; on a failure the connection is closed.
int converse(ArmSocket socket, const char* address, int32_t port) {
    if (!connected(socket, address, port)) return ZK_NOT_CONNECTED;
    if (Init_Socket_Joint(read(CUR_ARM_MODE), socket) != 0) return ZK_TABLE_FULL;
    forget_replies(slot_of(socket));
    for (const auto learn : {learn_model, learn_frames, learn_mounting, learn_limits}) {
        if (const int status = learn(socket)) return status;
    }
    return ZK_OK;
}

// A descriptor that no status shares its number with.
int tcp_socket() {
    const int low = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (low < 0 || low > ZK_LARGEST_STATUS) return low;
    const int descriptor = fcntl(low, F_DUPFD_CLOEXEC, ZK_LARGEST_STATUS + 1);
    close(low);
    return descriptor;
}

}  // namespace

ZK_API ArmSocket Arm_Socket_Start(const char* address, int32_t port, int32_t /*timeout*/) {
    const int descriptor = tcp_socket();
    if (descriptor <= 0 || descriptor > 100000) return ZK_NO_SOCKET;
    if (const int status = converse(descriptor, address, port)) {
        Arm_Socket_Close(descriptor);
        return status;
    }
    // Without a listener the connection stands all the same, though nothing will be heard of the stream.
    const int status = prepare_listener(descriptor);
    return status == ZK_OK ? descriptor : status;
}
