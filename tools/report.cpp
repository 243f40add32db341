#include "report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <string_view>
#include <utility>
#include <vector>

#include "remedy.h"

namespace tool {
namespace {

struct Heading {
    std::string text, unit;
};

// "joint_speed_deg_s" is the joint speed in deg/s.
Heading heading_of(std::string key) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 15> kUnits{{{"_deg_s2", "deg/s2"},
                                                                                           {"_deg_s", "deg/s"},
                                                                                           {"_deg", "deg"},
                                                                                           {"_mm", "mm"},
                                                                                           {"_m", "m"},
                                                                                           {"_ms", "ms"},
                                                                                           {"_s", "s"},
                                                                                           {"_Hz", "Hz"},
                                                                                           {"_A", "A"},
                                                                                           {"_V", "V"},
                                                                                           {"_C", "C"},
                                                                                           {"_Nm", "Nm"},
                                                                                           {"_N", "N"},
                                                                                           {"_kg", "kg"},
                                                                                           {"_percent", "%"}}};
    std::string unit;
    for (const auto& [suffix, name] : kUnits) {
        if (key.size() > suffix.size() && key.ends_with(suffix)) {
            key.resize(key.size() - suffix.size());
            unit = name;
            break;
        }
    }
    std::replace(key.begin(), key.end(), '_', ' ');
    return {key, unit};
}

std::string text_of(const Json& value) {
    if (value.is_null()) return "-";
    if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
    if (value.is_string()) return value.get<std::string>();
    if (value.is_number_float()) {
        std::array<char, 64> text{};
        std::snprintf(text.data(), text.size(), "%.6g", value.get<double>() + 0.0);  // no -0
        return text.data();
    }
    if (value.is_array()) {
        std::string line;
        for (const Json& one : value) line += (line.empty() ? "" : "  ") + text_of(one);
        return line.empty() ? "none" : line;
    }
    return value.dump();
}

bool is_table(const Json& value) { return value.is_array() && !value.empty() && value.front().is_object(); }

void print_object(const Json& report, const std::string& indent, std::ostream& out);

// Rows that are wider than a terminal are printed below each other.
void print_table(const Json& rows, const std::string& indent, std::ostream& out) {
    std::vector<std::vector<std::string>> cells(1);
    for (const auto& column : rows.front().items()) {
        const Heading heading = heading_of(column.key());
        cells[0].push_back(heading.unit.empty() ? heading.text : heading.text + " [" + heading.unit + "]");
    }
    for (const Json& row : rows) {
        std::vector<std::string> line;
        for (const auto& cell : row.items()) line.push_back(text_of(cell.value()));
        cells.push_back(line);
    }
    std::vector<std::size_t> widths(cells[0].size());
    for (const auto& row : cells) {
        for (std::size_t i = 0; i < row.size() && i < widths.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    constexpr std::size_t kTerminal = 120;
    if (std::accumulate(widths.begin(), widths.end(), 2 * widths.size()) > kTerminal) {
        for (const Json& row : rows) {
            print_object(row, indent, out);
            if (&row != &rows.back()) out << '\n';
        }
        return;
    }
    for (const auto& row : cells) {
        std::string line = indent;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += row[i] + std::string(i + 1 < row.size() ? widths[i] - row[i].size() + 2 : 0, ' ');
        out << line << '\n';
    }
}

void print_object(const Json& report, const std::string& indent, std::ostream& out) {
    std::size_t width = 0;
    for (const auto& line : report.items()) width = std::max(width, heading_of(line.key()).text.size());
    for (const auto& line : report.items()) {
        const Heading heading = heading_of(line.key());
        out << indent << heading.text;
        if (is_table(line.value())) {
            out << '\n';
            print_table(line.value(), indent + "  ", out);
        } else if (line.value().is_object()) {
            out << '\n';
            print_object(line.value(), indent + "  ", out);
        } else {
            out << std::string(width - heading.text.size() + 2, ' ') << text_of(line.value())
                << (heading.unit.empty() || line.value().is_null() ? "" : " " + heading.unit) << '\n';
        }
    }
}

}  // namespace

void print(const Json& report, std::ostream& out) {
    if (is_table(report)) {
        print_table(report, "", out);
    } else if (report.is_object()) {
        print_object(report, "", out);
    } else {
        out << text_of(report) << '\n';
    }
}

double rounded(double value, int decimals) {
    const double scale = std::pow(10, decimals);
    return std::round(value * scale) / scale + 0.0;
}

Json json_of(const zk::Joints& joints) {
    Json all = Json::array();
    for (const zk::Angle joint : joints) all.push_back(rounded(joint.degrees()));
    return all;
}

Json json_of(const zk::Pose& pose) {
    const zk::Position& p = pose.position;
    const zk::EulerAngles euler = pose.rotation.euler();
    Json quaternion = Json::array();
    for (const double part : pose.rotation.quaternion()) quaternion.push_back(rounded(part, 6));
    return {{"position_m", {rounded(p.x.metres(), 6), rounded(p.y.metres(), 6), rounded(p.z.metres(), 6)}},
            {"euler_deg", {rounded(euler.rx.degrees()), rounded(euler.ry.degrees()), rounded(euler.rz.degrees())}},
            {"quaternion_wxyz", quaternion}};
}

std::string hexadecimal(std::uint16_t word) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "0x%04x", static_cast<unsigned>(word));
    return text.data();
}

Json json_of_errors(std::uint16_t arm, std::uint16_t system) {
    Json all = Json::array();
    const auto add = [&all](const char* of, std::uint16_t word, const ZK_Advice& advice) {
        all.push_back(
            {{"of", of}, {"word", hexadecimal(word)}, {"cause", advice.cause}, {"remedy", remedy_of_error_word()}});
    };
    ZK_Advice advice{};
    if (arm != 0 && ZK_Explain(ZK_OK, arm, 0, &advice) != ZK_BAD_ARGUMENT) add("arm", arm, advice);
    if (system != 0 && ZK_Explain(ZK_OK, 0, system, &advice) != ZK_BAD_ARGUMENT) add("system", system, advice);
    return all;
}

}  // namespace tool
