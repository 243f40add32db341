// Inverse kinematics of every arm, each beside KDL's numeric solver at its best on the same targets from the same
// seeds. `solved` is the share of the targets that an answer met within a tenth of a millimetre and a milliradian.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolverpos_lma.hpp>
#include <random>
#include <string>
#include <vector>

#include "support/kdl_arm.h"
#include "support/kdl_frames.h"
#include "zk_base.h"

namespace {

using zk::test::Joints;

// The same chain in as few segments as it has joints, which is how KDL is fastest.
KDL::Chain merged(const KDL::Chain& chain) {
    KDL::Chain result;
    KDL::Frame before = KDL::Frame::Identity();
    for (unsigned i = 0; i < chain.getNrOfSegments();) {
        const KDL::Segment& segment = chain.getSegment(i++);
        KDL::Frame tip = segment.getFrameToTip();
        if (segment.getJoint().getType() == KDL::Joint::None) {
            before = before * tip;
            continue;
        }
        while (i < chain.getNrOfSegments() && chain.getSegment(i).getJoint().getType() == KDL::Joint::None) {
            tip = tip * chain.getSegment(i++).getFrameToTip();
        }
        if (result.getNrOfSegments() == 0 && !KDL::Equal(before, KDL::Frame::Identity())) {
            result.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::None), before));
        }
        result.addSegment(KDL::Segment(segment.getJoint(), tip));
    }
    return result;
}

struct Task {
    Joints seed, seed_degrees;
    Pose pose;
    KDL::Frame frame;
};

// Single targets: postures within 95 % of the limits, seeds within 0.1 rad of them. A path: postures one after another,
// each the seed of the next.
enum class Kind { kSingle, kPath };

class Tasks {
 public:
    explicit Tasks(int model, Kind kind = Kind::kSingle)
        : arm(zk::test::arm_of(model, 0)), chain(merged(zk::test::kdl_chain(arm))), forward_(chain) {
        libalgo_set_robot_and_sensor_type(model, 0);
        std::mt19937 random(7);
        std::uniform_real_distribution<float> share(0.025f, 0.975f), aside(-0.1f, 0.1f);
        Joints joints{};
        for (size_t n = 0; n < tasks.size(); ++n) {
            Task& task = tasks[n];
            task.seed = joints;
            for (int i = 0; i < arm.joints; ++i) {
                const float low = radians(arm.min[i]), high = radians(arm.max[i]);
                if (kind == Kind::kSingle) {
                    joints[i] = low + share(random) * (high - low);
                    task.seed[i] = std::clamp(joints[i] + aside(random), low, high);
                } else {
                    const float turn = 6.2831853f * (n + 1) * (i % 3 + 1) / tasks.size();
                    joints[i] = (low + high) / 2 + (high - low) / 4 * std::sin(turn + i + 1);
                    if (n == 0) task.seed[i] = (low + high) / 2 + (high - low) / 4 * std::sin(i + 1.f);
                }
            }
            task.pose = forward_kinematics(joints.data());
            task.frame = frame_of(joints);
            for (int i = 0; i < arm.joints; ++i) task.seed_degrees[i] = degrees(task.seed[i]);
        }
    }

    KDL::Frame frame_of(const Joints& joints) {
        KDL::Frame frame;
        forward_.JntToCart(angles(joints), frame);
        return frame;
    }

    KDL::JntArray angles(const Joints& joints) const {
        KDL::JntArray angles(arm.joints);
        for (int i = 0; i < arm.joints; ++i) angles(i) = joints[i];
        return angles;
    }

    bool met(const Task& task, const Joints& answer) {
        const KDL::Twist miss = KDL::diff(task.frame, frame_of(answer));
        return miss.vel.Norm() < 1e-4 && miss.rot.Norm() < 1e-3;
    }

    static float radians(int degrees) { return static_cast<float>(degrees * M_PI / 180); }
    static float degrees(float radians) { return static_cast<float>(radians * 180 / M_PI); }

    zk::test::Arm arm;
    KDL::Chain chain;
    std::array<Task, 256> tasks;

 private:
    KDL::ChainFkSolverPos_recursive forward_;
};

