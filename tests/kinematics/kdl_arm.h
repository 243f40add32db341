// The arms as KDL sees them: chains built from tables of their own, in double precision, from the single-precision
// values that the model has.
#pragma once

#include <array>
#include <cmath>
#include <kdl/chain.hpp>
#include <kdl/frames.hpp>
#include <ostream>
#include <random>
#include <stdexcept>
#include <vector>

namespace zk::test {

using Joints = std::array<float, 8>;

struct Arm {
    int model, sensor, joints;
    bool standard;  // convention: the twist stands at the end of the link, not at its start
    std::array<float, 7> d, a;
    std::array<int, 7> twist, offset;  // degrees
    std::array<int, 7> max, min;       // degrees
};

inline std::ostream& operator<<(std::ostream& out, const Arm& arm) {
    return out << "model " << arm.model << " sensor " << arm.sensor;
}

inline const std::vector<Arm>& arms() {
    static const std::vector<Arm> all = [] {
        // The flange is the last length; what depends on the sensor is filled in below.
        constexpr float F = -1;
        // clang-format off
        const Arm arms[] = {
            {0, 0, 6, false, {.2405f, 0, 0, .21f, 0, F}, {0, 0, .256f}, {0, 90, 0, 90, -90, 90}, {0, 90, 90},
             {178, 130, 135, 178, 128, 360}, {-178, -130, -135, -178, -128, -360}},
            {1, 0, 7, true, {.2405f, 0, .256f, 0, .21f, 0, F}, {}, {-90, 90, -90, 90, -90, 90, 0}, {},
             {178, 130, 178, 135, 178, 128, 360}, {-178, -130, -178, -135, -178, -128, -360}},
            {3, 0, 6, false, {.172f, 0, 0, .405f, 0, F}, {0, -.086f, .38f, .069f}, {0, -90, 0, 90, -90, -90}, {0, -90, 90, 0, 180, 180},
             {178, 178, 145, 178, 178, 360}, {-178, -178, -178, -178, -178, -360}},
            // Its wrist is wired with a last twist of +90 and no offsets, whatever its alpha row says.
            {4, 0, 6, false, {.172f, -.0084f, 0, .405f, 0, F}, {0, -.086f, .38f, .069f}, {0, -90, 0, 90, -90, 90}, {0, -90, 90},
             {178, 178, 145, 178, 178, 360}, {-178, -178, -178, -178, -178, -360}},
            {5, 0, 6, false, {.1625f, 0, 0, -.05888f, .11f, F}, {0, -.086f, .26f, .24f}, {0, -90, 0, 0, 90, -90}, {0, -90, 0, 90},
             {180, 180, 145, 140, 180, 180}, {-180, -180, -160, -140, -180, -180}},
            {6, 0, 6, false, {.136f, 0, 0, -.0585f, .071f, .0707f}, {0, -.07f, .148f, .136f}, {0, -90, 0, 0, 90, -90}, {0, -90, 0, 90},
             {180, 180, 145, 140, 180, 180}, {-180, -180, -160, -140, -180, -180}},
            {7, 0, 7, false, {.218f, 0, .28f, 0, .2525f, 0, .0905f}, {0, 0, 0, .04f, -.019f, 0, .067f},
             {0, -90, 90, 90, -90, 90, 90}, {0, 0, 0, 0, 0, 90}, {172, 105, 172, 55, 172, 120, 172}, {-172, -105, -172, -170, -172, -90, -172}},
            {8, 0, 6, false, {.1625f, 0, 0, -.0589f, .11f, F}, {0, -.086f, .41f, .38f}, {0, -90, 0, 0, 90, -90}, {0, -90, 0, 90},
             {180, 180, 145, 140, 180, 180}, {-180, -180, -160, -140, -180, -180}},
            // No lengths at all: the wrist of model 0 on its shoulder.
            {9, 0, 7, false, {}, {}, {0, 90, 0, 90, -90, 90}, {}, {360, 360, 360, 360, 360, 360, 360}, {-360, -360, -360, -360, -360, -360, -360}},
        };
        // clang-format on
        const auto flange = [](int model, int sensor) {
            constexpr float on_65[] = {.144f, .152f, .1725f}, on_63[] = {.115f, .123f, .1435f};
            constexpr float on_parallel[] = {.0795f, .0875f, .108f};
            return model <= 1 ? on_65[sensor] : model <= 4 ? on_63[sensor] : on_parallel[sensor];
        };
        std::vector<Arm> result;
        for (Arm arm : arms) {
            const bool takes_sensors = arm.d[arm.joints - 1] == F;
            for (arm.sensor = 0; arm.sensor < (takes_sensors ? 3 : 1); ++arm.sensor) {
                if (takes_sensors) arm.d[arm.joints - 1] = flange(arm.model, arm.sensor);
                if (arm.model == 4) arm.d[0] = arm.sensor == 0 ? .162f : .172f;
                result.push_back(arm);
            }
        }
        return result;
    }();
    return all;
}

inline const Arm& arm_of(int model, int sensor) {
    for (const Arm& arm : arms()) {
        if (arm.model == model && arm.sensor == sensor) return arm;
    }
    throw std::out_of_range("no such arm");
}

// One revolving segment a joint, from the base to the flange. The joints of the chain are DH angles less the offset.
inline KDL::Chain kdl_chain(const Arm& arm) {
    const auto radians = [](int degrees) { return degrees * M_PI / 180; };
    const auto fixed = [](const KDL::Frame& f) { return KDL::Segment(KDL::Joint(KDL::Joint::None), f); };
    KDL::Chain chain;
    for (int i = 0; i < (arm.model == 9 ? 6 : arm.joints); ++i) {
        const KDL::Frame twist(KDL::Rotation::RotX(radians(arm.twist[i])));
        const KDL::Frame length(KDL::Vector(arm.a[i], 0, 0));
        const KDL::Frame rest(KDL::Rotation::RotZ(radians(arm.offset[i])), KDL::Vector(0, 0, arm.d[i]));
        if (!arm.standard) chain.addSegment(fixed(twist * length));
        chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::RotZ), rest));
        if (arm.standard) chain.addSegment(fixed(length * twist));
    }
    return chain;
}

// Joint angles within a share of the arm's limits about the middle of each range, radians.
inline Joints random_joints(const Arm& arm, std::mt19937& generator, double share = 1) {
    Joints q{};
    for (int i = 0; i < arm.joints; ++i) {
        const double middle = (arm.max[i] + arm.min[i]) / 2.0, half = (arm.max[i] - arm.min[i]) / 2.0 * share;
        std::uniform_real_distribution<double> angle(middle - half, middle + half);
        q[i] = static_cast<float>(angle(generator) * M_PI / 180);
    }
    return q;
}

}  // namespace zk::test
