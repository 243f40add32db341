// Random moves of all arms at full speed, judged by the stream alone: no joint beyond its limits, the poses those of
// KDL, the arrival reported at rest. ZK_TRUTH_MOVES sets the number of moves of each arm.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <random>
#include <thread>

#include "simulator/samples.h"
#include "support/kdl_flange.h"

namespace zk::test {
namespace {

constexpr int64_t kStepMs = 5;

// Receives while the moves run, since at full speed they push more than a socket stores.
class Recorder {
 public:
    explicit Recorder(Talk& talk) : talk_(talk) {
        thread_ = std::thread([this] {
            while (!ended_) {
                const std::string datagram = talk_.push.receive();
                const std::lock_guard lock(mutex_);
                datagrams_.emplace_back(datagram.begin(), datagram.end());  // without the room of the longest
            }
        });
    }
    // A request at full speed pushes once, which ends the wait for a datagram.
    ~Recorder() {
        ended_ = true;
        LineClient(talk_.simulator.port()).ask(request_text("get_arm_power_state"));
        thread_.join();
    }

    // What was pushed up to this time, except what was lost on the way.
    std::vector<Sample> take(int64_t time) {
        std::vector<Sample> samples;
        for (int tries = 0; tries < 200 && (samples.empty() || samples.back().time < time); ++tries) {
            std::vector<std::string> datagrams;
            {
                const std::lock_guard lock(mutex_);
                datagrams.swap(datagrams_);
            }
            for (const std::string& datagram : datagrams) samples.push_back(sample_of(Json::parse(datagram)));
            if (datagrams.empty()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return samples;
    }

 private:
    Talk& talk_;
    std::atomic<bool> ended_ = false;
    std::mutex mutex_;
    std::vector<std::string> datagrams_;
    std::thread thread_;
};

// Orders of random kind, speed and blending. Poses are those of joints near the present ones, so that most have a path.
class RandomMoves {
 public:
    RandomMoves(std::string model, const Json& low, const Json& high)
        : model_(std::move(model)), low_(low), high_(high) {}

    Json next(const std::vector<double>& from, bool joined) {
        static const char* const kCommands[] = {"movej", "movej", "movel", "movec", "moves", "movej_p"};
        const std::string command = kCommands[any(0, 5)];
        Json order{{"command", command},
                   {"v", any(5, 100)},
                   {"r", joined ? any(0, 100) : 0},
                   {"trajectory_connect", joined ? 1 : 0}};
        if (command == "movej")
            order["joint"] = thousandths(near(from, 120));
        else if (command == "movec")
            order.update(
                {{"pose", {{"pose_via", pose(near(from, 6))}, {"pose_to", pose(near(from, 12))}}}, {"loop", 0}});
        else
            order["pose"] = pose(near(from, command == "movej_p" ? 60 : 15));
        return order;
    }
    int any(int low, int high) { return std::uniform_int_distribution<int>(low, high)(generator_); }

 private:
    std::vector<double> near(const std::vector<double>& from, double most) {
        std::vector<double> joints = from;
        for (size_t i = 0; i < joints.size(); ++i) {
            joints[i] += std::uniform_real_distribution<double>(-most, most)(generator_);
            joints[i] = std::clamp(joints[i], low_[i].get<int>() / 1000.0 + 1, high_[i].get<int>() / 1000.0 - 1);
        }
        return joints;
    }
    std::vector<int> pose(const std::vector<double>& joints) const {
        const KDL::Frame frame = flange_by_kdl(model_, joints);
        double angles[3];
        frame.M.GetRPY(angles[0], angles[1], angles[2]);
        std::vector<int> wire;
        for (int i = 0; i < 3; ++i) wire.push_back(static_cast<int>(std::lround(frame.p[i] * 1e6)));
        for (const double angle : angles) wire.push_back(static_cast<int>(std::lround(angle * 1e3)));
        return wire;
    }

    const std::string model_;
    const Json low_, high_;
    std::mt19937 generator_{7};
};

class Truth : public testing::TestWithParam<const char*> {
 protected:
    // Orders up to three joined moves. False when the last one does not arrive.
    bool order_moves() {
        const int count = moves_.any(1, 3);
        const std::vector<double> from = talk_.joints();
        orders_ = "from " + Json(from).dump();
        for (int i = 1; i <= count; ++i) {
            const std::string order = moves_.next(from, i < count).dump();
            orders_ += "\n" + order;
            talk_.client.send_line(order);
            if (!talk_.read().at("receive_state").get<bool>()) return drop_all();
        }
        return talk_.read_arrival();
    }
    bool drop_all() {
        talk_.send("set_arm_stop");
        talk_.send("get_arm_power_state");
        while (!talk_.read().contains("power_state")) {  // reports of what was dropped
        }
        return false;
    }

    void expect_true(const std::vector<Sample>& samples, int64_t reported) {
        std::vector<Sample> spaced;  // as the limits of the rounding want it
        for (const Sample& sample : samples) {
            if (sample.time % (2 * kStepMs) == 0) spaced.push_back(sample);
            const KDL::Twist off = KDL::diff(flange_by_kdl(GetParam(), sample.joints), sample.tool);
            worst_place_ = std::max(worst_place_, off.vel.Norm());
            worst_turn_ = std::max(worst_turn_, off.rot.Norm());
        }
        SCOPED_TRACE(orders_);
        if (spaced.size() > 2) expect_within_limits(spaced, limits_, 1);
        const auto moves = [](const Sample& sample) { return sample.status != "idle"; };
        const auto rest = std::find_if(samples.rbegin(), samples.rend(), moves).base();
        if (rest == samples.begin() || rest == samples.end()) return;  // the first sample at rest was lost
        EXPECT_LE(reported - rest->time, 2 * kStepMs);
        expect_near(rest->joints, samples.back().joints);
        ++judged_;
    }

    Talk talk_{{"--quiet", "--speed", "max", "--model", GetParam()}};
    const Limits limits_ = limits_of(talk_);
    RandomMoves moves_{GetParam(), talk_.ask("get_joint_min_pos").at("min_pos"),
                       talk_.ask("get_joint_max_pos").at("max_pos")};
    std::string orders_;
    double worst_place_ = 0, worst_turn_ = 0;
    int judged_ = 0;
};
INSTANTIATE_TEST_SUITE_P(, Truth, testing::Values("ZK65-B", "ZK75-B", "63-B", "ORB65-B", "62-B", "72-B", "ORB63-B"));

TEST_P(Truth, OfTheStream) {
    const char* const wanted = std::getenv("ZK_TRUTH_MOVES");
    const int count = wanted ? std::atoi(wanted) : 4;
    Recorder recorder(talk_);
    for (int tries = 0; judged_ < count; ++tries) {
        ASSERT_LT(tries, 20 * count) << "most are refused, or their datagrams are lost";
        const bool moved = order_moves();
        const int64_t now = talk_.ask("zk_sim_time").at("time");
        const std::vector<Sample> samples = recorder.take(now);
        if (moved) expect_true(samples, now);
    }
    EXPECT_LT(worst_place_, 1e-4);
    EXPECT_LT(worst_turn_, 1e-4);
}

}  // namespace
}  // namespace zk::test
