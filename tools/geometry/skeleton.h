// The shape of an arm, from its model: the axes of its joints, and the bones from joint to joint.
#pragma once

#include <cstddef>
#include <vector>

#include "zk/model.hpp"

namespace tool {

struct Vector {
    double x = 0, y = 0, z = 0;

    friend Vector operator+(Vector a, Vector b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
    friend Vector operator-(Vector a, Vector b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
    friend Vector operator*(Vector a, double factor) { return {a.x * factor, a.y * factor, a.z * factor}; }
};
double dot(Vector a, Vector b);
Vector cross(Vector a, Vector b);
double norm(Vector a);

struct JointAxis {
    Vector axis, point;
};

// The joints' axes and the flange with all joints at 0, in the base's frame, in metres. The tool, the work frame and
// the mounting are left out.
struct Chain {
    std::vector<JointAxis> joints;  // the point: where the axis is nearest to the flange
    zk::Pose flange;
};
zk::Result<Chain> chain_of(const zk::Model& model);

// A straight part of a link. Link 0 stands, link i turns with joint i.
struct Bone {
    std::size_t link;
    Vector from, to;
};

struct Skeleton {
    struct Joint {
        Vector centre;    // on its axis
        bool is_in_line;  // a bone lies on its axis
    };
    std::vector<Joint> joints;
    std::vector<Bone> bones;  // in order, each from where the one before it ends
    double reach = 0;         // their length
};
Skeleton skeleton_of(const Chain& chain);

}  // namespace tool
