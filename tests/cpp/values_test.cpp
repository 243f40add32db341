// Values of the C++ interface that need no arm: units, geometry, results, models.
#include <Eigen/Geometry>
#include <functional>
#include <random>

#include "cpp/standard.h"
#include "zk/algorithm.h"
#include "zk/arm.hpp"

namespace {

using namespace zk::literals;
using zk::Angle, zk::Length, zk::Percent, zk::Rotation;

static_assert(!std::is_invocable_v<std::plus<>, Angle, Length> && !std::is_invocable_v<std::plus<>, Angle, double> &&
              !std::is_invocable_v<std::less<>, Length, Percent> && !std::is_convertible_v<double, Angle> &&
              !std::is_convertible_v<Angle, double> && !std::is_constructible_v<zk::Joints, double, double>);
static_assert(300_mm == 0.3_m && 2_s == 2000_ms && -(3_rad - 0.5 * 2_rad) / 2 == -1_rad && abs(-1_m) == 1_m &&
              90_deg / 180_deg == 0.5 && 1_deg < 1_rad && 20_percent >= zk::percent(20));
static_assert(zk::milliseconds_of(std::chrono::hours(1000)) == INT32_MAX && zk::milliseconds_of(200_ms) == 200);
static_assert(noexcept(zk::Arm(std::declval<zk::Arm>())) && !std::is_copy_constructible_v<zk::Arm> &&
              !std::is_copy_constructible_v<zk::Model> && !std::is_copy_constructible_v<zk::Move>);

TEST(SUITE(Values), DegreesArriveAsTheyWereWritten) {
    for (int i = -3600; i <= 3600; ++i) {
        const float tenth = static_cast<float>(i) / 10;
        EXPECT_EQ(zk::Joints(zk::degrees(i / 10.0)).to_c()[0], tenth);
    }
    EXPECT_EQ(zk::Joints::from_degrees(std::vector<int>(8)).size(), 0U);
    const zk::Joints joints = zk::Joints::from_radians(std::array<double, 6>{1, 2, 3, 4, 5, 6});
    EXPECT_EQ(joints.size(), 6U);
    EXPECT_EQ(joints[5], 6_rad);
    EXPECT_EQ(joints, zk::Joints(1_rad, 2_rad, 3_rad, 4_rad, 5_rad, 6_rad));
}

TEST(SUITE(Values), PosesAgreeWithTheLibraryAndWithEigen) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> angle(-3.1, 3.1), metre(-1, 1);
    const auto any = [&] {
        return zk::Pose(
            {zk::metres(metre(random)), zk::metres(metre(random)), zk::metres(metre(random))},
            Rotation::from_euler(zk::radians(angle(random)), zk::radians(angle(random)), zk::radians(angle(random))));
    };
    for (int i = 0; i < 1000; ++i) {
        const zk::Pose a = any(), b = any();
        const auto eigen = a.to<Eigen::Isometry3d>();
        EXPECT_TRUE(
            (a * b.inverse()).to<Eigen::Isometry3d>().isApprox(eigen * b.to<Eigen::Isometry3d>().inverse(), 1e-12));
        const Eigen::Quaterniond turn(
            Eigen::AngleAxisd(a.rotation.angle().radians(), Eigen::Vector3d::Map(a.rotation.axis().data())));
        EXPECT_TRUE(turn.isApprox(Eigen::Quaterniond(eigen.linear()), 1e-9) ||
                    turn.coeffs().isApprox(-Eigen::Quaterniond(eigen.linear()).coeffs(), 1e-9));
        EXPECT_LT(Rotation::from(turn).angle_to(a.rotation), 1e-7_rad);
        EXPECT_LT(Rotation::about(a.rotation.axis(), a.rotation.angle()).angle_to(a.rotation), 1e-7_rad);
        const Eigen::Vector3d point(1, 2, 3), there = eigen * point;
        EXPECT_TRUE((a * zk::Position::from(point)).to<Eigen::Vector3d>().isApprox(there, 1e-12));

        const ::Pose c = a.to_c();
        const Matrix library = Algo_Pos2Matrix(c);
        for (const ZK_Orientation by : {ZK_BY_EULER, ZK_BY_QUATERNION}) {
            const Rotation::Matrix ours = zk::Pose(c, by).rotation.matrix();
            for (size_t row = 0; row < 3; ++row) {
                for (size_t column = 0; column < 3; ++column)
                    EXPECT_NEAR(ours[row][column], static_cast<double>(library.m[row][column]), 2e-6);
            }
        }
        EXPECT_LT(zk::Pose::from(eigen).rotation.angle_to(a.rotation), 1e-7_rad);
    }
    // Half turns take each branch of the conversion from a matrix; upright poses are those without a unique rx and rz.
    for (const Rotation& odd :
         {Rotation(), Rotation::about_x(180_deg), Rotation::about_y(180_deg), Rotation::about_z(180_deg),
          Rotation::from_euler(30_deg, 90_deg, 40_deg), Rotation::from_euler(30_deg, -90_deg, 40_deg)}) {
        EXPECT_LT(Rotation::from_matrix(odd.matrix()).angle_to(odd), 1e-7_rad);
        EXPECT_LT(Rotation::from_euler(odd.euler()).angle_to(odd), 1e-7_rad);
    }
    const zk::Pose down({0.4_m, 0_m, 0.3_m}, Rotation::about_x(180_deg));
    EXPECT_NEAR(down.moved(0_m, 0_m, 50_mm).position.z.metres(), 0.25, 1e-12);
    EXPECT_NEAR(down.shifted(0_m, 0_m, 50_mm).position.z.metres(), 0.35, 1e-12);
    EXPECT_NEAR(down.turned(Rotation::about_z(90_deg)).rotation.euler().rz.degrees(), -90, 1e-9);
}

