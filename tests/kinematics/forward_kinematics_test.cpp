// Forward kinematics of every arm against KDL.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "support/kdl_arm.h"
#include "support/kdl_frames.h"
#include "zk/kinematics.h"

namespace zk::test {
namespace {

void expect_close(const KDL::Frame& actual, const KDL::Frame& expected) {
    EXPECT_LT((actual.p - expected.p).Norm(), 3e-6);
    EXPECT_LT(angle_between(actual.M, expected.M), 5e-6);
}

void expect_close(const Position& actual, const KDL::Frame& expected) {
    expect_close({expected.M, to_kdl(actual)}, expected);
}

void expect_close(const Matrix& actual, const KDL::Frame& expected) {
    EXPECT_EQ(actual.rows, 4);
    EXPECT_EQ(actual.cols, 4);
    expect_close(to_kdl(actual), expected);
}

void expect_close(const Pose& actual, const KDL::Frame& expected) {
    expect_close({to_kdl(actual.quaternion), to_kdl(actual.position)}, expected);
    // Near the singular pitch Euler angles are less exact.
    if (std::fabs(std::cos(actual.euler.ry)) > 0.1) expect_close(to_kdl(actual), expected);
}

// Every element outside the rotation is 0.
void expect_close_rotation(const Matrix& actual, const KDL::Frame& expected) {
    EXPECT_EQ(actual.rows, 3);
    EXPECT_EQ(actual.cols, 3);
    expect_close({kdl_rotation(actual), expected.p}, expected);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(actual.m[i][3], 0);
        EXPECT_EQ(actual.m[3][i], 0);
    }
}

// The functions of a model's family, and the DH parameters of joints 1 to 7 that they read.
struct Family {
    int model;
    Matrix (*transform)(const float*);
    Matrix (*rotation)(const float*);
    Position (*position)(const float*);
    const char *d, *a, *offset;
};
#define FUNCTIONS_OF(name) forward_kinematics_e_##name, forward_kinematics_rotate_##name, forward_kinematics_pos_##name

const Family families[] = {
    {0, FUNCTIONS_OF(zk65), "146", "3", "123456"},      {1, FUNCTIONS_OF(zk75), "1357", "", ""},
    {3, FUNCTIONS_OF(zkl63_2), "146", "234", "123456"}, {4, FUNCTIONS_OF(zkl63_3), "1246", "234", "123456"},
    {5, FUNCTIONS_OF(orb6), "1456", "234", "123456"},   {6, FUNCTIONS_OF(orb6), "1456", "234", "123456"},
    {7, FUNCTIONS_OF(tau7), "1357", "457", "1234567"},  {8, FUNCTIONS_OF(orb6), "1456", "234", "123456"},
    {9, FUNCTIONS_OF(zk65), "146", "3", "123456"},
};

void PrintTo(const Family& f, std::ostream* out) { *out << "model " << f.model; }

class EveryArm : public testing::TestWithParam<Family> {
 protected:
    void SetUp() override { ASSERT_EQ(libalgo_set_robot_and_sensor_type(GetParam().model, 0), 0); }

