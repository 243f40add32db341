// Forward and inverse kinematics allocate nothing. This program's malloc replaces the C library's, for the library too,
// and counts. A sanitizer has a malloc of its own, so nothing is tested there.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "support/kdl_arm.h"
#include "zk/algorithm.h"
#include "zk/checked_inverse.h"
#include "zk/inverse_kinematics.h"
#include "zk/kinematics.h"
#include "zk/model.h"

namespace {
thread_local long allocations = 0;
}

#ifdef ZK_UNDER_SANITIZER
constexpr bool kCounting = false;
#else
constexpr bool kCounting = true;
extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);

#define COUNTED __attribute__((visibility("default")))
COUNTED void* malloc(size_t size) {
    ++allocations;
    return __libc_malloc(size);
}
COUNTED void* calloc(size_t count, size_t size) {
    ++allocations;
    return __libc_calloc(count, size);
}
COUNTED void* realloc(void* block, size_t size) {
    ++allocations;
    return __libc_realloc(block, size);
}
COUNTED void* aligned_alloc(size_t alignment, size_t size) {
    ++allocations;
    return __libc_memalign(alignment, size);
}
}
#endif

namespace zk::test {
namespace {

template <class Call>
long allocations_of(Call call) {
    const long before = allocations;
    call();
    return allocations - before;
}

// The library calls the same malloc.
TEST(Allocation, CounterSeesMalloc) {
    if (!kCounting) GTEST_SKIP() << "the sanitizer has taken malloc";
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "malloc"), reinterpret_cast<void*>(&malloc));
    void* volatile block = nullptr;
    EXPECT_EQ(allocations_of([&] { block = std::malloc(100); }), 1);
    std::free(block);
}

TEST(Allocation, KinematicsAllocateNothing) {
    if (!kCounting) GTEST_SKIP() << "the sanitizer has taken malloc";
    std::mt19937 generator(17);
    for (const Arm& arm : arms()) {
        Algo_Init_Sys_Data(arm.model, arm.sensor);
        for (int i = 0; i < 50; ++i) {
            const Joints q = random_joints(arm, generator, 0.95), seed = random_joints(arm, generator, 0.95);
            Joints degrees = seed, out{};
            for (float& angle : degrees) angle = static_cast<float>(angle * (180 / M_PI));
            EXPECT_EQ(allocations_of([&] {
                          const Pose target = forward_kinematics(q.data());
                          forward_kinematics_rotate(q.data());
                          forward_kinematics_pos(q.data());
                          Algo_Forward_Kinematics(degrees.data());
                          for (const float range : {0.013f, 3.14f}) {
                              ikine_set_solution_range_zk75(range);
                              inverse_kinematics(seed.data(), &target, out.data(), 1);
                              inverse_kinematics(q.data(), &target, out.data(), 2);
                          }
                          Algo_Inverse_Kinematics(degrees.data(), &target, out.data(), 0);
                          ZK_Inverse_Kinematics_Checked(degrees.data(), &target, out.data(), 0);
                      }),
                      0)
                << arm;
        }
    }
}

}  // namespace
}  // namespace zk::test
