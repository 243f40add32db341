#include <memory>

#include "offline/offline.h"
#include "quantity.h"
#include "report.h"

namespace tool {
namespace {

struct Kinematics {
    ModelOption model;
    std::vector<std::string> numbers, seed;
};

// How good a posture is: its distance from limits and from singularity.
Json quality_of(const zk::Model& model, const zk::Joints& joints) {
    const double to_limit = model.limit_distance(joints).value().degrees();
    return {{"within_limits", to_limit >= 0},
            {"to_limit_deg", rounded(to_limit)},
            {"manipulability", rounded(model.manipulability(joints).value(), 6)}};
}

Json forward(const Kinematics& given) {
    const zk::Model model = given.model.load();
    const zk::Joints joints = parse_joints(given.numbers, model.joint_count());
    Json report{{"joints_deg", json_of(joints)}, {"pose", json_of(model.forward(joints).value())}};
    report.update(quality_of(model, joints));
    return report;
}

Json inverse(const Kinematics& given) {
    const zk::Model model = given.model.load();
    const zk::Pose target = parse_pose(given.numbers);
    const zk::Joints seed = given.seed.empty() ? zk::Joints::from_degrees(std::vector<double>(model.joint_count()))
                                               : parse_joints(given.seed, model.joint_count());
    const std::vector<zk::Joints> postures = model.inverse_all(target, seed).value();
    Json rows = Json::array();
    for (const zk::Joints& joints : postures) {
        Json row{{"joints_deg", json_of(joints)}};
        row.update(quality_of(model, joints));
        rows.push_back(row);
    }
    Json report{{"ok", !postures.empty()}, {"pose", json_of(target)}, {"solutions", rows}};
    if (postures.empty()) report["cause"] = model.inverse(target, seed).error().text;
    return report;
}

}  // namespace

void add_fk(CLI::App& zk) {
    const auto given = std::make_shared<Kinematics>();
    add_looking(
        zk, "fk", "the tool's pose at some joints", [given] { return forward(*given); },
        [&](CLI::App& command) {
            given->model.add_to(command);
            command.add_option("JOINT", given->numbers, "six or seven angles, in degrees")->required();
        });
}

void add_ik(CLI::App& zk) {
    const auto given = std::make_shared<Kinematics>();
    add_looking(
        zk, "ik", "all postures that bring the tool to a pose, the nearest to the seed first",
        [given] { return inverse(*given); },
        [&](CLI::App& command) {
            given->model.add_to(command);
            command.add_option("--seed", given->seed, "joints to be near to; without it, all 0");
            command.add_option("POSE", given->numbers, "X Y Z RX RY RZ in metres and degrees")->required();
        });
}

}  // namespace tool
