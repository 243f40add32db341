// Regular expressions, compiled in one source: std::regex takes seconds in each that uses it.
#pragma once

#include <string>
#include <vector>

namespace zk::test {

// True when the whole text fits the pattern.
bool matches(const std::string& text, const char* pattern);

// What the pattern's first group holds, at each place where it fits.
std::vector<std::string> found_in(const std::string& text, const char* pattern);

}  // namespace zk::test