TEST(SUITE(Values), OneFailureServesThoseWithExceptionsAndThoseWithout) {
    const zk::Result<int> good = 3, bad = zk::Unexpected(zk::make_error(ZK_REFUSED, "Movej_Cmd"));
    EXPECT_EQ(good.value() + good.value_or(0) + *good + bad.value_or(1), 10);
    const zk::Result<void> done, refused = zk::Unexpected(zk::make_error(ZK_REFUSED, "Movej_Cmd", "the arm is off"));
    EXPECT_TRUE(done && good && !bad && !refused);
    EXPECT_NO_THROW(done.value());
    for (const std::function<void()>& call :
         std::initializer_list<std::function<void()>>{[&] { (void)bad.value(); }, [&] { refused.value(); }}) {
        std::string what, message;
        try {
            call();
        } catch (const std::exception& error) {
            what = error.what();
        }
        try {
            call();
        } catch (const zk::Error& error) {
            message = error.message();
            EXPECT_EQ(error.status, ZK_REFUSED);
        }
        EXPECT_EQ(what, message);
        EXPECT_CONTAINS(what, "Movej_Cmd: ");
        EXPECT_CONTAINS(what, "Get_Arm_Power_State");
    }
    EXPECT_THROW(refused.value(), zk::BadResult);
#if !defined(__cpp_lib_expected) || __cpp_lib_expected >= 202211
    const auto half = [](int value) -> zk::Result<double> { return value / 2.0; };
    EXPECT_EQ(good.and_then(half).transform([](double value) { return value + 1; }).value(), 2.5);
    EXPECT_EQ(bad.and_then(half).error().status, ZK_REFUSED);
    EXPECT_EQ(bad.or_else([](const zk::Error& error) { return zk::Result<int>(error.status); }).value(), ZK_REFUSED);
    EXPECT_TRUE(done.and_then([&] { return good; }).transform([](int) {}));
#endif
}

TEST(SUITE(Values), CallsCheckTheirNumbers) {
    const zk::Joints joints{0_deg, 0_deg, 0_deg, 0_deg, 0_deg, 0_deg};
    for (const int speed : {-1, 256}) {
        const zk::Result<void> result = zk::call<Movej_Cmd>(1000, joints, speed, 0, 0, true);
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error().status, ZK_BAD_ARGUMENT);
        EXPECT_STREQ(result.error().command, "Movej_Cmd");
    }
    EXPECT_EQ(zk::call<Get_Joint_Degree>(1000, std::array<float, 7>().data()).error().status, ZK_NOT_CONNECTED);
    EXPECT_CONTAINS(zk::call<ZK_Wait_Idle>(1000, 0).error().text, "0 ms") << "what ZK_Failure says";
}

