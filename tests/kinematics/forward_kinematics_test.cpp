// Forward kinematics of every arm against KDL.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <random>

#include "kinematics/kdl_arm.h"
#include "support/kdl_frames.h"
#include "zk/kinematics.h"

namespace zk::test {
namespace {

constexpr double kMetres = 3e-6, kRadians = 5e-6;

void expect_close(const Position& actual, const KDL::Frame& expected) {
    EXPECT_LT((to_kdl(actual) - expected.p).Norm(), kMetres);
}

void expect_close(const KDL::Rotation& actual, const KDL::Frame& expected) {
    EXPECT_LT(angle_between(actual, expected.M), kRadians);
}

void expect_close(const Matrix& actual, const KDL::Frame& expected) {
    EXPECT_EQ(actual.rows, 4);
    EXPECT_EQ(actual.cols, 4);
    expect_close(Position{actual.m[0][3], actual.m[1][3], actual.m[2][3]}, expected);
    expect_close(kdl_rotation(actual), expected);
}

void expect_close(const Pose& actual, const KDL::Frame& expected) {
    expect_close(actual.position, expected);
    expect_close(to_kdl(actual.quaternion), expected);
    // Close to the singular pitch Euler angles have no six digits.
    if (std::fabs(std::cos(actual.euler.ry)) > 0.1) expect_close(to_kdl(actual.euler), expected);
}

// Every element outside the rotation is 0.
void expect_close_rotation(const Matrix& actual, const KDL::Frame& expected) {
    EXPECT_EQ(actual.rows, 3);
    EXPECT_EQ(actual.cols, 3);
    expect_close(kdl_rotation(actual), expected);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(actual.m[i][3], 0);
        EXPECT_EQ(actual.m[3][i], 0);
    }
}

struct Family {
    Matrix (*transform)(const float*);
    Matrix (*rotation)(const float*);
    Position (*position)(const float*);
};
#define FAMILY_OF(name) \
    Family { forward_kinematics_e_##name, forward_kinematics_rotate_##name, forward_kinematics_pos_##name }

Family family_of(int model) {
    switch (model) {
        case 1:
            return FAMILY_OF(zk75);
        case 3:
            return FAMILY_OF(zkl63_2);
        case 4:
            return FAMILY_OF(zkl63_3);
        case 5:
        case 6:
        case 8:
            return FAMILY_OF(orb6);
        case 7:
            return FAMILY_OF(tau7);
        default:
            return FAMILY_OF(zk65);
    }
}

// A frame within a metre, turned at will: x, y, z, rx, ry, rz.
struct RandomFrame {
    float params[6];
    explicit RandomFrame(std::mt19937& generator) {
        std::uniform_real_distribution<float> metres(-0.57f, 0.57f), radians(-3.1f, 3.1f);
        for (int i = 0; i < 6; ++i) params[i] = i < 3 ? metres(generator) : radians(generator);
    }
    KDL::Frame frame() const {
        return {KDL::Rotation::RPY(params[3], params[4], params[5]), KDL::Vector(params[0], params[1], params[2])};
    }
    const float* angles() const { return params + 3; }
};

class EveryArm : public testing::TestWithParam<Arm> {
 protected:
    void SetUp() override { ASSERT_EQ(libalgo_set_robot_and_sensor_type(GetParam().model, GetParam().sensor), 0); }

    KDL::Frame base_T_flange(const Joints& q) {
        KDL::JntArray joints(chain_.getNrOfJoints());
        for (unsigned i = 0; i < joints.rows(); ++i) joints(i) = q[i];
        KDL::Frame f;
        EXPECT_GE(KDL::ChainFkSolverPos_recursive(chain_).JntToCart(joints, f), 0);
        return f;
    }

    std::mt19937 generator_{20};
    KDL::Chain chain_ = kdl_chain(GetParam());
};

TEST_P(EveryArm, AgreesWithKdlInEveryFrame) {
    for (int round = 0; round < 300; ++round) {
        const Joints q = random_joints(GetParam(), generator_);
        const RandomFrame tool(generator_), work(generator_), mounting(generator_);
        libalgo_set_tool_cs_params(tool.params);
        libalgo_set_work_cs_params(work.params);
        libalgo_set_robot_install_angle(mounting.angles());

        const KDL::Frame flange = base_T_flange(q);
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
        if (HasFailure()) FAIL() << "in round " << round;
    }
}

TEST_P(EveryArm, ThreeFunctionsOfAFamilyAgreeToTheLastBit) {
    const Family family = family_of(GetParam().model);
    for (int round = 0; round < 300; ++round) {
        const Joints q = random_joints(GetParam(), generator_);
        const Matrix whole = forward_kinematics_e(q.data());
        Matrix rotation = whole;
        for (int i = 0; i < 3; ++i) rotation.m[i][3] = 0;
        const Position position = {whole.m[0][3], whole.m[1][3], whole.m[2][3]};

        const Matrix t = family.transform(q.data()), r = family.rotation(q.data());
        const Position p = family.position(q.data());
        EXPECT_EQ(std::memcmp(&t, &whole, sizeof t), 0);
        EXPECT_EQ(r.rows, 4);
        EXPECT_EQ(r.m[3][3], 1);
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 4; ++j) EXPECT_EQ(r.m[i][j], rotation.m[i][j]);
        }
        EXPECT_EQ(std::memcmp(&p, &position, sizeof p), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(, EveryArm, testing::ValuesIn(arms()), [](const auto& arm) {
    return "Model" + std::to_string(arm.param.model) + "Sensor" + std::to_string(arm.param.sensor);
});

// Which of the DH parameters of joints 1 to 7 each model's kinematics reads.
struct ReadParameters {
    int model;
    const char *d, *a, *offset;
};

class Dh : public testing::TestWithParam<ReadParameters> {};

TEST_P(Dh, OnlyTheParametersOfTheFamilyMoveTheFlange) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(GetParam().model, 0), 0);
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

INSTANTIATE_TEST_SUITE_P(
    , Dh,
    testing::Values(ReadParameters{0, "146", "3", "123456"}, ReadParameters{1, "1357", "", ""},
                    ReadParameters{3, "146", "234", "123456"}, ReadParameters{4, "1246", "234", "123456"},
                    ReadParameters{5, "1456", "234", "123456"}, ReadParameters{6, "1456", "234", "123456"},
                    ReadParameters{7, "1357", "457", "1234567"}, ReadParameters{8, "1456", "234", "123456"},
                    ReadParameters{9, "146", "3", "123456"}),
    [](const auto& p) { return "Model" + std::to_string(p.param.model); });

TEST(ForwardKinematics, WithoutAnArmIsThePureRotationOfTheFirstFamily) {
    for (const int model : {2, 10, 256 + 7, -1}) {
        libalgo_init();
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(model, 0), -1);
        Arm none = arm_of(0, 0);
        none.d.fill(0);
        none.a.fill(0);
        none.offset.fill(0);
        const float q[8] = {0.3f, 0.5f, -0.7f, 0.9f, 1.1f, -1.3f};
        KDL::JntArray joints(6);
        for (int i = 0; i < 6; ++i) joints(i) = q[i];
        KDL::Frame expected;
        KDL::ChainFkSolverPos_recursive(kdl_chain(none)).JntToCart(joints, expected);
        // The model number counts as a byte, so 263 is read as 7; its lengths are zero all the same.
        if (static_cast<uint8_t>(model) != 7) expect_close(forward_kinematics_e(q), expected);
        for (int i = 0; i < 3; ++i) EXPECT_EQ(forward_kinematics_e(q).m[i][3], 0);
    }
}

TEST(ForwardKinematics, FamiliesWorkWithTheModelOfTheLastWholeArmCall) {
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

TEST(ForwardKinematics, NanPassesThrough) {
    for (const int model : {0, 1, 3, 4, 5, 7}) {
        libalgo_set_robot_and_sensor_type(model, 0);
        const float q[8] = {0.1f, 0.2f, NAN, 0.4f, 0.5f, 0.6f, 0.7f};
        const Matrix t = forward_kinematics_e(q);
        EXPECT_TRUE(std::isnan(t.m[0][0]) && std::isnan(t.m[0][3])) << model;
        for (int i = 0; i < 4; ++i) EXPECT_EQ(t.m[3][i], i == 3 ? 1 : 0) << model;
    }
}

}  // namespace
}  // namespace zk::test
