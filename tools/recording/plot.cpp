#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>

#include "recording/recording.h"
#include "report.h"

namespace tool {
namespace {

struct Point {
    double x, y;
};
using Polyline = std::vector<Point>;

struct Plot {
    std::string title, x_unit, y_unit;
    std::vector<std::pair<std::string, Polyline>> lines;
    bool equal_scales = false;
};

// Of the lines of a plot, legible on white and for people who see few colours (Okabe and Ito).
constexpr std::array kColours{"#0072b2", "#d55e00", "#009e73", "#cc79a7", "#e69f00", "#56b4e9", "#000000"};
constexpr double kWidth = 900, kHeight = 240, kLeft = 70, kRight = 110, kTop = 34, kBottom = 34;

struct Range {
    double low = INFINITY, high = -INFINITY;
    void include(double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    // Makes room around, and where there is but one value.
    void widen() {
        const double margin = high > low ? 0.05 * (high - low) : std::max(1e-3, 0.05 * std::abs(high));
        low -= margin;
        high += margin;
    }
    double size() const { return high - low; }
};

// A round step that divides a range into four to ten parts.
double step_of(const Range& range) {
    const double power = std::pow(10, std::floor(std::log10(range.size() / 4)));
    const double share = range.size() / 4 / power;
    return power * (share >= 5 ? 5 : share >= 2 ? 2 : 1);
}

// As much of a line as can be seen: the lowest and the highest value of each of some hundred spans.
Polyline thinned(const Polyline& line) {
    constexpr std::size_t kSpans = 800;
    if (line.size() <= 2 * kSpans) return line;
    Polyline thin;
    for (std::size_t span = 0; span < kSpans; ++span) {
        const auto begin = line.begin() + static_cast<std::ptrdiff_t>(span * line.size() / kSpans);
        const auto end = line.begin() + static_cast<std::ptrdiff_t>((span + 1) * line.size() / kSpans);
        const auto [low, high] = std::minmax_element(begin, end, [](Point a, Point b) { return a.y < b.y; });
        thin.push_back(*std::min(low, high));
        thin.push_back(*std::max(low, high));
    }
    return thin;
}

class Picture {
 public:
    void add(const Plot& plot, const std::vector<Mark>& marks) {
        Range xs, ys;
        for (const auto& [name, line] : plot.lines) {
            for (const Point& point : line) xs.include(point.x), ys.include(point.y);
        }
        ys.widen();
        if (xs.size() == 0) xs.widen();  // a single state
        if (plot.equal_scales) match_scales(xs, ys);
        const double top = height_ + kTop, bottom = height_ + kHeight - kBottom, right = kWidth - kRight;
        const auto x_of = [&](double x) { return kLeft + (x - xs.low) / xs.size() * (right - kLeft); };
        const auto y_of = [&](double y) { return bottom - (y - ys.low) / ys.size() * (bottom - top); };
        text(kLeft, top - 12, plot.title + " [" + plot.y_unit + "]", "font-weight='bold'");
        for (double x = std::ceil(xs.low / step_of(xs)) * step_of(xs); x <= xs.high; x += step_of(xs)) {
            rule(x_of(x), top, x_of(x), bottom, "#ddd");
            text(x_of(x), bottom + 16, label(x), "text-anchor='middle'");
        }
        for (double y = std::ceil(ys.low / step_of(ys)) * step_of(ys); y <= ys.high; y += step_of(ys)) {
            rule(kLeft, y_of(y), right, y_of(y), "#ddd");
            text(kLeft - 6, y_of(y) + 4, label(y), "text-anchor='end'");
        }
        text(right + 6, bottom + 16, plot.x_unit, "");
        for (const auto& [at, is_error, what] : marks) rule(x_of(at), top, x_of(at), bottom, "#c00");
        for (std::size_t i = 0; i < plot.lines.size(); ++i) {
            const auto& [name, line] = plot.lines[i];
            const char* colour = kColours[i % kColours.size()];
            svg_ << "<polyline fill='none' stroke-width='1.2' stroke='" << colour << "' points='";
            for (const Point& point : plot.equal_scales ? line : thinned(line))
                svg_ << rounded(x_of(point.x), 1) << ',' << rounded(y_of(point.y), 1) << ' ';
            svg_ << "'/>\n";
            text(right + 10, top + 12 + 16 * static_cast<double>(i), name, "fill='" + std::string(colour) + "'");
        }
        height_ += kHeight;
    }

    std::string svg() const {
        std::ostringstream all;
        all << "<svg xmlns='http://www.w3.org/2000/svg' width='" << kWidth << "' height='" << height_
            << "' font-family='sans-serif' font-size='12'>\n<rect width='100%' height='100%' fill='white'/>\n"
            << svg_.str() << "</svg>\n";
        return all.str();
    }

