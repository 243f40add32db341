// What the page needs to draw an arm, as JSON.
#pragma once

#include <nlohmann/json.hpp>

#include "zk/model.hpp"

namespace zk::view {

using Json = nlohmann::ordered_json;

// A number with so many decimals: more than a picture needs only lengthen the stream.
double rounded(double value, int decimals = 4);
Json numbers(const float* values, std::size_t count, int decimals = 4);
Json numbers(const Joints& joints);

// {"p": metres, "q": quaternion, the scalar first}
Json pose(const Pose& pose);

// The joints' axes, the bones and the flange with all joints at 0, in the base's frame; the limits. Empty when the
// model does not tell.
Json chain(const Model& model);

// An arm, its mounting and its frames. model: null for one that is not known.
Json description(const Model* model, std::size_t joint_count);

}  // namespace zk::view
