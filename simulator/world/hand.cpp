#include "world/hand.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace sim {

std::vector<HandLeg> read_hand(const std::string& path) {
    constexpr double kMaxSeconds = 3600;
    std::ifstream file(path);
    if (!file) throw std::invalid_argument("cannot read " + path);
    std::vector<HandLeg> legs;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        line.resize(std::min(line.find('#'), line.size()));
        std::replace(line.begin(), line.end(), ',', ' ');
        std::istringstream words(line);
        JointVector values;
        for (double value; words >> value;) values.push_back(value);
        const bool whole = words.eof() && values.size() != 1;
        if (!whole || (!values.empty() && !(values[0] >= 0 && values[0] <= kMaxSeconds)))
            throw std::invalid_argument(path + ":" + std::to_string(number) + ": needs seconds and joint angles");
        if (!values.empty()) legs.push_back({values[0], JointVector(values.begin() + 1, values.end())});
    }
    return legs;
}

}  // namespace sim
