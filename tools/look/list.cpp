#include <memory>
#include <vector>

#include "arms.h"
#include "look/look.h"

namespace tool {
namespace {

Json list(std::vector<std::string> arms) {
    if (arms.empty()) {
        for (const auto& [name, address] : named_arms()) arms.push_back(name);
    }
    if (arms.empty()) throw Failure(kUsage, "no arms to list: name their addresses, or write them into arms.json");
    Json rows = Json::array();
    for (const std::string& name : arms) {
        const Address address = find_arm(name);
        zk::ConnectOptions options;
        options.timeout = std::chrono::seconds(2);
        const zk::Result<zk::Arm> arm = zk::Arm::connect(address.host, address.port, options);
        const zk::Result<ArmSoftwareInfo> software =
            arm ? arm->software() : zk::Result<ArmSoftwareInfo>(zk::Unexpected(arm.error()));
        rows.push_back({{"arm", name},
                        {"host", address.host},
                        {"port", address.port},
                        {"model", software ? Json(software->product_version) : Json()},
                        {"answer", software ? "ok" : ZK_Status_Text(software.error().status)}});
    }
    return rows;
}

}  // namespace

void add_list(CLI::App& zk) {
    const auto arms = std::make_shared<std::vector<std::string>>();
    add_looking(
        zk, "list", "which of the named arms answer", [arms] { return list(*arms); },
        [&](CLI::App& command) {
            command.add_option("ARM", *arms, "addresses, or names of arms.json; without them, all of its names");
        });
}

}  // namespace tool
