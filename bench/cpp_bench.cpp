// What the C++ interface adds to the cheapest calls of the C interface: each of them both ways.
#include <benchmark/benchmark.h>

#include "support/simulator_process.h"
#include "zk/arm.hpp"

namespace {

using namespace zk::literals;

const zk::Joints kJoints{10_deg, -20_deg, 60_deg, 15_deg, 50_deg, 20_deg};

// A connection whose controller pushes its state.
const zk::Arm& arm() {
    static const zk::test::SimulatorProcess simulator;
    static const zk::Arm connected("127.0.0.1", simulator.port());
    static const zk::State first = connected.states().next(10_s).value();
    benchmark::DoNotOptimize(first);
    return connected;
}

void get_state_c(benchmark::State& state) {
    const ArmSocket handle = arm().handle();
    for (auto _ : state) {
        ZK_State record;
        if (ZK_Get_State(handle, &record, 0) != ZK_OK) return state.SkipWithError("no state");
        benchmark::DoNotOptimize(record);
    }
}
BENCHMARK(get_state_c);

void get_state_cpp(benchmark::State& state) {
    const zk::StateStream states(arm());
    for (auto _ : state) {
        zk::Result<zk::State> record = states.latest();
        if (!record) return state.SkipWithError("no state");
        benchmark::DoNotOptimize(record);
    }
}
BENCHMARK(get_state_cpp);

void forward_c(benchmark::State& state) {
    const zk::Model model("ZK65-B");
    const std::array<float, 7> joint = kJoints.to_c();
    for (auto _ : state) {
        Pose pose;
        if (ZK_Model_Forward(model.get(), joint.data(), &pose) != ZK_OK) return state.SkipWithError("no pose");
        benchmark::DoNotOptimize(pose);
    }
}
BENCHMARK(forward_c);

void forward_cpp(benchmark::State& state) {
    const zk::Model model("ZK65-B");
    for (auto _ : state) {
        zk::Result<zk::Pose> pose = model.forward(kJoints);
        if (!pose) return state.SkipWithError("no pose");
        benchmark::DoNotOptimize(pose);
    }
}
BENCHMARK(forward_cpp);

void forward_by_call(benchmark::State& state) {
    const zk::Model model("ZK65-B");
    const std::array<float, 7> joint = kJoints.to_c();
    for (auto _ : state) {
        Pose pose;
        if (!zk::call<ZK_Model_Forward>(model.get(), joint.data(), &pose)) return state.SkipWithError("no pose");
        benchmark::DoNotOptimize(pose);
    }
}
BENCHMARK(forward_by_call);

}  // namespace
