#include "world/load.h"

namespace sim {

KDL::Wrench weight_of(const Load& load, const KDL::Rotation& flange) {
    const KDL::Vector force = flange.Inverse(kGravity) * load.mass;
    return {force, load.centre * force};  // KDL's product of two vectors is the cross product
}

}  // namespace sim
