#include "support/kdl_flange.h"

#include <cmath>
#include <map>

#include "support/kdl_arm.h"

namespace zk::test {

KDL::Frame flange_by_kdl(const std::string& model, const std::vector<double>& degrees) {
    static const std::map<std::string, int> kModels = {{"ZK65", 0}, {"ZK75", 1}, {"63", 3},   {"ORB65", 5},
                                                       {"62", 6},   {"72", 7},   {"ORB63", 8}};
    static std::map<std::string, KdlArm> arms;
    const std::string name = model.substr(0, model.find('-'));
    KdlArm& arm = arms.try_emplace(name, arm_of(kModels.at(name), 0)).first->second;
    Joints joints{};
    for (size_t i = 0; i < degrees.size(); ++i) joints[i] = static_cast<float>(degrees[i] * M_PI / 180);
    return arm.forward(joints);
}

}  // namespace zk::test