 private:
    static std::string label(double value) {
        std::ostringstream text;
        text << rounded(value, 6);
        return text.str();
    }
    // A metre to the side is as long as a metre up.
    static void match_scales(Range& xs, Range& ys) {
        const double ratio = (kWidth - kLeft - kRight) / (kHeight - kTop - kBottom);
        Range& narrow = xs.size() < ratio * ys.size() ? xs : ys;
        const double size = &narrow == &xs ? ratio * ys.size() : xs.size() / ratio;
        const double more = (size - narrow.size()) / 2;
        narrow.low -= more;
        narrow.high += more;
    }
    void rule(double x1, double y1, double x2, double y2, const char* colour) {
        svg_ << "<line x1='" << x1 << "' y1='" << y1 << "' x2='" << x2 << "' y2='" << y2 << "' stroke='" << colour
             << "'/>\n";
    }
    void text(double x, double y, const std::string& words, const std::string& style) {
        svg_ << "<text x='" << x << "' y='" << y << "' " << style << ">" << words << "</text>\n";
    }
    std::ostringstream svg_;
    double height_ = 0;
};

// One line for each value of a list in the states.
template <class List>
Plot over_time(const Recording& recording, const std::string& title, const std::string& unit, List list,
               const std::function<std::string(std::size_t)>& name) {
    Plot plot{title, "s", unit, {}};
    for (std::size_t i = 0; i < list(recording.states.front()).size(); ++i) {
        Polyline line;
        for (const ArmRecord& state : recording.states)
            line.push_back({recording.seconds(state), static_cast<double>(list(state)[i])});
        plot.lines.emplace_back(name(i), std::move(line));
    }
    return plot;
}

// The path of the tool, seen from above and from the side.
Plot path(const Recording& recording, const char* title, std::size_t across, std::size_t up) {
    Polyline line;
    for (const ArmRecord& state : recording.states)
        line.push_back({state.tool_position_m[across], state.tool_position_m[up]});
    return {title, "m", "m", {{"tool", std::move(line)}}, true};
}

// The speeds that the positions show: controllers leave the speeds out unless they are configured to send them.
void derive_speeds(Recording& recording) {
    auto& states = recording.states;
    for (std::size_t n = 1; n + 1 < states.size(); ++n) {
        const ArmRecord &before = states[n - 1], &after = states[n + 1];
        const double time = recording.seconds(after) - recording.seconds(before);
        for (std::size_t i = 0; time > 0 && i < after.position_deg.size(); ++i)
            states[n].speed_deg_s[i] = static_cast<float>((after.position_deg[i] - before.position_deg[i]) / time);
    }
}

struct PlotRequest {
    std::string from, to;
};

void plot(const PlotRequest& request) {
    if (!request.to.ends_with(".svg")) throw Failure(kUsage, "'" + request.to + "' does not end in .svg");
    Recording recording = load_recording(request.from);
    derive_speeds(recording);
    const std::vector<Mark> marks = marks_of(recording);
    const auto joint = [](std::size_t i) { return "joint " + std::to_string(i + 1); };
    const auto axis = [](std::size_t i) { return std::array{"x", "y", "z", "x (Nm)", "y (Nm)", "z (Nm)"}.at(i); };
    Picture picture;
    picture.add(over_time(
                    recording, "Joints", "deg", [](const ArmRecord& of) { return of.position_deg; }, joint),
                marks);
    picture.add(over_time(
                    recording, "Speeds", "deg/s", [](const ArmRecord& of) { return of.speed_deg_s; }, joint),
                marks);
    picture.add(over_time(
                    recording, "Currents", "A", [](const ArmRecord& of) { return of.current_a; }, joint),
                marks);
    picture.add(over_time(
                    recording, "Force", "N, Nm", [](const ArmRecord& of) { return of.force; }, axis),
                marks);
    picture.add(over_time(
                    recording, "Tool", "m", [](const ArmRecord& of) { return of.tool_position_m; }, axis),
                marks);
    picture.add(path(recording, "Path from above, x and y", 0, 1), {});
    picture.add(path(recording, "Path from the side, x and z", 0, 2), {});
    std::ofstream file(request.to);
    if (!file) throw Failure(kUsage, request.to + " cannot be written");
    if (!(file << picture.svg()).flush()) throw Failure(kFailed, request.to + " cannot be written");
}

}  // namespace

void add_plot(CLI::App& zk) {
    const auto request = std::make_shared<PlotRequest>();
    CLI::App* command = zk.add_subcommand("plot", "draw a recording: joints, speeds, forces, the tool's path, events");
    command->add_option("FILE", request->from, "a recording")->required();
    command->add_option("-o,--output", request->to, "a file .svg")->required();
    command->callback([request] { plot(*request); });
}

}  // namespace tool
