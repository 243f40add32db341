/*
 * The transmit queue. Every ordinary request of every connection waits in one ring, and one thread writes one frame of
 * it every 20 ms, so that no controller gets more than 50 of them a second.
 */
#ifndef ZK_QUEUE_H
#define ZK_QUEUE_H

#include <pthread.h>
#include <stddef.h>
#include <stdint.h>

#include "zk/export.h"

/* A frame as it goes on the wire, its line end included. */
typedef struct TxFrame {
    int32_t length; /* bytes of data in use */
    char data[500]; /* not a C string */
    int32_t socket; /* destination */
    uint8_t reserved[12];
} TxFrame;

/* A ring of frames: empty when front equals rear, full one frame short of its capacity. */
typedef struct TxQueue {
    TxFrame* base;
    int32_t front; /* next to read */
    int32_t rear;  /* next to write */
    int32_t capacity;
} TxQueue;

ZK_STATIC_ASSERT(sizeof(TxFrame) == 520 && offsetof(TxFrame, data) == 4 && offsetof(TxFrame, socket) == 504,
                 "layout of TxFrame");

ZK_API TxQueue Socket_Tx_Buffer;          /* the ring that carries all queued requests */
ZK_API TxQueue Socket_Tx_Buffer_M;        /* created beside it, unused */
ZK_API TxQueue Socket_Tx_Buffer_Block;    /* unused */
ZK_API TxQueue Socket_Tx_Buffer_NonBlock; /* unused */
ZK_API pthread_mutex_t Queue_hMutex;      /* held by each primitive below for itself */
ZK_API int32_t QueuelockInit;             /* 1 once Queue_hMutex is initialised */

/* The ring's primitives; each locks for itself and may be called from any thread. Create returns 1, or 0 without
 * memory; Full and Empty return 1 for yes; Enqueu and Dequeue return 1, or 0 when the ring is full or empty. A ring of
 * capacity n holds n - 1 frames. Deleate frees the storage; Create does not free what the record held before. */
ZK_API int ZK_Queue_Create(TxQueue* queue, int32_t capacity);
ZK_API int ZK_Queue_Full(TxQueue* queue);
ZK_API int ZK_Queue_Empty(TxQueue* queue);
ZK_API int ZK_Enqueu(TxQueue* queue, TxFrame* frame);
ZK_API int ZK_Dequeue(TxQueue* queue, TxFrame* frame);
ZK_API void ZK_Queue_Clear(TxQueue* queue);
ZK_API void ZK_Queue_Deleate(TxQueue* queue);

ZK_API void Queue_Mutex_Lock(void);
ZK_API void Queue_Mutex_UnLock(void);
ZK_API void ZK_Mutex_Lock(void); /* m_hMutex */
ZK_API void ZK_Mutex_UnLock(void);

/*
 * Queues a frame of `length` bytes for a socket. If the ring is full, the frame is dropped and a line is printed on
 * standard output. A frame of more than 516 bytes, or a library that is not initialised, ends the process. In a frame
 * of 501 to 516 bytes the socket's number overwrites bytes 501 to 504. On a handle of ZK_Connect none of this happens:
 * the frame is dropped unless it has 1 to 500 bytes and finds room; the log says so, and ZK_Connection counts it. Any
 * thread.
 */
ZK_API void Add_Queue(int32_t socket, const char* frame, int32_t length);

/* The transmit thread's function. Started by ZK_API_Init; not to be called. */
ZK_API void* WriteThread(void* unused);

#endif
