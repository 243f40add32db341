// Start and end of the library and of a connection, and the settings.
#include "connection/realtime.h"
#include "connection/slots.h"
#include "connection/transmit.h"
#include "zk/connection.h"
#include "zk/control.h"
#include "zk/mailboxes.h"
#include "zk/queue.h"

int32_t m_nOutTime = 200;
int32_t m_nOutTime_max = 1000;
int32_t m_nmodbusrtu_OutTime = 1000;
int32_t CUR_ARM_MODE = 65;
int32_t m_nThreadIsRun = 0;
int32_t IsSendFile = 0;
int32_t SuspendQueue = 0;
MotionReportCallback callback1 = nullptr;

pthread_t m_hWThread;
pthread_t m_hRThread;
pthread_t m_hLThread;
pthread_mutex_t m_hMutex = PTHREAD_MUTEX_INITIALIZER;

using namespace zk;

namespace {

constexpr int32_t kQueueCapacity = 600;

void renew(TxQueue& queue) {
    ZK_Queue_Deleate(&queue);
    ZK_Queue_Create(&queue, kQueueCapacity);
}

void start(pthread_t& thread, void* (*function)(void*)) {
    if (pthread_create(&thread, nullptr, function, nullptr) == 0) pthread_detach(thread);
}

}  // namespace

ZK_API int ZK_API_Init(int32_t arm_mode, MotionReportCallback callback) {
    write(callback1, callback, std::memory_order_release);
    write(m_nOutTime, 3000);
    write(CUR_ARM_MODE, arm_mode);

    ZK_Mutex_Lock();
    renew(Socket_Tx_Buffer);
    renew(Socket_Tx_Buffer_M);
    ZK_Mutex_UnLock();

    if (std::atomic_ref(m_nThreadIsRun).exchange(1) != 0) return 0;
    start(m_hWThread, WriteThread);
    start(m_hRThread, RecvThread);
    start(m_hLThread, threadFunction);
    return 0;
}

ZK_API int ZK_API_UnInit() {
    ZK_Mutex_Lock();
    ZK_Queue_Deleate(&Socket_Tx_Buffer);
    ZK_Mutex_UnLock();
    return 0;
}

ZK_API void Arm_Socket_Close(ArmSocket socket) {
    if (socket < 1) return;
    if (is_handle(socket)) {
        ZK_Close(socket);
        return;
    }
    forget_connections(socket);
    stop_listening();
    forget_frames(socket);
    close_unused(socket);
}

ZK_API const char* API_Version() { return ZK_VERSION_STRING; }
