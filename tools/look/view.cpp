#include "view/view.h"

#include <memory>

#include "arms.h"
#include "look/look.h"

namespace tool {
namespace {

struct ViewRequest {
    std::vector<std::string> arms;
    zk::view::Options options;
};

void view(ViewRequest request) {
    if (request.arms.empty()) throw Failure(kUsage, "no arm is named: write its address, or set ZK_ARM");
    for (const std::string& name : request.arms) {
        const Address address = find_arm(name);
        request.options.arms.push_back({address.host, address.port, named_arms().contains(name) ? name : ""});
    }
    if (zk::view::serve(request.options) != 0) throw CLI::RuntimeError(kFailed);
}

}  // namespace

void add_view(CLI::App& zk) {
    const auto request = std::make_shared<ViewRequest>();
    CLI::App* command = zk.add_subcommand("view", "serve a page that shows arms as they move");
    command->add_option("ARM", request->arms, "addresses, or names of arms.json")->envname("ZK_ARM");
    command->add_option("--port", request->options.port, "of the page, on this machine; 0: any free one")
        ->capture_default_str()
        ->check(CLI::Range(0, 65535));
    command->add_flag("--control", request->options.control, "offer a stop button to who has the token");
    command->callback([request] { view(*request); });
}

}  // namespace tool