// `solve` returns the answer's status, 0 or above for a solution.
template <class Solve>
void over_tasks(benchmark::State& state, Tasks& tasks, Solve solve) {
    int solved = 0;
    for (const Task& task : tasks.tasks) {
        Joints answer{};
        solved += solve(task, answer) >= 0 && tasks.met(task, answer);
    }
    size_t i = 0;
    for (auto _ : state) {
        Joints answer{};
        benchmark::DoNotOptimize(solve(tasks.tasks[i], answer));
        i = (i + 1) % tasks.tasks.size();
    }
    state.counters["solved"] = solved / static_cast<double>(tasks.tasks.size());
}

// Answers in degrees.
template <class Solve>
void in_degrees(benchmark::State& state, Tasks& tasks, Solve solve) {
    over_tasks(state, tasks, [&](const Task& task, Joints& answer) {
        if (solve(task, answer) != 0) return -1;
        for (float& angle : answer) angle = static_cast<float>(angle * M_PI / 180);
        return 0;
    });
}

void algo(benchmark::State& state, int model, bool wide) {
    Tasks tasks(model);
    Algo_Set_Redundant_Parameter_Traversal_Mode(wide);
    in_degrees(state, tasks, [](const Task& task, Joints& answer) {
        return Algo_Inverse_Kinematics(task.seed_degrees.data(), &task.pose, answer.data(), 0);
    });
}

void owned_model(benchmark::State& state, int model, Kind kind) {
    Tasks tasks(model, kind);
    ZK_Model* const owned = ZK_Model_New(model, 0);
    const ZK_InverseOptions options = {ZK_BY_QUATERNION, 0, {}, 0, 0};
    in_degrees(state, tasks, [&](const Task& task, Joints& answer) {
        return ZK_Model_Inverse(owned, &task.pose, task.seed_degrees.data(), &options, answer.data(), nullptr);
    });
    ZK_Model_Free(owned);
}

// All tasks at once; the time is that of one.
void batch(benchmark::State& state, int model, int threads) {
    const Tasks tasks(model);
    constexpr int kCount = 65536;
    ZK_Model* const owned = ZK_Model_New(model, 0);
    std::vector<Pose> poses;
    std::vector<float> seeds, answers(kCount * tasks.arm.joints);
    for (int n = 0; n < kCount; ++n) {
        const Task& task = tasks.tasks[n % tasks.tasks.size()];
        poses.push_back(task.pose);
        seeds.insert(seeds.end(), task.seed_degrees.begin(), task.seed_degrees.begin() + tasks.arm.joints);
    }
    while (state.KeepRunningBatch(kCount)) {
        ZK_Model_Inverse_Batch(owned, poses.data(), seeds.data(), kCount, nullptr, answers.data(), nullptr, threads);
    }
    ZK_Model_Free(owned);
}

void kdl_lma(benchmark::State& state, int model, Kind kind) {
    Tasks tasks(model, kind);
    KDL::ChainIkSolverPos_LMA solver(tasks.chain, Eigen::Matrix<double, 6, 1>::Ones(), 1e-5);
    KDL::JntArray joints(tasks.arm.joints);
    over_tasks(state, tasks, [&](const Task& task, Joints& answer) {
        const int status = solver.CartToJnt(tasks.angles(task.seed), task.frame, joints);
        for (int i = 0; i < tasks.arm.joints; ++i) answer[i] = static_cast<float>(joints(i));
        return status;
    });
}

const bool registered = [] {
    const auto add = [](const char* name, int model, auto run) {
        benchmark::RegisterBenchmark((std::string(name) + "/model_" + std::to_string(model)).c_str(), run);
    };
    for (const int model : {0, 3, 4, 5, 6, 8, 1, 7}) {
        add("kdl_lma", model, [=](auto& state) { kdl_lma(state, model, Kind::kSingle); });
        add("algo", model, [=](auto& state) { algo(state, model, false); });
        add("owned_model", model, [=](auto& state) { owned_model(state, model, Kind::kSingle); });
        if (model == 1) add("algo_wide", model, [=](auto& state) { algo(state, model, true); });
        if (model == 1 || model == 7) {
            add("kdl_lma_path", model, [=](auto& state) { kdl_lma(state, model, Kind::kPath); });
            add("owned_model_path", model, [=](auto& state) { owned_model(state, model, Kind::kPath); });
        }
    }
    for (const int threads : {1, 2}) {
        benchmark::RegisterBenchmark(("batch/threads_" + std::to_string(threads)).c_str(), [=](auto& state) {
            batch(state, 0, threads);
        })->UseRealTime();
    }
    return true;
}();

}  // namespace
