// The kinematics' statics have common names. This program defines variables of the same names, and the dynamic linker
// prefers them to the library's. Neither side may change the other's.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>

#include "zk/kinematics.h"

#define OF_THIS_PROGRAM extern "C" __attribute__((visibility("default")))

OF_THIS_PROGRAM double position[6];
OF_THIS_PROGRAM long robot_type;
OF_THIS_PROGRAM char robot_dh[4];
OF_THIS_PROGRAM int T_1N, T_1N_rotate, T_BE, T_BE_rotate_flange, T_BE_rotate_tool, position_0, c_angle, d1, a2;
double position[6] = {1, 2, 3, 4, 5, 6};
long robot_type = 7;
char robot_dh[4] = "arm";
int T_1N = 1, T_1N_rotate = 2, T_BE = 3, T_BE_rotate_flange = 4, T_BE_rotate_tool = 5, position_0 = 6, c_angle = 7,
    d1 = 8, a2 = 9;

namespace zk::test {
namespace {

// The library's own variable of this name.
template <class T>
const T& of_library(const char* name) {
    static void* const library = dlopen("libZK_Base.so.1", RTLD_NOW | RTLD_NOLOAD);
    return *static_cast<const T*>(dlsym(library, name));
}

template <class T>
bool same(const T& a, const T& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(Statics, ApplicationsVariablesAreNotTouched) {
    const float q[8] = {0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f, 0.7f};
    for (const int model : {0, 1}) {
        libalgo_set_robot_and_sensor_type(model, 0);
        const Position before = forward_kinematics_pos(q);
        for (double& p : position) p += 100;
        robot_type += 1;
        EXPECT_TRUE(same(forward_kinematics_pos(q), before));
    }
    EXPECT_EQ(position[0], 201);
    EXPECT_EQ(position[5], 206);
    EXPECT_EQ(robot_type, 9);
    EXPECT_STREQ(robot_dh, "arm");
    const int values[] = {T_1N, T_1N_rotate, T_BE, T_BE_rotate_flange, T_BE_rotate_tool, position_0, c_angle, d1, a2};
    for (int i = 0; i < 9; ++i) EXPECT_EQ(values[i], i + 1);
}

TEST(Statics, LibrarysVariablesHoldTheLastResults) {
    const float q[8] = {0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f, 0.7f};
    libalgo_set_robot_and_sensor_type(4, 0);
    const Matrix flange = forward_kinematics_e(q);
    EXPECT_TRUE(same(of_library<Matrix>("T_BE"), flange));
    EXPECT_TRUE(same(of_library<Matrix>("T_1N"), flange));
    EXPECT_TRUE(same(of_library<DhParams>("robot_dh"), robot.dh));
    EXPECT_EQ(of_library<uint8_t>("robot_type"), 4);
    EXPECT_TRUE(same(forward_kinematics_rotate(q), of_library<Matrix>("T_BE_rotate_tool")));
    EXPECT_TRUE(same(forward_kinematics_rotate_flange(q), of_library<Matrix>("T_BE_rotate_flange")));
    EXPECT_TRUE(same(forward_kinematics_pos(q), of_library<Position>("position")));
    EXPECT_TRUE(same(forward_kinematics_pos_zkl63_3(q), of_library<Position>("position_0")));

    // This family writes its rotation to T_1N, the others to T_1N_rotate.
    EXPECT_TRUE(same(forward_kinematics_rotate_zkl63_3(q), of_library<Matrix>("T_1N")));
    EXPECT_TRUE(same(forward_kinematics_rotate_zk65(q), of_library<Matrix>("T_1N_rotate")));
    forward_kinematics_e_zk75(q);
    EXPECT_EQ(std::memcmp(&of_library<float>("c_angle"), q, 7 * sizeof *q), 0);
}

}  // namespace
}  // namespace zk::test
