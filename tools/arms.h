// Addresses of controllers, as people write them.
#pragma once

#include <map>
#include <string>

namespace tool {

struct Address {
    std::string host;
    int port = 8080;
};

// "192.168.1.18", "arm.local:8080", "[::1]:8080". Throws Failure for what is none.
Address parse_address(const std::string& text);

// The names of the user's file, arms.json: {"left": "192.168.1.18", "right": "192.168.1.19:8080"}. None without a file.
std::map<std::string, std::string> named_arms();

// An address, or a name of the user's file.
Address find_arm(const std::string& address_or_name);

}  // namespace tool