    std::mt19937 generator_{20};
    const KdlArm kdl_{arm_of(GetParam().model, 0)};
};

TEST_P(EveryArm, AgreesWithKdlInEveryFrame) {
    for (int round = 0; round < 300 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const Joints q = random_joints(kdl_.arm, generator_);
        const RandomFrame tool(generator_), work(generator_), mounting(generator_);
        libalgo_set_tool_cs_params(tool.params);
        libalgo_set_work_cs_params(work.params);
        libalgo_set_robot_install_angle(mounting.angles());

        const KDL::Frame flange = kdl_.forward(q);
        const KDL::Frame world_T_flange = KDL::Frame(mounting.frame().M) * flange;
        const KDL::Frame world_T_tool = world_T_flange * tool.frame();
        const KDL::Frame work_T_tool = work.frame().Inverse() * world_T_tool;

        expect_close(forward_kinematics_e(q.data()), flange);
        expect_close(forward_kinematics_world_to_flange(q.data()), world_T_flange);
        expect_close(forward_kinematics(q.data()), work_T_tool);
        expect_close(forward_kinematics_pos(q.data()), work_T_tool);
        expect_close_rotation(forward_kinematics_rotate(q.data()), work_T_tool);
        expect_close_rotation(forward_kinematics_rotate_flange(q.data()), work.frame().Inverse() * world_T_flange);
        expect_close(forward_kinematics_for_unity(q.data()).pose, world_T_tool);
        expect_close(forward_kinematics_for_unity(q.data()).matrix, world_T_tool);
        expect_close(forward_kinematics_pos_calibration(q.data()), world_T_tool);
    }
}

TEST_P(EveryArm, ThreeFunctionsOfAFamilyAgreeToTheLastBit) {
    for (int round = 0; round < 300; ++round) {
        const Joints q = random_joints(kdl_.arm, generator_);
        const Matrix whole = forward_kinematics_e(q.data());
        Matrix rotation = whole;
        for (int i = 0; i < 3; ++i) rotation.m[i][3] = 0;
        const Position position = {whole.m[0][3], whole.m[1][3], whole.m[2][3]};

        const Matrix t = GetParam().transform(q.data()), r = GetParam().rotation(q.data());
        const Position p = GetParam().position(q.data());
        EXPECT_EQ(std::memcmp(&t, &whole, sizeof t), 0);
        EXPECT_EQ(std::memcmp(&r, &rotation, sizeof r), 0);
        EXPECT_EQ(std::memcmp(&p, &position, sizeof p), 0);
    }
}

TEST_P(EveryArm, ReadsOnlyTheDhParametersOfItsFamily) {
    const float q[8] = {0.3f, 0.5f, -0.7f, 0.9f, 1.1f, -1.3f, 0.4f};
    const Matrix before = forward_kinematics_e(q);
    DhParams original;
    libalgo_get_dh_value(&original);

    const auto moves = [&](float(DhParams::*row)[8], int joint) {
        DhParams changed = original;
        (changed.*row)[joint] += 0.01f;
        libalgo_set_dh_params(&changed);
        libalgo_set_dh_compensation_value(&changed);
        const Matrix after = forward_kinematics_e(q);
        return std::memcmp(&before, &after, sizeof before) != 0;
    };
    for (int joint = 0; joint < 7; ++joint) {
        const auto is_read = [&](const char* joints) { return std::strchr(joints, '1' + joint) != nullptr; };
        EXPECT_EQ(moves(&DhParams::d, joint), is_read(GetParam().d)) << "d" << joint + 1;
        EXPECT_EQ(moves(&DhParams::a, joint), is_read(GetParam().a)) << "a" << joint + 1;
        EXPECT_EQ(moves(&DhParams::offset, joint), is_read(GetParam().offset)) << "offset" << joint + 1;
        EXPECT_FALSE(moves(&DhParams::alpha, joint)) << "alpha" << joint + 1;
        EXPECT_FALSE(moves(&DhParams::d_comp, joint)) << "d_comp" << joint + 1;
        EXPECT_FALSE(moves(&DhParams::offset_comp, joint)) << "offset_comp" << joint + 1;
    }
}

// A sensor changes only the DH record.
INSTANTIATE_TEST_SUITE_P(, EveryArm, testing::ValuesIn(families),
                         [](const auto& f) { return "Model" + std::to_string(f.param.model); });

TEST(ForwardKinematics, UnknownModelHasTheRotationsOfTheFirstFamily) {
    for (const int model : {2, 10, 256 + 7, -1}) {
        libalgo_init();
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(model, 0), -1);
        Arm none = arm_of(0, 0);
        none.d = none.a = {};
        none.offset = {};
        const Joints joints = {0.3f, 0.5f, -0.7f, 0.9f, 1.1f, -1.3f};
        const float* q = joints.data();
        // The model number is read as a byte: 263 is the family of 7, with lengths of zero.
        if (static_cast<uint8_t>(model) != 7) expect_close(forward_kinematics_e(q), KdlArm(none).forward(joints));
        for (int i = 0; i < 3; ++i) EXPECT_EQ(forward_kinematics_e(q).m[i][3], 0);
    }
}

TEST(ForwardKinematics, FamiliesReadTheModelOfTheLastWholeArmCall) {
    libalgo_init();
    const float q[8] = {};
    const float before = forward_kinematics_e(q).m[2][3];
    DhParams dh;
    libalgo_get_dh_value(&dh);
    dh.d[0] += 0.5f;
    libalgo_set_dh_params(&dh);
    EXPECT_EQ(forward_kinematics_pos_zk65(q).z, before);
    forward_kinematics_rotate(q);
    EXPECT_FLOAT_EQ(forward_kinematics_pos_zk65(q).z, before + 0.5f);
}

}  // namespace
}  // namespace zk::test
