#include "arms.h"

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "command.h"

namespace tool {
namespace {

std::filesystem::path file_of_names() {
    const auto variable = [](const char* name) -> std::string {
        const char* value = std::getenv(name);
        return value ? value : "";
    };
    if (const std::string file = variable("ZK_ARMS"); !file.empty()) return file;
    if (const std::string folder = variable("XDG_CONFIG_HOME"); !folder.empty())
        return std::filesystem::path(folder) / "zk" / "arms.json";
    return std::filesystem::path(variable("HOME")) / ".config" / "zk" / "arms.json";
}

int parse_port(const std::string& text, const std::string& address) {
    int port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size() || port < 1 || port > 65535)
        throw Failure(kUsage, "'" + address + "' has no port from 1 to 65535 after its colon");
    return port;
}

}  // namespace

Address parse_address(const std::string& text) {
    if (!text.empty() && text.front() == '[') {  // an IPv6 address, whose own colons stand in brackets
        const auto bracket = text.find(']');
        if (bracket == std::string::npos || (bracket + 1 < text.size() && text[bracket + 1] != ':'))
            throw Failure(kUsage, "'" + text + "' is no address: write [ADDRESS] or [ADDRESS]:PORT");
        Address address{text.substr(1, bracket - 1)};
        if (bracket + 1 < text.size()) address.port = parse_port(text.substr(bracket + 2), text);
        return address;
    }
    const auto colon = text.find(':');
    if (colon == std::string::npos || text.find(':', colon + 1) != std::string::npos) return {text};
    if (colon == 0) throw Failure(kUsage, "'" + text + "' has no host before its colon");
    return {text.substr(0, colon), parse_port(text.substr(colon + 1), text)};
}

std::map<std::string, std::string> named_arms() {
    const std::filesystem::path path = file_of_names();
    std::ifstream file(path);
    if (!file) return {};
    try {
        return Json::parse(file).get<std::map<std::string, std::string>>();
    } catch (const Json::exception&) {
        throw Failure(kUsage, path.string() + R"( is no list of arms such as {"left": "192.168.1.18:8080"})");
    }
}

Address find_arm(const std::string& address_or_name) {
    const auto names = named_arms();
    const auto named = names.find(address_or_name);
    return parse_address(named == names.end() ? address_or_name : named->second);
}

}  // namespace tool
