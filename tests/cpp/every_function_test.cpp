// Every function of the interface can be called through Arm::call<>() or zk::call<>(), and is named in its errors.
#include <gtest/gtest.h>

#include <string_view>

#include "interface.h"
#include "zk/arm.hpp"

namespace {

template <class Returned>
using Expected = std::conditional_t<std::is_same_v<Returned, int>, zk::Result<void>, Returned>;

template <auto kFunction, class Returned, class... Parameters>
constexpr bool is_callable(std::string_view name, Returned (*)(Parameters...)) {
    return std::is_same_v<decltype(zk::call<kFunction>(std::declval<Parameters>()...)), Expected<Returned>> &&
           name == zk::detail::kName<kFunction>.data();
}

template <auto kFunction, class Returned, class... Parameters>
constexpr bool is_callable_on_arm(Returned (*)(ArmSocket, Parameters...)) {
    return std::is_same_v<decltype(std::declval<const zk::Arm&>().call<kFunction>(std::declval<Parameters>()...)),
                          Expected<Returned>>;
}

#define CHECK(function) static_assert(is_callable<function>(#function, function), #function);
ZK_EVERY_FUNCTION(CHECK)
#define CHECK_ON_ARM(function) static_assert(is_callable_on_arm<function>(function), #function);
ZK_EVERY_ARM_FUNCTION(CHECK_ON_ARM)

#define COUNT(function) +1
TEST(EveryFunction, IsCallable) {
    EXPECT_GT(0 ZK_EVERY_ARM_FUNCTION(COUNT), 700) << "the lists are empty";
    EXPECT_GT(0 ZK_EVERY_FUNCTION(COUNT), 1300);
}

}  // namespace
