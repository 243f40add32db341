// Inverse kinematics of every arm, each beside KDL's numeric solver at its best on the same targets from the same
// seeds. `solved` is the share of the targets that an answer met within a tenth of a millimetre and a milliradian.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolverpos_lma.hpp>
#include <random>

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
    Joints seed;
    Pose pose;
    KDL::Frame frame;
};

// Postures within 95 % of the limits, seeds within 0.1 rad of them.
class Tasks {
 public:
    explicit Tasks(int model)
        : arm(zk::test::arm_of(model, 0)), chain(merged(zk::test::kdl_chain(arm))), forward_(chain) {
        libalgo_set_robot_and_sensor_type(model, 0);
        std::mt19937 random(7);
        std::uniform_real_distribution<float> share(0.025f, 0.975f), aside(-0.1f, 0.1f);
        for (Task& task : tasks) {
            Joints joints{};
            task.seed = {};
            for (int i = 0; i < arm.joints; ++i) {
                const float low = radians(arm.min[i]), high = radians(arm.max[i]);
                joints[i] = low + share(random) * (high - low);
                task.seed[i] = std::clamp(joints[i] + aside(random), low, high);
            }
            task.pose = forward_kinematics(joints.data());
            task.frame = frame_of(joints);
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

void library(benchmark::State& state, int model, float range) {
    Tasks tasks(model);
    ikine_set_solution_range_zk75(range);
    over_tasks(state, tasks, [](const Task& task, Joints& answer) {
        return inverse_kinematics(task.seed.data(), &task.pose, answer.data(), 2);
    });
}

void kdl_lma(benchmark::State& state, int model) {
    Tasks tasks(model);
    KDL::ChainIkSolverPos_LMA solver(tasks.chain, Eigen::Matrix<double, 6, 1>::Ones(), 1e-5);
    KDL::JntArray joints(tasks.arm.joints);
    over_tasks(state, tasks, [&](const Task& task, Joints& answer) {
        const int status = solver.CartToJnt(tasks.angles(task.seed), task.frame, joints);
        for (int i = 0; i < tasks.arm.joints; ++i) answer[i] = static_cast<float>(joints(i));
        return status;
    });
}

constexpr float kNarrow = 0.013f, kWide = 3.14f;
BENCHMARK_CAPTURE(library, model_0, 0, kNarrow);
BENCHMARK_CAPTURE(kdl_lma, model_0, 0);
BENCHMARK_CAPTURE(library, model_3, 3, kNarrow);
BENCHMARK_CAPTURE(kdl_lma, model_3, 3);
BENCHMARK_CAPTURE(library, model_4, 4, kNarrow);
BENCHMARK_CAPTURE(kdl_lma, model_4, 4);
BENCHMARK_CAPTURE(library, model_5, 5, kNarrow);
BENCHMARK_CAPTURE(kdl_lma, model_5, 5);
BENCHMARK_CAPTURE(library, model_6, 6, kNarrow);
BENCHMARK_CAPTURE(kdl_lma, model_6, 6);
BENCHMARK_CAPTURE(library, model_8, 8, kNarrow);
BENCHMARK_CAPTURE(kdl_lma, model_8, 8);
BENCHMARK_CAPTURE(library, model_1_narrow, 1, kNarrow);
BENCHMARK_CAPTURE(library, model_1_wide, 1, kWide);
BENCHMARK_CAPTURE(kdl_lma, model_1, 1);
BENCHMARK_CAPTURE(library, model_7, 7, kNarrow);
BENCHMARK_CAPTURE(kdl_lma, model_7, 7);

}  // namespace
