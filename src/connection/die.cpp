#include "connection/die.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

void zk::die(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::fputs("ZK_Base: ", stderr);
    std::vfprintf(stderr, format, arguments);
    std::fputc('\n', stderr);
    va_end(arguments);
    std::abort();
}
