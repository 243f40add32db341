// The ring that carries all queued requests.
#include "zk/queue.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "connection/die.h"
#include "connection/transmit.h"
#include "zk/connection.h"

TxQueue Socket_Tx_Buffer;
TxQueue Socket_Tx_Buffer_M;
TxQueue Socket_Tx_Buffer_Block;
TxQueue Socket_Tx_Buffer_NonBlock;
pthread_mutex_t Queue_hMutex = PTHREAD_MUTEX_INITIALIZER;
int32_t QueuelockInit = 0;

namespace {

constexpr size_t kUsualFrame = 300;

std::atomic<uint32_t> enqueued{0};  // frames of all rings; what an idle transmit thread waits for

class QueueLock {
 public:
    QueueLock() { Queue_Mutex_Lock(); }
    ~QueueLock() { Queue_Mutex_UnLock(); }
    QueueLock(const QueueLock&) = delete;
    QueueLock& operator=(const QueueLock&) = delete;
};

int32_t next(const TxQueue& queue, int32_t index) { return (index + 1) % queue.capacity; }

// Copies a frame as bytes from `data` on, so that a long frame keeps the bytes past `data`. The socket, written last,
// replaces four of them.
void copy_frame(TxFrame* to, const TxFrame* from) {
    constexpr size_t room = sizeof(TxFrame) - offsetof(TxFrame, data);
    const size_t length = from->length < 0 ? 0 : static_cast<size_t>(from->length);
    if (length > room) zk::die("a frame of %zu bytes exceeds the %zu that the queue holds", length, room);
    std::memcpy(reinterpret_cast<char*>(to) + offsetof(TxFrame, data),
                reinterpret_cast<const char*>(from) + offsetof(TxFrame, data), length);
    to->length = from->length;
    to->socket = from->socket;
}

}  // namespace

ZK_API void Queue_Mutex_Lock() { pthread_mutex_lock(&Queue_hMutex); }
ZK_API void Queue_Mutex_UnLock() { pthread_mutex_unlock(&Queue_hMutex); }
ZK_API void ZK_Mutex_Lock() { pthread_mutex_lock(&m_hMutex); }
ZK_API void ZK_Mutex_UnLock() { pthread_mutex_unlock(&m_hMutex); }

ZK_API int ZK_Queue_Create(TxQueue* queue, int32_t capacity) {
    QueueLock lock;
    QueuelockInit = 1;
    const size_t frames = capacity < 0 ? 0 : static_cast<size_t>(capacity);
    queue->base = static_cast<TxFrame*>(std::malloc(frames * sizeof(TxFrame)));
    if (!queue->base && frames > 0) return 0;
    for (size_t i = 0; i < frames; ++i) std::memset(queue->base[i].data, 0, kUsualFrame);
    queue->front = 0;
    queue->rear = 0;
    queue->capacity = capacity;
    return 1;
}

ZK_API int ZK_Queue_Full(TxQueue* queue) {
    QueueLock lock;
    return queue->capacity < 1 || next(*queue, queue->rear) == queue->front;
}

ZK_API int ZK_Queue_Empty(TxQueue* queue) {
    QueueLock lock;
    return queue->front == queue->rear;
}

ZK_API int ZK_Enqueu(TxQueue* queue, TxFrame* frame) {
    if (ZK_Queue_Full(queue)) return 0;
    {
        QueueLock lock;
        if (!queue->base) return 0;
        copy_frame(&queue->base[queue->rear], frame);
        queue->rear = next(*queue, queue->rear);
    }
    enqueued.fetch_add(1, std::memory_order_release);
    enqueued.notify_one();
    return 1;
}

void zk::wait_for_queued() {
    for (;;) {
        const uint32_t seen = enqueued.load(std::memory_order_acquire);
        if (!ZK_Queue_Empty(&Socket_Tx_Buffer)) return;
        enqueued.wait(seen, std::memory_order_acquire);
    }
}

ZK_API int ZK_Dequeue(TxQueue* queue, TxFrame* frame) {
    if (ZK_Queue_Empty(queue)) return 0;
    QueueLock lock;
    if (!queue->base || queue->front == queue->rear) return 0;
    copy_frame(frame, &queue->base[queue->front]);
    queue->front = next(*queue, queue->front);
    return 1;
}

ZK_API void ZK_Queue_Clear(TxQueue* queue) {
    QueueLock lock;
    queue->front = queue->rear;
}

ZK_API void ZK_Queue_Deleate(TxQueue* queue) {
    QueueLock lock;
    if (!queue->base) return;
    queue->front = queue->rear;
    std::free(queue->base);
    queue->base = nullptr;
}
