// A message wakes the calls that wait for it: they do not depend on the look that each step of a wait ends with.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <cerrno>
#include <future>

#include "control/connected.h"
#include "support/arm.h"
#include "support/start_up.h"
#include "zk/control.h"
#include "zk/joint_configuration.h"
#include "zk/motion.h"

namespace {

using namespace zk::test;

// The steps of a wait, where this is set, last until a message comes.
thread_local bool are_steps_long = false;
std::atomic<int> long_steps{0}, slept_through{0};

}  // namespace

extern "C" {
// ThreadSanitizer has to see each wait.
[[gnu::weak]] int __interceptor_pthread_cond_clockwait(pthread_cond_t*, pthread_mutex_t*, clockid_t, const timespec*);

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* lock, clockid_t clock, const timespec* until) {
    static const auto next =
        __interceptor_pthread_cond_clockwait
            ? __interceptor_pthread_cond_clockwait
            : reinterpret_cast<decltype(&pthread_cond_clockwait)>(dlsym(RTLD_NEXT, "pthread_cond_clockwait"));
    if (!are_steps_long) return next(condition, lock, clock, until);
    timespec later = *until;
    later.tv_sec += 30;
    ++long_steps;
    const int status = next(condition, lock, clock, &later);
    if (status == ETIMEDOUT) ++slept_through;
    return status;
}
}

namespace {

struct AwaitedMessage {
    const char* name;
    int (*wait)(ArmSocket);
    const char* message;
};
const AwaitedMessage kAwaited[] = {
    {"Reply", [](ArmSocket s) { return Get_Joint_Speed(s, std::array<float, 7>().data()); },
     R"({"state":"joint_max_speed","joint_speed":[1,2,3,4,5,6]})"},
    {"Report", [](ArmSocket s) { return ZK_Wait_Move(s, 60000); },
     R"({"state":"current_trajectory_state","trajectory_state":true,"device":0,"trajectory_connect":0})"}};
void PrintTo(const AwaitedMessage& row, std::ostream* out) { *out << row.name; }

class AMessage : public testing::TestWithParam<AwaitedMessage> {};
INSTANTIATE_TEST_SUITE_P(, AMessage, testing::ValuesIn(kAwaited),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(AMessage, WakesTheCallThatWaitsForIt) {
    ScriptedController controller;
    answer_start_up(controller);
    const ArmSocket arm = connected(controller.port());
    set_shared(m_nOutTime, 60000);
    controller.answer("movej", R"({"command":"movej","receive_state":true})");
    controller.ignore("get_joint_max_speed");
    ASSERT_EQ(Movej_Cmd(arm, std::array<float, 7>().data(), 20, 0, 0, false), 0);
    auto call = std::async(std::launch::async, [arm] {
        are_steps_long = true;
        return GetParam().wait(arm);
    });
    ASSERT_TRUE(eventually([] { return long_steps > 0; })) << "it sleeps through its steps";
    controller.say(GetParam().message);
    EXPECT_EQ(call.get(), 0);
    EXPECT_EQ(slept_through, 0);
}

}  // namespace
