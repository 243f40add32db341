#pragma once

#include "zk/replies/second_parsers.h"

// The parser <name>_E of the second family is the function <name>. Stands after the definition of that.
#define ZK_TWIN(name) ZK_API decltype(name) name##_E __attribute__((alias(#name)))
