/*
 * A model of an arm: kinematics without a connection (zk/arm_model.h), with units. C++17, header only.
 *
 *     zk::Model model("ZK65-B");
 *     zk::Pose there = model.forward({0_deg, 20_deg, 70_deg, 0_deg, 90_deg, 0_deg}).value();
 *     zk::Joints joints = model.inverse(there.moved(0_m, 0_m, 20_mm), seed).value();
 */
#ifndef ZK_MODEL_HPP
#define ZK_MODEL_HPP

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zk/arm_model.h"
#include "zk/call.hpp"
#include "zk/span.hpp"

namespace zk {
inline namespace ZK_RESULT_NAMESPACE {

/* Limits of the joints. */
struct JointLimits {
    Joints min, max;
};

/* The Jacobian of the tool tip: rows of linear, then angular velocity, a column for each joint; 0 in further columns.
 */
using Jacobian = std::array<std::array<double, Joints::kMost>, 6>;

/*
 * One arm's geometry, tool, work frame, mounting and limits. It can be moved; clone() copies it. Any number of threads
 * may compute with one model as long as none changes it.
 */
class Model {
 public:
    /* By its name, as zk_simulator takes it: "ZK65-B", "63-6F". Throws BadResult for an unknown name. */
    explicit Model(std::string_view name) : Model(named(name).value()) {}

    /* The same without an exception. */
    [[nodiscard]] static Result<Model> named(std::string_view name) {
        static constexpr struct {
            std::string_view name;
            int number, sensors;
        } kArms[] = {{"ZK65", 0, 3}, {"ZK75", 1, 3}, {"63", 3, 3},   {"ORB65", 5, 3},
                     {"62", 6, 1},   {"72", 7, 1},   {"ORB63", 8, 3}};
        static constexpr std::string_view kSensors[] = {"-B", "-ZF", "-6F"};
        for (const auto& arm : kArms) {
            for (int sensor = 0; sensor < arm.sensors; ++sensor) {
                const std::string_view mark = kSensors[static_cast<std::size_t>(sensor)];
                if (name.size() == arm.name.size() + mark.size() && name.substr(0, arm.name.size()) == arm.name &&
                    name.substr(arm.name.size()) == mark)
                    return adopt(ZK_Model_New(arm.number, sensor), "ZK_Model_New");
            }
        }
        return Unexpected(make_error(ZK_BAD_ARGUMENT, "ZK_Model_New", "no arm is called '" + std::string(name) + "'"));
    }

    /* Takes a model of the C interface over. Null is an error. command: the function that returned it. */
    [[nodiscard]] static Result<Model> adopt(ZK_Model* model, const char* command) {
        if (!model) return Unexpected(make_error(ZK_BAD_ARGUMENT, command, "there is no such model, or no memory"));
        return Model(model);
    }

    /* A copy of its own. */
    [[nodiscard]] Result<Model> clone() const { return adopt(ZK_Model_Clone(get()), "ZK_Model_Clone"); }

    /* For the calls of zk/arm_model.h. */
    ZK_Model* get() const { return model_.get(); }

    std::size_t joint_count() const { return static_cast<std::size_t>(ZK_Model_Joint_Count(get())); }
    /* "65" for example. */
    std::string name() const { return ZK_Model_Name(get()); }

    /* The tool in the flange frame, the work frame in the world. */
    [[nodiscard]] Result<void> set_tool(const Pose& flange_T_tool) {
        return set_pose<ZK_Model_Set_Tool>(flange_T_tool);
    }
    [[nodiscard]] Result<void> set_work_frame(const Pose& world_T_work) {
        return set_pose<ZK_Model_Set_Work_Frame>(world_T_work);
    }
    [[nodiscard]] Result<Pose> tool() const { return pose<ZK_Model_Get_Tool>(); }
    [[nodiscard]] Result<Pose> work_frame() const { return pose<ZK_Model_Get_Work_Frame>(); }

    /* How the base is mounted: its rotation in the world. */
    [[nodiscard]] Result<void> set_mounting(const EulerAngles& angles) {
        return call<ZK_Model_Set_Mounting>(get(), angles.rx.degrees(), angles.ry.degrees(), angles.rz.degrees());
    }

    /* Positions that the joints may take. */
    [[nodiscard]] Result<void> set_joint_limits(const JointLimits& limits) {
        if (Result<void> sized = check(limits.min, "ZK_Model_Set_Joint_Limits"); !sized) return sized;
        if (Result<void> sized = check(limits.max, "ZK_Model_Set_Joint_Limits"); !sized) return sized;
        return call<ZK_Model_Set_Joint_Limits>(get(), limits.min, limits.max);
    }
    [[nodiscard]] Result<JointLimits> joint_limits() const {
        float min[Joints::kMost], max[Joints::kMost];
        return detail::then(call<ZK_Model_Get_Joint_Limits>(get(), min, max), [&] {
            return JointLimits{joints(min), joints(max)};
        });
    }

    /* The pose of the tool in the work frame. */
    [[nodiscard]] Result<Pose> forward(const Joints& at) const {
        if (Result<void> sized = check(at, "ZK_Model_Forward"); !sized) return Unexpected(std::move(sized).error());
        ::Pose reached;
        return detail::then(call<ZK_Model_Forward>(get(), at, &reached),
                            [&] { return Pose(reached, ZK_BY_QUATERNION); });
    }

    /* The joints nearest to the seed that bring the tool to a pose of the work frame. Fails with ZK_NO_SOLUTION and the
     * reason. The options are those of the C interface; their orientation does not matter. */
    [[nodiscard]] Result<Joints> inverse(const Pose& target, const Joints& seed, ZK_InverseOptions options = {}) const {
        if (Result<void> sized = check(seed, "ZK_Model_Inverse"); !sized) return Unexpected(std::move(sized).error());
        const ::Pose c_target = target.to_c();
        float found[Joints::kMost];
        ZK_InverseResult result{};
        options.orientation = ZK_BY_QUATERNION;
        const int status = ZK_Model_Inverse(get(), &c_target, seed.to_c().data(), &options, found, &result);
        if (status != ZK_OK) return Unexpected(make_error(status, "ZK_Model_Inverse", reason(status, result)));
        return joints(found);
    }

    /* Every posture that brings the tool there, nearest to the seed first; at most `most` of them. */
    [[nodiscard]] Result<std::vector<Joints>> inverse_all(const Pose& target, const Joints& seed,
                                                          std::size_t most = 256,
                                                          ZK_InverseOptions options = {}) const {
        if (Result<void> sized = check(seed, "ZK_Model_Inverse_All"); !sized)
            return Unexpected(std::move(sized).error());
        const ::Pose c_target = target.to_c();
        std::vector<float> found(most * joint_count());
        int count = 0;
        options.orientation = ZK_BY_QUATERNION;
        return detail::then(call<ZK_Model_Inverse_All>(get(), &c_target, seed, &options, found, most, &count),
                            [&] { return rows(found, std::min(most, static_cast<std::size_t>(std::max(count, 0)))); });
    }

    /* Joints along a path without a jump, each from the one before it, the first from the seed. Fails with
     * ZK_NO_SOLUTION and the number of the first pose, from 0, that cannot be followed. */
    [[nodiscard]] Result<std::vector<Joints>> follow(Span<const Pose> path, const Joints& seed,
                                                     ZK_InverseOptions options = {}) const {
        if (Result<void> sized = check(seed, "ZK_Model_Follow"); !sized) return Unexpected(std::move(sized).error());
        std::vector<::Pose> poses;
        poses.reserve(path.size());
        for (const Pose& pose : path) poses.push_back(pose.to_c());
        std::vector<float> found(path.size() * joint_count());
        ZK_FollowResult result{};
        options.orientation = ZK_BY_QUATERNION;
        const int status = ZK_Model_Follow(get(), poses.data(), static_cast<int>(poses.size()), seed.to_c().data(),
                                           &options, found.data(), &result);
        if (status != ZK_OK) {
            return Unexpected(make_error(
                status, "ZK_Model_Follow",
                "pose " + std::to_string(result.followed) + " of the path: " + reason(status, result.refusal)));
        }
        return rows(found, path.size());
    }

    /* The Jacobian of the tool tip: joint speeds in radians per second to metres and radians per second. */
    [[nodiscard]] Result<Jacobian> jacobian(const Joints& at, ZK_Axes axes = ZK_BASE_AXES) const {
        if (Result<void> sized = check(at, "ZK_Model_Jacobian"); !sized) return Unexpected(std::move(sized).error());
        double flat[6 * Joints::kMost];
        return detail::then(call<ZK_Model_Jacobian>(get(), at, axes, &flat[0]), [&] {
            Jacobian jacobian{};
            const std::size_t columns = joint_count();
            for (std::size_t i = 0; i < 6 * columns; ++i) jacobian[i / columns][i % columns] = flat[i];
            return jacobian;
        });
    }

    /* 0 at a singular posture. */
    [[nodiscard]] Result<double> manipulability(const Joints& at) const {
        if (Result<void> sized = check(at, "ZK_Model_Manipulability"); !sized)
            return Unexpected(std::move(sized).error());
        return detail::fetch<ZK_Model_Manipulability, double>(get(), at);
    }

    /* How far the joint nearest to a limit is from it; below 0 when it is beyond. */
    [[nodiscard]] Result<Angle> limit_distance(const Joints& at) const {
        if (Result<void> sized = check(at, "ZK_Model_Limit_Distance"); !sized)
            return Unexpected(std::move(sized).error());
        float degree = 0;
        return detail::then(call<ZK_Model_Limit_Distance>(get(), at, &degree, nullptr),
                            [&] { return degrees(static_cast<double>(degree)); });
    }

    /* Many at once, over some threads, in the records of the C interface and without a copy: rows of joints in degrees,
     * as many as there are poses. */
    [[nodiscard]] Result<void> forward(Span<const float> rows_of_joints, Span<::Pose> poses, int threads = 1) const {
        if (Result<void> sized = check_rows(rows_of_joints.size(), poses.size(), "ZK_Model_Forward_Batch"); !sized)
            return sized;
        return call<ZK_Model_Forward_Batch>(get(), rows_of_joints.data(), poses.size(), poses.data(), threads);
    }
    /* The same for the inverse: seeds and answers are rows of joints. statuses: one for each pose, or none. Fails with
     * the first status that is not 0; the other rows are written all the same. */
    [[nodiscard]] Result<void> inverse(Span<const ::Pose> targets, Span<const float> seeds, Span<float> answers,
                                       Span<int> statuses = {}, int threads = 1,
                                       const ZK_InverseOptions& options = {}) const {
        constexpr const char* kCommand = "ZK_Model_Inverse_Batch";
        if (Result<void> sized = check_rows(seeds.size(), targets.size(), kCommand); !sized) return sized;
        if (Result<void> sized = check_rows(answers.size(), targets.size(), kCommand); !sized) return sized;
        if (!statuses.empty() && statuses.size() != targets.size())
            return Unexpected(make_error(ZK_BAD_ARGUMENT, kCommand, "there is not one status for each pose"));
        return call<ZK_Model_Inverse_Batch>(get(), targets.data(), seeds.data(), targets.size(), &options,
                                            answers.data(), statuses.empty() ? nullptr : statuses.data(), threads);
    }

 private:
    struct Free {
        void operator()(ZK_Model* model) const { ZK_Model_Free(model); }
    };

    explicit Model(ZK_Model* model) : model_(model) {}

    Joints joints(const float* degree) const { return Joints::from_c(degree, joint_count()); }

    std::vector<Joints> rows(const std::vector<float>& flat, std::size_t count) const {
        std::vector<Joints> all;
        for (std::size_t i = 0; i < count; ++i) all.push_back(joints(flat.data() + i * joint_count()));
        return all;
    }

    [[nodiscard]] Result<void> check(const Joints& given, const char* command) const {
        if (given.size() == joint_count()) return {};
        return Unexpected(
            make_error(ZK_BAD_ARGUMENT, command,
                       std::to_string(given.size()) + " joints for an arm of " + std::to_string(joint_count())));
    }
    [[nodiscard]] Result<void> check_rows(std::size_t numbers, std::size_t count, const char* command) const {
        if (numbers == count * joint_count()) return {};
        return Unexpected(make_error(ZK_BAD_ARGUMENT, command,
                                     std::to_string(numbers) + " numbers are not " + std::to_string(count) +
                                         " rows of " + std::to_string(joint_count()) + " joints"));
    }

    template <auto kSetter>
    [[nodiscard]] Result<void> set_pose(const Pose& pose) {
        const ::Pose c_pose = pose.to_c();
        return call<kSetter>(get(), &c_pose);
    }
    template <auto kGetter>
    [[nodiscard]] Result<Pose> pose() const {
        ::Pose c_pose;
        return detail::then(call<kGetter>(get(), &c_pose), [&] { return Pose(c_pose, ZK_BY_QUATERNION); });
    }

    static std::string reason(int status, const ZK_InverseResult& result) {
        if (status != ZK_NO_SOLUTION) return {};
        switch (result.cause) {
            case ZK_CAUSE_OUT_OF_REACH:
                return "no posture brings the tool there";
            case ZK_CAUSE_BEYOND_LIMITS:
                return "joint " + std::to_string(result.joint) + " would be beyond its limits";
            case ZK_CAUSE_SINGULAR:
                return "every answer is too close to a singularity";
            case ZK_CAUSE_LARGER_STEP:
                return "every answer takes a joint further than the largest step";
            case ZK_CAUSE_BAD_TARGET:
                return "the target is not finite";
            case ZK_CAUSE_NONE:
                break;
        }
        return {};
    }

    std::unique_ptr<ZK_Model, Free> model_;
};

}  // namespace ZK_RESULT_NAMESPACE
}  // namespace zk

#endif
