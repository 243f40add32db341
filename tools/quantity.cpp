#include "quantity.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace tool {
namespace {

using Unit = std::pair<std::string_view, double>;

template <std::size_t size>
double parse(const std::string& text, const std::array<Unit, size>& units, const char* kind) {
    const char* begin = text.data() + (!text.empty() && text[0] == '+' ? 1 : 0);
    const char* end = text.data() + text.size();
    double value = 0;
    const auto [rest, error] = std::from_chars(begin, end, value);
    if (error == std::errc() && std::isfinite(value)) {
        for (const auto& [name, factor] : units) {
            if (std::string_view(rest, static_cast<std::size_t>(end - rest)) == name) return value * factor;
        }
    }
    throw Failure(kUsage, "'" + text + "' is no " + kind);
}

}  // namespace

zk::Angle parse_angle(const std::string& text) {
    static const std::array<Unit, 3> kUnits{{{"", 1}, {"deg", 1}, {"rad", zk::radians(1).degrees()}}};
    return zk::degrees(parse(text, kUnits, "angle: write 90, 90deg or 1.57rad"));
}

zk::Length parse_length(const std::string& text) {
    static constexpr std::array<Unit, 3> kUnits{{{"", 1}, {"m", 1}, {"mm", 0.001}}};
    return zk::metres(parse(text, kUnits, "length: write 0.3, 0.3m or 300mm"));
}

zk::Joints parse_joints(const std::vector<std::string>& texts, std::size_t count) {
    if (texts.size() != count)
        throw Failure(kUsage, std::to_string(texts.size()) + " joints for an arm of " + std::to_string(count));
    std::vector<double> degree;
    for (const std::string& text : texts) {
        degree.push_back(parse_angle(text).degrees());
        if (std::abs(degree.back()) > 360) {
            throw Failure(kUsage, "joint " + std::to_string(degree.size()) + " is " + text +
                                      ": no joint turns further than 360 degrees; a bare number is in degrees");
        }
    }
    return zk::Joints::from_degrees(degree);
}

zk::Pose parse_pose(const std::vector<std::string>& texts) {
    if (texts.size() != 6) throw Failure(kUsage, "a pose has six numbers: X Y Z RX RY RZ");
    std::array<zk::Length, 3> place;
    for (std::size_t i = 0; i < place.size(); ++i) {
        place[i] = parse_length(texts[i]);
        if (abs(place[i]) > zk::metres(5)) {
            throw Failure(kUsage, "'" + texts[i] + "' is further away than any arm reaches: a bare number is in " +
                                      "metres; write 300mm for millimetres");
        }
    }
    return {{place[0], place[1], place[2]},
            zk::Rotation::from_euler(parse_angle(texts[3]), parse_angle(texts[4]), parse_angle(texts[5]))};
}

}  // namespace tool
