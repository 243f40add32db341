// Paths, batches and threads.
#include <pthread.h>

#include <cstring>
#include <thread>

#include "arm_model/owned_model.h"

namespace zk::test {
namespace {

// A smooth path of joints about a posture, and its poses.
struct Path {
    std::vector<Joints> truth;
    std::vector<Pose> poses;

    Path(Cell& cell, double amplitude, int steps = 200) {
        const Joints middle = cell.random(0.5);
        std::uniform_real_distribution<double> share(0, 1);
        double rate[7], phase[7];
        for (int i = 0; i < cell.joints(); ++i) {
            rate[i] = M_PI * (1 + share(cell.generator));
            phase[i] = 2 * M_PI * share(cell.generator);
        }
        for (int t = 0; t < steps; ++t) {
            Joints q{};
            for (int i = 0; i < cell.joints(); ++i) {
                q[i] = static_cast<float>(middle[i] + amplitude * std::sin(phase[i] + rate[i] * t / steps));
            }
            truth.push_back(q);
            poses.push_back(to_pose(cell.forward(q)));
        }
    }
};

TEST_P(EachModel, FollowsASmoothPathWithoutAJump) {
    for (int n = 0; n < 30 / kShare + 1; ++n) {
        const Path path(cell, 15);
        const int count = static_cast<int>(path.poses.size());
        std::vector<float> rows(count * joints);
        ZK_FollowResult result;
        ASSERT_EQ(ZK_Model_Follow(cell.model.get(), path.poses.data(), count, path.truth[0].data(), nullptr,
                                  rows.data(), &result),
                  ZK_OK);
        EXPECT_EQ(result.followed, count);
        Joints before = path.truth[0];
        for (int t = 0; t < count; ++t) {
            Joints q{};
            std::copy_n(&rows[t * joints], joints, q.begin());
            ASSERT_TRUE(cell.meets(q, cell.forward(path.truth[t])));
            ASSERT_LT(cell.largest_step(q, before), joints == 7 ? 10.01 : 3) << t;
            before = q;
        }
        // Six joints hold the branch.
        EXPECT_TRUE(joints == 7 || cell.largest_step(before, path.truth.back()) < 0.5);
    }
}

// Through the straight elbow and the aligned wrist, where the closed forms have two answers side by side.
TEST(Follow, PassesThroughSingularPostures) {
    const struct {
        int model, joint;
        float at;
    } passes[] = {{0, 2, 0}, {3, 2, 9.669f}, {4, 2, 9.669f}, {0, 4, 0}, {5, 4, 0}, {5, 2, 0}};
    for (const auto& pass : passes) {
        const Cell cell(pass.model);
        std::vector<Pose> poses;
        std::vector<float> rows(41 * 6);
        const auto truth = [&](int t) {
            Joints q = {10, 20, 40, 30, 50, 60};
            q[pass.joint] = pass.at - 20.3f + t;
            return q;
        };
        for (int t = 0; t < 41; ++t) poses.push_back(to_pose(cell.forward(truth(t))));
        ASSERT_EQ(ZK_Model_Follow(cell.model.get(), poses.data(), 41, truth(0).data(), nullptr, rows.data(), nullptr),
                  ZK_OK);
        for (int t = 0; t < 41; ++t) {
            for (int i = 0; i < 6; ++i) EXPECT_NEAR(rows[t * 6 + i], truth(t)[i], 0.2) << pass.model << ' ' << t;
        }
    }
}

// Where the wrist becomes singular it takes another posture, once, and keeps to that one.
TEST(Follow, GoesOnFromThePostureThatItWrote) {
    const Cell cell(0);
    Joints q = {10, 20, 40, 30, 5, 60};
    double least;
    ASSERT_EQ(ZK_Model_Manipulability(cell.model.get(), q.data(), &least), ZK_OK);
    std::vector<Pose> poses;
    for (q[4] = 10; q[4] > -10; --q[4]) poses.push_back(to_pose(cell.forward(q)));
    const int count = static_cast<int>(poses.size());
    std::vector<Joints> rows(count);
    std::vector<float> written(count * 6);
    ZK_InverseOptions options{};
    options.max_step = 359;
    options.min_manipulability = static_cast<float>(least);
    q[4] = 10;
    ASSERT_EQ(ZK_Model_Follow(cell.model.get(), poses.data(), count, q.data(), &options, written.data(), nullptr),
              ZK_OK);
    int jumps = 0;
    for (int t = 0; t < count; ++t) {
        std::copy_n(&written[t * 6], 6, rows[t].begin());
        if (t > 0 && cell.largest_step(rows[t], rows[t - 1]) > 20) ++jumps;
    }
    EXPECT_EQ(jumps, 1);
}

TEST_P(EachModel, StopsAtThePoseThatCannotBeFollowed) {
    Path path(cell, 5, 20);
    path.poses[12].position.x += 10;
    std::vector<float> rows(20 * joints, 1234);
    ZK_FollowResult result;
    EXPECT_EQ(
        ZK_Model_Follow(cell.model.get(), path.poses.data(), 20, path.truth[0].data(), nullptr, rows.data(), &result),
        ZK_NO_SOLUTION);
    EXPECT_EQ(result.followed, 12);
    EXPECT_EQ(result.refusal.cause, ZK_CAUSE_OUT_OF_REACH);
    EXPECT_NE(rows[12 * joints - 1], 1234);
    EXPECT_EQ(rows[12 * joints], 1234);
    EXPECT_EQ(ZK_Model_Follow(cell.model.get(), nullptr, 0, path.truth[0].data(), nullptr, nullptr, nullptr), ZK_OK);
}

TEST_P(EachModel, BatchesEqualSingleCallsToTheBit) {
    constexpr int kCount = 103;
    std::vector<float> rows, answers(kCount * joints), single(kCount * joints, 7);
    std::vector<Pose> poses(kCount);
    std::vector<int> statuses(kCount);
    for (int n = 0; n < kCount; ++n) {
        const Joints q = cell.random();
        rows.insert(rows.end(), q.begin(), q.begin() + joints);
    }
    rows[20 * joints] = 1e9f;
    ASSERT_EQ(ZK_Model_Forward_Batch(cell.model.get(), rows.data(), kCount, poses.data(), 3), ZK_OK);
    for (int n = 0; n < kCount; ++n) {
        Pose pose;
        ASSERT_EQ(ZK_Model_Forward(cell.model.get(), &rows[n * joints], &pose), ZK_OK);
        EXPECT_EQ(std::memcmp(&pose, &poses[n], sizeof pose), 0) << n;
    }
    rows[20 * joints] = 0;
    poses[50].position.x = 1e9f;
    for (float& angle : rows) angle += 3;  // seeds that are not the answers, near and, for some rows, far
    for (int n = 0; n < kCount; n += 5) std::swap_ranges(&rows[n * joints], &rows[(n + 1) * joints], &rows[2 * joints]);
    for (const int threads : {1, 2, 7}) {
        std::fill(answers.begin(), answers.end(), 7);
        ASSERT_EQ(ZK_Model_Inverse_Batch(cell.model.get(), poses.data(), rows.data(), kCount, nullptr, answers.data(),
                                         statuses.data(), threads),
                  ZK_NO_SOLUTION);
        for (int n = 0; n < kCount; ++n) {
            EXPECT_EQ(statuses[n], ZK_Model_Inverse(cell.model.get(), &poses[n], &rows[n * joints], nullptr,
                                                    &single[n * joints], nullptr));
            EXPECT_EQ(statuses[n], n == 50 ? ZK_NO_SOLUTION : ZK_OK);
        }
        EXPECT_EQ(answers, single);
    }
    EXPECT_EQ(ZK_Model_Forward_Batch(cell.model.get(), rows.data(), kCount, poses.data(), 0), ZK_BAD_ARGUMENT);
    EXPECT_EQ(
        ZK_Model_Inverse_Batch(cell.model.get(), poses.data(), rows.data(), -1, nullptr, answers.data(), nullptr, 1),
        ZK_BAD_ARGUMENT);
}

TEST(Batches, AreWholeWhenNoThreadStarts) {
    const Cell cell(0);
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_getattr_default_np(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, size_t{1} << 46), 0);  // more than there are addresses for
    ASSERT_EQ(pthread_setattr_default_np(&attributes), 0);
    std::vector<float> rows;
    for (int i = 0; i < 60; ++i) rows.push_back(static_cast<float>(i));
    Pose poses[10]{}, pose;
    ASSERT_EQ(ZK_Model_Forward_Batch(cell.model.get(), rows.data(), 10, poses, 4), ZK_OK);
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(ZK_Model_Forward(cell.model.get(), &rows[i * 6], &pose), ZK_OK);
        EXPECT_EQ(poses[i].position.x, pose.position.x) << i;
    }
}

// Two threads a model, each with answers of its own to compare.
TEST(Models, ComputeOnManyThreads) {
    std::vector<std::thread> threads;
    for (const int model : kModels) {
        threads.emplace_back([model] {
            Cell cell(model);
            const auto work = [&cell](Joints q) {
                Pose pose;
                for (int n = 0; n < 50; ++n) {
                    Joints answer{};
                    q[0] += 0.5f;
                    ASSERT_EQ(ZK_Model_Forward(cell.model.get(), q.data(), &pose), ZK_OK);
                    ASSERT_EQ(ZK_Model_Inverse(cell.model.get(), &pose, q.data(), nullptr, answer.data(), nullptr),
                              ZK_OK);
                    ASSERT_LT(cell.largest_step(answer, q), 0.1);
                }
            };
            const Joints q = cell.random(0.7), p = cell.random(0.7);
            std::thread other(work, q);
            work(p);
            other.join();
        });
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace zk::test
