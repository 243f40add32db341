/*
 * ZK_API marks the names of the interface. It stands before every declaration and before every definition of a
 * function, so that a definition that differs from its header does not compile.
 */
#ifndef ZK_EXPORT_H
#define ZK_EXPORT_H

#ifdef __cplusplus
#define ZK_API extern "C" __attribute__((visibility("default")))
#define ZK_STATIC_ASSERT(condition, text) static_assert(condition, text)
#else
#define ZK_API extern __attribute__((visibility("default")))
/* Any number of declarations of the one array agree, as long as its size is 1. */
#define ZK_STATIC_ASSERT(condition, text) extern char zk_static_assertion[(condition) ? 1 : -1]
#endif

/* Version of this library's build, beside the two version strings that API_Version and Algo_Version give. */
#define ZK_VERSION_MAJOR 1
#define ZK_VERSION_MINOR 0
#define ZK_VERSION_PATCH 0
#define ZK_VERSION_STRING "1.0.0"

/* How many connections a process can hold, and so the length of every mailbox table. */
#define ZK_SLOTS 20

ZK_STATIC_ASSERT(sizeof(int) == 4 && sizeof(float) == 4, "the records of the interface count in words of 32 bits");

#endif
