// A model of one's own and the same arm as KDL sees it, with tool, work frame and mounting.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "support/kdl_arm.h"
#include "support/kdl_frames.h"
#include "zk/arm_model.h"
#include "zk/status.h"

namespace zk::test {

using Owned = std::unique_ptr<ZK_Model, decltype(&ZK_Model_Free)>;
inline Owned owned(ZK_Model* model) { return {model, ZK_Model_Free}; }
inline Owned new_model(int model, int sensor = 0) { return owned(ZK_Model_New(model, sensor)); }

inline constexpr int kModels[] = {0, 1, 3, 4, 5, 6, 7, 8};
inline double degrees(double radians) { return radians * 180 / M_PI; }

struct Cell {
    explicit Cell(int model, int sensor = 0) : model(new_model(model, sensor)), kdl(arm_of(model, sensor)) {
        ZK_Model_Set_Tool(this->model.get(), &tool);
        ZK_Model_Set_Work_Frame(this->model.get(), &work);
        ZK_Model_Set_Mounting(this->model.get(), 20, 35, -50);
    }

    // Joints in degrees.
    KDL::Frame forward(const Joints& degrees) const {
        Joints q{};
        for (int i = 0; i < joints(); ++i) q[i] = static_cast<float>(degrees[i] * M_PI / 180);
        const KDL::Frame mounting(KDL::Rotation::RPY(M_PI / 9, M_PI * 7 / 36, -M_PI * 5 / 18));
        return to_kdl(work).Inverse() * mounting * kdl.forward(q) * to_kdl(tool);
    }
    Joints random(double share = 1) {
        Joints q = random_joints(kdl.arm, generator, share);
        for (float& angle : q) angle = static_cast<float>(zk::test::degrees(angle));
        for (int i = 0; i < joints(); ++i) q[i] = std::clamp<float>(q[i], kdl.arm.min[i], kdl.arm.max[i]);
        return q;
    }
    // Within so many degrees of the joints, and within the limits.
    Joints near(const Joints& q, float aside) {
        std::uniform_real_distribution<float> by(-aside, aside);
        Joints seed{};
        for (int i = 0; i < joints(); ++i) {
            seed[i] = std::clamp<float>(q[i] + by(generator), kdl.arm.min[i], kdl.arm.max[i]);
        }
        return seed;
    }
    int joints() const { return kdl.arm.joints; }

    int inverse(const KDL::Frame& target, const Joints& seed, Joints& answer, ZK_InverseResult* result = nullptr,
                const ZK_InverseOptions* options = nullptr) const {
        const Pose pose = to_pose(target);
        return ZK_Model_Inverse(model.get(), &pose, seed.data(), options, answer.data(), result);
    }

    bool meets(const Joints& answer, const KDL::Frame& target) const {
        const KDL::Twist miss = KDL::diff(forward(answer), target);
        return miss.vel.Norm() < ZK_INVERSE_METRES && miss.rot.Norm() < ZK_INVERSE_RADIANS;
    }
    bool within_limits(const Joints& q) const {
        for (int i = 0; i < joints(); ++i) {
            if (!(q[i] >= kdl.arm.min[i] && q[i] <= kdl.arm.max[i])) return false;
        }
        return true;
    }
    double largest_step(const Joints& a, const Joints& b) const {
        double largest = 0;
        for (int i = 0; i < joints(); ++i) largest = std::max<double>(largest, std::fabs(a[i] - b[i]));
        return largest;
    }

    Owned model;
    const KdlArm kdl;
    const Pose tool = {{.1f, -.05f, .2f}, {}, {.3f, -.4f, .5f}}, work = {{-.3f, .2f, .1f}, {}, {1, .2f, -.7f}};
    std::mt19937 generator{17};
};

class EachModel : public ::testing::TestWithParam<int> {
 protected:
    Cell cell{GetParam()};
    const int joints = cell.joints();
};

}  // namespace zk::test
