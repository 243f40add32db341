// Forward kinematics of the six-joint arm: the library, KDL's recursive solver for the same chain, and a bare closed
// form (six sincosf and the products) to show what the arithmetic itself costs.
#include <benchmark/benchmark.h>
#include <math.h>

#include <array>
#include <kdl/chain.hpp>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/jntarray.hpp>
#include <random>

#include "zk_base.h"

namespace {

using Joints = std::array<float, 8>;

const std::array<Joints, 256>& postures() {
    static const auto made = [] {
        std::mt19937 random(1);
        std::uniform_real_distribution<float> angle(-2, 2);
        std::array<Joints, 256> postures{};
        for (Joints& joints : postures) std::generate_n(joints.begin(), 6, [&] { return angle(random); });
        return postures;
    }();
    return made;
}

const DhParams& dh() {
    static const DhParams made = [] {
        libalgo_set_robot_and_sensor_type(0, 0);
        forward_kinematics_e(postures()[0].data());
        DhParams dh;
        libalgo_get_dh_value(&dh);
        return dh;
    }();
    return made;
}

// Rz(1) | Rx(90) Rz(2) | Tx(a3) Rz(3) | Rx(90) Rz(4) Tz(d4) | Rx(-90) Rz(5) | Rx(90) Rz(6) Tz(d6)
Matrix closed_form(const float* q, const DhParams& dh) {
    float s1, c1, s2, c2, s23, c23, s4, c4, s5, c5, s6, c6;
    const float t2 = q[1] + dh.offset[1];
    sincosf(q[0] + dh.offset[0], &s1, &c1);
    sincosf(t2, &s2, &c2);
    sincosf(t2 + q[2] + dh.offset[2], &s23, &c23);
    sincosf(q[3] + dh.offset[3], &s4, &c4);
    sincosf(q[4] + dh.offset[4], &s5, &c5);
    sincosf(q[5] + dh.offset[5], &s6, &c6);
    const float x[3] = {c1 * c23, s1 * c23, s23};
    const float y[3] = {s1, -c1, 0};
    const float z[3] = {c1 * s23, s1 * s23, -c23};
    const float p[3] = {c1 * c2 * dh.a[2], s1 * c2 * dh.a[2], s2 * dh.a[2] + dh.d[0]};
    Matrix t{4, 4, {}};
    for (int i = 0; i < 3; ++i) {
        const float x4 = c4 * x[i] + s4 * y[i], y4 = c4 * y[i] - s4 * x[i];
        const float x5 = c5 * x4 - s5 * z[i], z6 = s5 * x4 + c5 * z[i];
        t.m[i][0] = c6 * x5 + s6 * y4;
        t.m[i][1] = c6 * y4 - s6 * x5;
        t.m[i][2] = z6;
        t.m[i][3] = p[i] + dh.d[3] * z[i] + dh.d[5] * z6;
    }
    t.m[3][3] = 1;
    return t;
}

KDL::Chain kdl_chain() {
    const auto link = [](int i) {
        return KDL::Frame(KDL::Rotation::RotX(dh().alpha[i]), {0, 0, 0}) * KDL::Frame({dh().a[i], 0, 0});
    };
    KDL::Chain chain;
    chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::None), link(0)));
    for (int i = 0; i < 6; ++i) {
        const KDL::Frame lift({0, 0, dh().d[i]});
        chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::RotZ), i < 5 ? lift * link(i + 1) : lift));
    }
    return chain;
}

template <class Solve>
void over_postures(benchmark::State& state, Solve solve) {
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(solve(postures()[i].data()));
        i = (i + 1) % postures().size();
    }
}

void bare_closed_form(benchmark::State& state) {
    const DhParams copy = dh();
    over_postures(state, [&](const float* q) { return closed_form(q, copy); });
}
BENCHMARK(bare_closed_form);

void family_zk65(benchmark::State& state) {
    dh();
    over_postures(state, forward_kinematics_e_zk65);
}
BENCHMARK(family_zk65);

void flange(benchmark::State& state) {
    dh();
    over_postures(state, forward_kinematics_e);
}
BENCHMARK(flange);

void pose_with_frames(benchmark::State& state) {
    dh();
    const float tool[6] = {0.1f, 0, 0.2f, 0.3f, 0, 0.1f}, work[6] = {0.5f, 0.1f, 0, 0, 0.2f, 1},
                mounting[3] = {0.3f, 0.2f, 0.1f};
    libalgo_set_tool_cs_params(tool);
    libalgo_set_work_cs_params(work);
    libalgo_set_robot_install_angle(mounting);
    over_postures(state, forward_kinematics);
}
BENCHMARK(pose_with_frames);

// In degrees, from here on; a turn more or less in a joint costs nothing.
void algo(benchmark::State& state) {
    Algo_Init_Sys_Data(0, 0);
    over_postures(state, Algo_Forward_Kinematics);
}
BENCHMARK(algo);

void owned_model(benchmark::State& state) {
    ZK_Model* const model = ZK_Model_New(0, 0);
    over_postures(state, [model](const float* q) {
        Pose pose;
        ZK_Model_Forward(model, q, &pose);
        return pose;
    });
    ZK_Model_Free(model);
}
BENCHMARK(owned_model);

template <class Finish>
void over_kdl(benchmark::State& state, Finish finish) {
    const KDL::Chain chain = kdl_chain();
    KDL::ChainFkSolverPos_recursive solver(chain);
    KDL::JntArray joints(6);
    over_postures(state, [&](const float* q) {
        for (int i = 0; i < 6; ++i) joints(i) = q[i] + dh().offset[i];
        KDL::Frame frame;
        solver.JntToCart(joints, frame);
        return finish(frame);
    });
}

void kdl_recursive(benchmark::State& state) {
    over_kdl(state, [](const KDL::Frame& frame) { return frame; });
}
BENCHMARK(kdl_recursive);

// What the poses of the others hold too.
void kdl_both_orientations(benchmark::State& state) {
    over_kdl(state, [](const KDL::Frame& frame) {
        std::array<double, 7> pose;
        frame.M.GetQuaternion(pose[0], pose[1], pose[2], pose[3]);
        frame.M.GetRPY(pose[4], pose[5], pose[6]);
        return std::pair(frame.p, pose);
    });
}
BENCHMARK(kdl_both_orientations);

}  // namespace
