#pragma once

#include <deque>
#include <kdl/frames.hpp>
#include <random>
#include <vector>

#include "world/load.h"

namespace sim {

// The sensor at the flange. It measures the wrench on everything beyond it: the weight of the load and contacts, with a
// zero offset and noise. Wrenches are in the axes of the flange and about its origin.
class ForceSensor {
 public:
    // `noise` is the standard deviation of a force in newtons; that of a moment in newton metres is a twentieth of it.
    ForceSensor(const Load& load, double noise, unsigned seed);

    // Takes a measurement at this pose of the flange in the room.
    void measure(const KDL::Frame& flange, const KDL::Wrench& contact);

    const KDL::Wrench& measured() const { return measured_; }
    // The measurement without the zero and the load that the calibration found.
    KDL::Wrench compensated() const;

    // Sets the zero to the mean of the last twenty measurements.
    void clear();

    // The mean of the measurements since `begin_sample`, with the pose of the flange.
    struct Sample {
        KDL::Rotation flange;
        KDL::Wrench mean;
    };
    void begin_sample();
    Sample sample() const;

    // Finds zero and load from samples at different orientations: all six axes from four or more, the z axis from two
    // or more. Returns false and changes nothing when the orientations do not determine them.
    bool calibrate(const std::vector<Sample>& samples);
    bool calibrate_z(const std::vector<Sample>& samples);

    Load load;  // the true one

 private:
    KDL::Wrench draw_noise();

    double noise_;
    std::mt19937_64 random_;
    KDL::Rotation flange_;
    KDL::Wrench measured_;
    std::deque<KDL::Wrench> last_;
    KDL::Wrench sum_;  // since `begin_sample`
    int summed_ = 0;
    KDL::Wrench zero_;  // found by the calibration
    Load found_;
};

}  // namespace sim
