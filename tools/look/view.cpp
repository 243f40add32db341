#include "view/view.h"

#include <algorithm>
#include <filesystem>
#include <memory>

#include "arms.h"
#include "look/look.h"
#include "recording/film.h"

namespace tool {
namespace {

struct ViewRequest {
    std::vector<std::string> arms;
    std::string model;
    zk::view::Options options;
};

bool is_recording(const std::string& name) {
    return !named_arms().contains(name) && (name.ends_with(".mcap") || std::filesystem::is_regular_file(name));
}

void view(ViewRequest request) {
    if (request.arms.empty()) throw Failure(kUsage, "no arm is named: write its address, or set ZK_ARM");
    if (std::any_of(request.arms.begin(), request.arms.end(), is_recording)) {
        if (request.arms.size() > 1) throw Failure(kUsage, "a recording is played alone: name one file, or arms");
        if (request.options.control) throw Failure(kUsage, "a recording has nothing that --control could stop");
        request.options.film = load_film(request.arms.front(), request.model);
        return zk::view::serve(request.options);
    }
    for (const std::string& name : request.arms) {
        const Address address = find_arm(name);
        request.options.arms.push_back({address.host, address.port, named_arms().contains(name) ? name : ""});
    }
    zk::view::serve(request.options);
}

}  // namespace

void add_view(CLI::App& zk) {
    const auto request = std::make_shared<ViewRequest>();
    CLI::App* command = zk.add_subcommand("view", "serve a page that shows arms as they move, or plays a recording");
    command->add_option("ARM", request->arms, "addresses, names of arms.json, or one recording")->envname("ZK_ARM");
    command->add_option("-m,--model", request->model, "the arm of a recording that does not name it, such as ZK65-B");
    command->add_option("--port", request->options.port, "of the page, on this machine; 0: any free one")
        ->capture_default_str()
        ->check(CLI::Range(0, 65535));
    command->add_flag("--control", request->options.control, "offer a stop button to who has the token");
    command->callback([request] { view(*request); });
}

}  // namespace tool
