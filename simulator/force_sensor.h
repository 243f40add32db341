#pragma once

#include <deque>
#include <kdl/frames.hpp>
#include <random>
#include <vector>

namespace sim {

// What hangs on the sensor.
struct Load {
    double mass = 0;     // kilograms
    KDL::Vector centre;  // of gravity, in the flange frame, metres
};

// The sensor at the flange. It feels what acts on everything beyond it: the weight of the load, which turns with the
// flange, and contacts. Its zero is off, and it is noisy. Wrenches are told in the axes of the flange, about its
// origin.
class ForceSensor {
 public:
    // `noise` is the standard deviation of a force in newtons; that of a moment in newton metres is a twentieth of it.
    ForceSensor(const Load& load, double noise, unsigned seed);

    // Takes a measurement, with the flange as it stands in the room.
    void measure(const KDL::Frame& flange, const KDL::Wrench& contact);

    const KDL::Wrench& measured() const { return measured_; }
    // Without what the calibration found to be zero and load.
    KDL::Wrench compensated() const;

    // Takes what it feels now, the mean of the last twenty measurements, for zero.
    void clear();

    // The mean of the measurements since `begin_sample`, with the flange where it stands.
    struct Sample {
        KDL::Rotation flange;
        KDL::Wrench mean;
    };
    void begin_sample();
    Sample sample() const;

    // Finds zero and load from samples at different orientations: all six axes from four or more, the z axis alone from
    // two or more. False, and nothing changes, when the orientations do not tell them apart.
    bool calibrate(const std::vector<Sample>& samples);
    bool calibrate_z(const std::vector<Sample>& samples);

    Load load;  // in truth

 private:
    KDL::Wrench draw_noise();

    double noise_;
    std::mt19937_64 random_;
    KDL::Rotation flange_;
    KDL::Wrench measured_;
    std::deque<KDL::Wrench> last_;
    KDL::Wrench sum_;  // since `begin_sample`
    int summed_ = 0;
    KDL::Wrench zero_;  // as the calibration has it
    Load found_;
};

// What the weight of a load does to the flange, with the flange as it stands in the room.
KDL::Wrench weight_of(const Load& load, const KDL::Rotation& flange);

}  // namespace sim
