#pragma once

#include "zk/replies/second_parsers.h"

// Makes the parser <name>_E of the second family an alias of <name>. Use it after the definition of <name>.
#define ZK_TWIN(name) ZK_API decltype(name) name##_E __attribute__((alias(#name)))
