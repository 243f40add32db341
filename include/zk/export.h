/*
 * ZK_API marks the names of the interface. It precedes every declaration and every definition of a function: a
 * definition that differs from its header does not compile.
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

/* The version of the interface, the library and its packages. API_Version returns that of the library at run time. */
#define ZK_VERSION_MAJOR 4
#define ZK_VERSION_MINOR 3
#define ZK_VERSION_PATCH 6
#define ZK_VERSION_STRING ZK_TEXT_OF(ZK_VERSION_MAJOR) "." ZK_TEXT_OF(ZK_VERSION_MINOR) "." ZK_TEXT_OF(ZK_VERSION_PATCH)
#define ZK_TEXT_OF(macro) ZK_TEXT_OF_TOKEN(macro)
#define ZK_TEXT_OF_TOKEN(token) #token

/* How many connections a process can hold, and so the length of every mailbox table. */
#define ZK_SLOTS 20

ZK_STATIC_ASSERT(sizeof(int) == 4 && sizeof(float) == 4, "the records of the interface count in words of 32 bits");

#endif
