// The tests of this folder are compiled for two versions of the language and linked into one program.
#pragma once

#include <gtest/gtest.h>

#include <functional>

namespace zk::test {
bool eventually(const std::function<bool()>& condition);  // support/arm.h, which C++17 cannot read
}

#define ZK_JOIN(name, standard) name##standard
#define ZK_SUITE_OF(name, standard) ZK_JOIN(name, standard)
// TEST(SUITE(Arm), Connects) is Arm17.Connects, and Arm23.Connects.
#define SUITE(name) ZK_SUITE_OF(name, ZK_STANDARD)

#define EXPECT_CONTAINS(text, part) EXPECT_NE(std::string(text).find(part), std::string::npos) << (text)
