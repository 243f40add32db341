// What a model describes, and forward kinematics.
#include <cmath>

#include "arm_model/owned_model.h"
#include "zk/algorithm.h"
#include "zk/model.h"

namespace zk::test {
namespace {

TEST(Model, ExistsForThePairsThatHaveGeometry) {
    for (const Arm& arm : arms()) {
        const Owned model = new_model(arm.model, arm.sensor);
        EXPECT_EQ(model != nullptr, arm.model != 9) << arm;
        EXPECT_EQ(ZK_Model_Joint_Count(model.get()), arm.model == 9 ? 0 : arm.joints);
    }
    for (const auto& [model, sensor] : {std::pair{-1, 0}, {2, 0}, {10, 0}, {0, 3}, {6, 1}, {7, -1}}) {
        EXPECT_EQ(ZK_Model_New(model, sensor), nullptr);
    }
    EXPECT_STREQ(ZK_Model_Name(new_model(8).get()), "parallel-axis 63");
    EXPECT_STREQ(ZK_Model_Name(nullptr), "");
    EXPECT_EQ(ZK_Model_Clone(nullptr), nullptr);
}

TEST(Model, ReturnsWhatWasSet) {
    const Cell cell(0);
    const Owned copy = owned(ZK_Model_Clone(cell.model.get()));
    Pose tool, work;
    float x, y, z, min[6], max[6], speed[6], acceleration[6];
    ASSERT_EQ(ZK_Model_Get_Tool(copy.get(), &tool), ZK_OK);
    ASSERT_EQ(ZK_Model_Get_Work_Frame(copy.get(), &work), ZK_OK);
    ASSERT_EQ(ZK_Model_Get_Mounting(copy.get(), &x, &y, &z), ZK_OK);
    expect_pose_near(tool, to_kdl(cell.tool), 1e-6);
    expect_pose_near(work, to_kdl(cell.work), 1e-6);
    EXPECT_NEAR(x, 20, 1e-5);
    EXPECT_NEAR(y, 35, 1e-5);
    EXPECT_NEAR(z, -50, 1e-5);
    const float lower[6] = {-1, -2, -3, -4, -5, -3600}, upper[6] = {1, 2.1f, 3, 4, 5, 3600};
    ASSERT_EQ(ZK_Model_Set_Joint_Limits(copy.get(), lower, upper), ZK_OK);
    ASSERT_EQ(ZK_Model_Get_Joint_Limits(copy.get(), min, max), ZK_OK);
    EXPECT_TRUE(std::equal(min, min + 6, lower) && std::equal(max, max + 6, upper));
    EXPECT_EQ(ZK_Model_Set_Joint_Limits(copy.get(), upper, lower), ZK_BAD_ARGUMENT);
    EXPECT_EQ(ZK_Model_Set_Mounting(copy.get(), NAN, 0, 0), ZK_BAD_ARGUMENT);
    ASSERT_EQ(ZK_Model_Get_Speed_Limits(copy.get(), speed, acceleration), ZK_OK);
    EXPECT_NEAR(speed[0], 180, 1e-3);
    EXPECT_NEAR(acceleration[5], 1000, 1e-2);
    ASSERT_EQ(ZK_Model_Get_Joint_Limits(cell.model.get(), min, max), ZK_OK);
    EXPECT_EQ(max[0], 178);  // the copy is another model
}

TEST(Model, CopiesTheProcessWideModel) {
    EXPECT_EQ(ZK_Model_Copy_Current(), nullptr);  // none is selected yet
    Algo_Init_Sys_Data(5, 1);
    Algo_Set_Angle(10, 20, 30);
    FrameRec tool{}, work{};
    tool.pose = {{.1f, 0, .2f}, {}, {0, .5f, 0}};
    work.pose = {{0, .3f, 0}, {}, {.1f, 0, 1}};
    Algo_Set_ToolFrame(&tool);
    Algo_Set_WorkFrame(&work);
    DhParams dh = robot.dh;
    dh.d[0] += .01f;
    dh.offset[1] += .02f;
    libalgo_set_dh_params(&dh);
    const Owned copy = owned(ZK_Model_Copy_Current());
    const float joint[6] = {10, -20, 30, 40, 50, 60};
    Pose pose;
    ASSERT_EQ(ZK_Model_Forward(copy.get(), joint, &pose), ZK_OK);
    expect_near(to_kdl(pose), to_kdl(Algo_Forward_Kinematics(joint)), 2e-6);
}

TEST_P(EachModel, ForwardAgreesWithKdl) {
    for (int i = 0; i < 2000 / kShare; ++i) {
        const Joints q = cell.random();
        Pose pose;
        ASSERT_EQ(ZK_Model_Forward(cell.model.get(), q.data(), &pose), ZK_OK);
        expect_pose_near(pose, cell.forward(q), 1e-6);
    }
    for (const float bad : {NAN, INFINITY}) {
        Joints q{};
        q[joints - 1] = bad;
        Pose pose;
        EXPECT_EQ(ZK_Model_Forward(cell.model.get(), q.data(), &pose), ZK_BAD_ARGUMENT);
    }
}

// Against the way that the tool goes when one joint turns a little.
TEST_P(EachModel, JacobianIsTheChangeOfThePose) {
    constexpr float kAside = 0.5f;
    const KDL::Rotation base =
        (to_kdl(cell.work).Inverse() * KDL::Frame(KDL::Rotation::RPY(M_PI / 9, M_PI * 7 / 36, -M_PI * 5 / 18))).M;
    for (int n = 0; n < 20; ++n) {
        const Joints q = cell.random();
        double in_base[42], in_tool[42];
        ASSERT_EQ(ZK_Model_Jacobian(cell.model.get(), q.data(), ZK_BASE_AXES, in_base), ZK_OK);
        ASSERT_EQ(ZK_Model_Jacobian(cell.model.get(), q.data(), ZK_TOOL_AXES, in_tool), ZK_OK);
        const KDL::Rotation to_tool = cell.forward(q).M.Inverse();
        for (int i = 0; i < joints; ++i) {
            Joints before = q, after = q;
            before[i] -= kAside;
            after[i] += kAside;
            const KDL::Twist work =
                KDL::diff(cell.forward(before), cell.forward(after)) / ((after[i] - before[i]) * M_PI / 180);
            const KDL::Twist expected_base = base.Inverse() * work, expected_tool = to_tool * work;
            for (int k = 0; k < 6; ++k) {
                EXPECT_NEAR(in_base[k * joints + i], expected_base(k), 1e-4);
                EXPECT_NEAR(in_tool[k * joints + i], expected_tool(k), 1e-4);
            }
        }
    }
}

// The determinant of six columns of a Jacobian, by elimination.
double determinant(const double* J, int columns, int left_out) {
    double m[6][6], product = 1;
    for (int i = 0; i < 6; ++i) {
        for (int j = 0; j < 6; ++j) m[i][j] = J[i * columns + (j < left_out ? j : j + 1)];
    }
    for (int k = 0; k < 6; ++k) {
        int pivot = k;
        for (int i = k; i < 6; ++i) pivot = std::fabs(m[i][k]) > std::fabs(m[pivot][k]) ? i : pivot;
        std::swap(m[k], m[pivot]);
        product *= m[k][k];
        for (int i = k + 1; i < 6; ++i) {
            for (int j = 5; j >= k; --j) m[i][j] -= m[i][k] / m[k][k] * m[k][j];
        }
    }
    return product;
}

// By the theorem of Cauchy and Binet: the root of the sum of squares of all determinants of six columns.
TEST_P(EachModel, ManipulabilityIsTheVolumeOfTheJacobian) {
    for (int n = 0; n < 20; ++n) {
        const Joints q = cell.random();
        double J[42], value, squares = 0;
        ASSERT_EQ(ZK_Model_Jacobian(cell.model.get(), q.data(), ZK_TOOL_AXES, J), ZK_OK);
        ASSERT_EQ(ZK_Model_Manipulability(cell.model.get(), q.data(), &value), ZK_OK);
        for (int left_out = 6; left_out >= (joints == 7 ? 0 : 6); --left_out) {
            squares += std::pow(determinant(J, joints, left_out), 2);
        }
        EXPECT_NEAR(value, std::sqrt(squares), 1e-9);
    }
}

TEST_P(EachModel, LimitDistanceNamesTheNearestLimit) {
    Joints q{};
    for (int i = 0; i < joints; ++i) q[i] = (cell.kdl.arm.min[i] + cell.kdl.arm.max[i]) / 2.f;
    q[2] = cell.kdl.arm.min[2] + 0.5f;
    float distance;
    int joint;
    ASSERT_EQ(ZK_Model_Limit_Distance(cell.model.get(), q.data(), &distance, &joint), ZK_OK);
    EXPECT_EQ(distance, 0.5f);
    EXPECT_EQ(joint, 3);
    q[4] = cell.kdl.arm.max[4] + 1.0f;
    ASSERT_EQ(ZK_Model_Limit_Distance(cell.model.get(), q.data(), &distance, nullptr), ZK_OK);
    EXPECT_EQ(distance, -1);
}

// For the tests of all files.
INSTANTIATE_TEST_SUITE_P(Models, EachModel, ::testing::ValuesIn(kModels),
                         [](const auto& info) { return "model" + std::to_string(info.param); });

}  // namespace
}  // namespace zk::test
