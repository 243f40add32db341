// The liveness probe of a connection.
#include "connection/elapsed.h"
#include "connection/exchange.h"
#include "connection/wrappers.h"
#include "zk/replies/joint_configuration.h"

using namespace zk;

static constexpr int32_t kProbeLimitMs = 500;

ZK_API int Arm_Socket_State(ArmSocket socket) {
    if (sending_file()) return ZK_SENDING_FILE;
    const Wait call(socket);
    if (const int status = sleep_before(call, kPauseMs)) return status;
    if (const int status = needs_connection(socket)) return status;
    return suspended(Arm_Socket_State_Block, socket);
}

ZK_API int Arm_Socket_State_Block(ArmSocket socket) {
    const Wait connection(socket);
    if (const int status = connection.claim(Joint_Max_Speed_Cmd)) return status;
    if (const int status = Arm_Socket_State_nBlock(socket)) return status;
    const int status = await_result(Joint_Max_Speed_Cmd, connection, kProbeLimitMs, Take::kOne);
    return status == ZK_TIMEOUT ? int(ZK_NOT_CONNECTED) : status;
}

ZK_API int Arm_Socket_State_nBlock(ArmSocket socket) { return stream({socket, "get_joint_max_speed"}); }