TEST(SUITE(Values), ModelsComputeAsThoseOfTheInterface) {
    const std::pair<const char*, const char*> arms[] = {{"ZK65-B", "65"},
                                                        {"ZK75-6F", "75"},
                                                        {"63-ZF", "63"},
                                                        {"ORB65-B", "parallel-axis 65"},
                                                        {"62-B", "parallel-axis 62"},
                                                        {"72-B", "72"},
                                                        {"ORB63-6F", "parallel-axis 63"}};
    for (const auto& [name, plain_name] : arms) {
        zk::Model model(name);
        EXPECT_EQ(model.name(), plain_name);
        const std::vector<double> middle{10, 20, 30, 40, 50, 60, 70};
        const zk::Joints at = zk::Joints::from_degrees(
            std::vector<double>(middle.begin(), middle.begin() + static_cast<std::ptrdiff_t>(model.joint_count())));
        ::Pose c;
        ASSERT_EQ(ZK_Model_Forward(model.get(), at.to_c().data(), &c), 0);
        const zk::Pose pose = model.forward(at).value();
        EXPECT_LT((pose.position - zk::Pose(c).position).norm(), 1e-6_m);
        EXPECT_LT(pose.rotation.angle_to(zk::Pose(c).rotation), 1e-5_rad);
        const zk::Joints found = model.inverse(pose, at).value();
        for (size_t i = 0; i < at.size(); ++i) EXPECT_NEAR((found[i] - at[i]).degrees(), 0, 0.01) << name;
        EXPECT_EQ(model.inverse_all(pose, at, 2).value().size(), 2U) << name;

        const std::vector<zk::Pose> path{pose, pose.shifted(0_m, 1_mm, 0_m), pose.shifted(9_m, 0_m, 0_m)};
        EXPECT_EQ(model.follow({path.data(), 2}, at).value().size(), 2U);
        EXPECT_CONTAINS(model.follow(path, at).error().text, "pose 2 of the path: no posture");
        EXPECT_GT(model.manipulability(at).value(), 0);
        const zk::Jacobian jacobian = model.jacobian(at).value();
        zk::Joints moved = at;
        moved.begin()[model.joint_count() - 2] += 1e-3_rad;
        EXPECT_NEAR(model.forward(moved).value().position.z.metres() - pose.position.z.metres(),
                    1e-3 * jacobian[2][model.joint_count() - 2], 1e-6);

        const zk::Model copy = model.clone().value();
        model.set_tool({{0_m, 0_m, 100_mm}, {}}).value();
        EXPECT_LT((model.forward(at).value().position - pose.moved(0_m, 0_m, 100_mm).position).norm(), 1e-6_m);
        EXPECT_EQ(copy.forward(at).value().position, pose.position);
        const zk::JointLimits limits = model.joint_limits().value();
        EXPECT_LT(model.limit_distance(limits.max).value(), 0.001_deg);

        std::vector<float> rows(2 * at.size());
        const std::array<float, 7> degrees = at.to_c();
        for (size_t i = 0; i < rows.size(); ++i) rows[i] = degrees[i % at.size()];
        std::vector<::Pose> poses(2);
        copy.forward(rows, poses, 2).value();
        EXPECT_EQ(poses[1].position.x, c.position.x);
        EXPECT_EQ(copy.forward(rows, {poses.data(), 1}).error().status, ZK_BAD_ARGUMENT);
    }
    EXPECT_EQ(zk::Model::named("62-6F").error().status, ZK_BAD_ARGUMENT);
    EXPECT_THROW(zk::Model("65"), zk::BadResult);
    EXPECT_CONTAINS(zk::Model("62-B").forward({1_deg}).error().text, "1 joints for an arm of 6");
}

}  // namespace
