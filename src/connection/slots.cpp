// The table of connections.
#include "connection/slots.h"

#include <fcntl.h>
#include <unistd.h>

#include <mutex>

#include "connection/in_use.h"
#include "connection/line.h"
#include "connection/transmit.h"
#include "zk/status.h"

SocketSlot SockInfo[ZK_SLOTS];
int32_t m_nSockInfoLen = 0;

namespace zk {
namespace {

constexpr int kLowestNumber = ZK_LARGEST_STATUS + 1;
constexpr int kHighestNumber = 1023;

std::mutex table_lock;  // held while a slot is taken or freed; readers need no lock
std::atomic<unsigned> generations[ZK_SLOTS];

bool has_seven_joints(int32_t arm_mode) { return arm_mode == 75 || arm_mode == 72; }

// The socket first: a call that finds the connection open also finds its joint count. The lock keeps starts out.
void free_slot(SocketSlot& slot) {
    write(slot.socket, 0, std::memory_order_seq_cst);
    write(slot.joint_count, 0);
    write(slot.arm_mode, 0);
}

}  // namespace

Connection Connection::at(int slot) {
    const ArmSocket socket = read(SockInfo[slot].socket, std::memory_order_acquire);
    return {socket, slot, generations[slot].load(std::memory_order_relaxed)};
}

Connection::Connection(ArmSocket socket) : socket_(socket), slot_(slot_of(socket)), generation_(0) {
    if (slot_ >= 0) generation_ = at(slot_).generation_;
}

bool Connection::has_changed() const {
    if (slot_ < 0) return slot_of(socket_) >= 0;
    return read(SockInfo[slot_].socket, std::memory_order_seq_cst) != socket_ ||
           generations[slot_].load(std::memory_order_relaxed) != generation_;
}

int lift_descriptor(int descriptor) {
    static std::mutex lock;
    static int next = kLowestNumber;
    if (descriptor < 0) return -1;
    const std::lock_guard guard(lock);
    int lifted = next > kHighestNumber ? -1 : fcntl(descriptor, F_DUPFD_CLOEXEC, next);
    if (lifted < 0) lifted = fcntl(descriptor, F_DUPFD_CLOEXEC, kLowestNumber);
    if (lifted >= 0) next = lifted + 1;
    close(descriptor);
    return lifted;
}

int slot_of(ArmSocket socket) { return socket < 1 ? -1 : Get_Socket_Idx(socket); }

int joint_count_of_slot(int slot) { return slot < 0 || slot >= ZK_SLOTS ? 6 : read(SockInfo[slot].joint_count); }
int joint_count(ArmSocket socket) { return joint_count_of_slot(slot_of(socket)); }

int request_joint_count(ArmSocket socket) {
    const int slot = slot_of(socket);
    return slot >= 0 && has_seven_joints(read(SockInfo[slot].arm_mode)) ? 7 : 6;
}

void forget_connections(ArmSocket socket) {
    const std::lock_guard guard(table_lock);
    const int slot = Get_Socket_Idx(socket);
    if (slot < 0) return;
    for (SocketSlot* later = SockInfo + slot; later != SockInfo + ZK_SLOTS; ++later) {
        if (!is_handle(read(later->socket))) free_slot(*later);
    }
    std::atomic_ref(m_nSockInfoLen).fetch_sub(1);
}

void forget_connection(ArmSocket socket) {
    const std::lock_guard guard(table_lock);
    const int slot = Get_Socket_Idx(socket);
    if (slot < 0) return;
    free_slot(SockInfo[slot]);
    std::atomic_ref(m_nSockInfoLen).fetch_sub(1);
}

ArmSocket take_slot(int32_t arm_mode, const std::function<ArmSocket(int)>& prepare) {
    const std::lock_guard guard(table_lock);
    const int slot = Get_Socket_Idx(0);
    if (slot < 0) return -1;
    SocketSlot& free = SockInfo[slot];
    write(free.arm_mode, arm_mode);
    write(free.joint_count, has_seven_joints(arm_mode) ? 7 : 6);
    generations[slot].fetch_add(1, std::memory_order_relaxed);
    const ArmSocket socket = prepare(slot);
    write(free.socket, socket, std::memory_order_release);  // from here on the receive thread reads it
    std::atomic_ref(m_nSockInfoLen).fetch_add(1);
    return socket;
}

void close_unused(int descriptor) {
    wake_receiver();
    wait_for_frame();
    receive_use.wait_until_left(descriptor);
    realtime_use.wait_until_left(descriptor);
    close(descriptor);
}

}  // namespace zk

using namespace zk;

ZK_API int Init_Socket_Joint(int32_t arm_mode, int32_t socket) {
    const bool taken = take_slot(arm_mode, [socket](int) { return socket; }) == socket;
    wake_receiver();
    return taken ? 0 : -1;
}

ZK_API int Get_Socket_Idx(int32_t socket) {
    for (int slot = 0; slot < ZK_SLOTS; ++slot) {
        if (read(SockInfo[slot].socket, std::memory_order_acquire) == socket) return slot;
    }
    return -1;
}
