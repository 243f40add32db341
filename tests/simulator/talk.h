// A simulator with one client, and the states that it pushes.
#pragma once

#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/wait.h>

#include <cmath>
#include <functional>
#include <kdl/frames.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/line_client.h"
#include "support/paths.h"
#include "support/simulator_process.h"
#include "support/udp.h"

namespace zk::test {

using Json = nlohmann::json;

using Joints = std::vector<double>;  // degrees

inline Joints plus(Joints joints, double turn) {
    for (double& joint : joints) joint += turn;
    return joints;
}

// As on the wire.
inline std::vector<int> thousandths(const Joints& joints) {
    std::vector<int> wire;
    for (const double joint : joints) wire.push_back(static_cast<int>(std::lround(joint * 1000)));
    return wire;
}

// One datagram of the real-time push.
struct Sample {
    int64_t time;                // simulated milliseconds
    std::vector<double> joints;  // degrees
    std::string status;
    KDL::Frame tool;  // in the work frame
};

class Talk {
 public:
    explicit Talk(const std::vector<std::string>& arguments = {});

    // Sends {"command": name, ...keys} formatted over several lines, as clients do.
    void send(const std::string& name, const Json& keys = Json::object());
    Json read();
    Json ask(const std::string& name, const Json& keys = Json::object());

    // A further client, as soon as it is accepted.
    std::unique_ptr<LineClient> new_client() const;

    // Orders a joint move to a target in degrees; true when it was accepted.
    bool movej(const Joints& target, int percent, int connect = 0);

    // Moves at full speed and waits for the arrival.
    void move_to(const Joints& target);

    // Reads an arrival report. True if the arm arrived.
    bool read_arrival();

    // The joints in degrees, by query.
    Joints joints();

    // The pose by query, in the units of the wire.
    std::vector<int> pose() { return ask("get_current_arm_state").at("arm_state").at("pose"); }

    // The next datagram, whole or as a sample.
    Json state() { return Json::parse(push.receive()); }
    Sample sample();

    // The pose of the tool at rest.
    KDL::Frame tool();

    // Collects samples up to the first that `last` accepts, and that one.
    std::vector<Sample> samples_until(const std::function<bool(const Sample&)>& last);
    std::vector<Sample> samples_until(const std::string& status);

    SimulatorProcess simulator;
    LineClient client;
    UdpReceiver push;
};

// A request as a client formats it.
inline std::string request_text(const std::string& name, const Json& keys = Json::object()) {
    Json request = keys;
    request["command"] = name;
    return request.dump(1, '\t');
}

inline Talk::Talk(const std::vector<std::string>& arguments)
    : simulator(arguments), client(simulator.port()), push(simulator.push_port()) {}

inline void Talk::send(const std::string& name, const Json& keys) { client.send_line(request_text(name, keys)); }

inline Json Talk::read() { return Json::parse(client.read_line()); }

inline Json Talk::ask(const std::string& name, const Json& keys) {
    send(name, keys);
    return read();
}

inline std::unique_ptr<LineClient> Talk::new_client() const {
    while (true) {
        try {
            return std::make_unique<LineClient>(simulator.port());
        } catch (const std::exception&) {  // not yet
        }
    }
}

inline bool Talk::movej(const Joints& target, int percent, int connect) {
    return ask("movej", {{"joint", thousandths(target)}, {"v", percent}, {"r", 0}, {"trajectory_connect", connect}})
        .at("receive_state");
}

inline void Talk::move_to(const Joints& target) {
    ASSERT_TRUE(movej(target, 100));
    ASSERT_TRUE(read_arrival());
}

inline bool Talk::read_arrival() {
    const Json report = read();
    EXPECT_EQ(report.value("state", ""), "current_trajectory_state");
    return report.at("trajectory_state");
}

inline Joints Talk::joints() {
    Joints joints = ask("get_joint_degree").at("joint");
    for (double& joint : joints) joint /= 1000;
    return joints;
}

inline Sample sample_of(const Json& state) {
    const std::vector<double> p = state.at("waypoint").at("position"), q = state.at("waypoint").at("quat");
    Sample sample{state.at("time"), state.at("joint_status").at("joint_position"), state.at("arm_current_status"),
                  KDL::Frame(KDL::Rotation::Quaternion(q[1] / 1e6, q[2] / 1e6, q[3] / 1e6, q[0] / 1e6),
                             KDL::Vector(p[0] / 1e6, p[1] / 1e6, p[2] / 1e6))};
    for (double& joint : sample.joints) joint /= 1000;
    return sample;
}

inline Sample Talk::sample() { return sample_of(state()); }

inline KDL::Frame Talk::tool() {
    push.forget();
    return sample().tool;
}

inline std::vector<Sample> Talk::samples_until(const std::function<bool(const Sample&)>& last) {
    std::vector<Sample> samples;
    do {
        samples.push_back(sample());
    } while (!last(samples.back()));
    return samples;
}

inline std::vector<Sample> Talk::samples_until(const std::string& status) {
    return samples_until([&](const Sample& sample) { return sample.status == status; });
}

// The output and exit status of a program.
struct Finished {
    std::string output;  // standard output and standard error
    int status;
};

inline Finished run_simulator(const std::string& arguments) {
    FILE* pipe = popen((std::string(kSimulator) + " " + arguments + " 2>&1").c_str(), "r");
    if (!pipe) throw std::runtime_error("popen");
    Finished run;
    char bytes[4096];
    for (size_t size; (size = fread(bytes, 1, sizeof bytes, pipe)) > 0;) run.output.append(bytes, size);
    const int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

}  // namespace zk::test
