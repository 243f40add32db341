// Where the tests find what they run and read. The compiler learns the paths in one source only, so that the objects of
// all others are the same for every checkout and a compiler cache can share them.
#pragma once

namespace zk::test {

extern const char* const kSimulator;     // the program
extern const char* const kSourceFolder;  // the checkout

}  // namespace zk::test
