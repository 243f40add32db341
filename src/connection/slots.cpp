// The table of connections.
#include "connection/slots.h"

#include <sched.h>
#include <unistd.h>

#include <cstring>

#include "connection/descriptor_use.h"
#include "connection/realtime.h"
#include "connection/transmit.h"

SocketSlot SockInfo[ZK_SLOTS];
int32_t m_nSockInfoLen = 0;

namespace zk {
namespace {

bool has_seven_joints(int32_t arm_mode) { return arm_mode == 75 || arm_mode == 72; }

void clear(SocketSlot& slot) {
    write(slot.socket, 0, std::memory_order_seq_cst);
    write(slot.joint_count, 0);
    write(slot.arm_mode, 0);
}

}  // namespace

void DescriptorUse::wait_until_left(int descriptor) const {
    while (in_use_.load(std::memory_order_seq_cst) == descriptor) sched_yield();
}

int slot_of(ArmSocket socket) { return socket < 1 ? -1 : Get_Socket_Idx(socket); }

int joint_count_of_slot(int slot) { return slot < 0 || slot >= ZK_SLOTS ? 6 : read(SockInfo[slot].joint_count); }
int joint_count(ArmSocket socket) { return joint_count_of_slot(slot_of(socket)); }

int request_joint_count(ArmSocket socket) {
    const int slot = slot_of(socket);
    return slot >= 0 && has_seven_joints(read(SockInfo[slot].arm_mode)) ? 7 : 6;
}

void close_unused(int descriptor) {
    wait_for_frame();
    receive_use.wait_until_left(descriptor);
    realtime_use.wait_until_left(descriptor);
    close(descriptor);
}

}  // namespace zk

using namespace zk;

ZK_API int Init_Socket_Joint(int32_t arm_mode, int32_t socket) {
    const int slot = Get_Socket_Idx(0);
    if (slot < 0) return -1;
    SocketSlot& free = SockInfo[slot];
    write(free.arm_mode, arm_mode);
    write(free.joint_count, has_seven_joints(arm_mode) ? 7 : 6);
    connections_had[slot].fetch_add(1, std::memory_order_relaxed);
    write(free.socket, socket, std::memory_order_release);  // from here on the receive thread reads it
    std::atomic_ref(m_nSockInfoLen).fetch_add(1);
    return 0;
}

ZK_API int Get_Socket_Idx(int32_t socket) {
    for (int slot = 0; slot < ZK_SLOTS; ++slot) {
        if (read(SockInfo[slot].socket, std::memory_order_acquire) == socket) return slot;
    }
    return -1;
}

ZK_API void Arm_Socket_Close(ArmSocket socket) {
    if (socket < 1) return;
    const int slot = Get_Socket_Idx(socket);
    for (int i = slot; i >= 0 && i < ZK_SLOTS; ++i) clear(SockInfo[i]);

    stop_listening();
    forget_frames(socket);
    close_unused(socket);
    if (slot >= 0) std::atomic_ref(m_nSockInfoLen).fetch_sub(1);
}
