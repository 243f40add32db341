#include "support/pattern.h"

#include <regex>

namespace zk::test {

bool matches(const std::string& text, const char* pattern) { return std::regex_match(text, std::regex(pattern)); }

std::vector<std::string> found_in(const std::string& text, const char* pattern) {
    const std::regex wanted(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator at(text.begin(), text.end(), wanted), end; at != end; ++at) found.push_back((*at)[1]);
    return found;
}

}  // namespace zk::test
