#include "support/paths.h"

namespace zk::test {

const char* const kSimulator = ZK_SIMULATOR;
const char* const kSourceFolder = ZK_SOURCE_DIR;

}  // namespace zk::test
