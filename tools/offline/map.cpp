#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <random>
#include <thread>

#include "offline/offline.h"
#include "progress.h"
#include "report.h"

namespace tool {
namespace {

constexpr std::size_t kCells = 240;  // from the bottom of a picture to its top
constexpr double kSide = 480;        // the same in the units of the drawing

// How often a cell was reached, seen from one side. y counts upwards from the bottom.
struct Grid {
    double left, bottom, side;  // metres
    std::size_t columns;
    std::vector<double> count = std::vector<double>(columns * kCells);

    double width() const { return static_cast<double>(columns) / kCells; }  // in sides

    void add(double x, double y, double weight) {
        const double column = (x - left) / side * kCells, row = (y - bottom) / side * kCells;
        if (column < 0 || row < 0 || column >= static_cast<double>(columns) || row >= kCells) return;
        count[static_cast<std::size_t>(row) * columns + static_cast<std::size_t>(column)] += weight;
    }
};

struct Places {
    Grid half_plane, plane;
    double reach = 0, low = 0, high = 0;  // furthest from the base's axis; lowest and highest
};

// Joints evenly distributed within their limits.
void fill(std::vector<float>& rows, const zk::JointLimits& limits, std::mt19937& random) {
    const std::size_t width = limits.min.size();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double low = limits.min[i % width].degrees(), high = limits.max[i % width].degrees();
        rows[i] = static_cast<float>(low + (high - low) * (random() * 0x1p-32));
    }
}

void note(const Pose& pose, Places& places) {
    const double x = static_cast<double>(pose.position.x), y = static_cast<double>(pose.position.y),
                 z = static_cast<double>(pose.position.z), across = std::hypot(x, y);
    places.reach = std::max(places.reach, across);
    places.low = std::min(places.low, z);
    places.high = std::max(places.high, z);
    places.plane.add(x, y, 1);
    // A cell of the half plane stands for a ring about the base's axis.
    places.half_plane.add(across, z, 1 / std::max(across, places.half_plane.side / kCells / 2));
}

void visit(const zk::Model& model, std::int64_t poses, const std::function<void(const Pose&)>& see,
           Progress* progress) {
    constexpr std::int64_t kBatch = 100'000;
    const zk::JointLimits limits = model.joint_limits().value();
    const int threads = static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, 64U));
    std::mt19937 random(1);
    for (std::int64_t done = 0; done < poses;) {
        const std::size_t count = static_cast<std::size_t>(std::min(kBatch, poses - done));
        std::vector<float> rows(count * model.joint_count());
        std::vector<Pose> reached(count);
        fill(rows, limits, random);
        model.forward(rows, reached, threads).value();
        std::for_each(reached.begin(), reached.end(), see);
        done += static_cast<std::int64_t>(count);
        if (progress) progress->show(static_cast<double>(done) / static_cast<double>(poses));
    }
}

Places survey(const zk::Model& model, std::int64_t poses) {
    // A first look says how large the pictures have to be.
    constexpr std::int64_t kFirst = 100'000;
    double furthest = 0;
    visit(
        model, kFirst,
        [&furthest](const Pose& pose) {
            const auto& p = pose.position;
            furthest =
                std::max({furthest, static_cast<double>(std::hypot(p.x, p.y)), static_cast<double>(std::abs(p.z))});
        },
        nullptr);
    const double half = std::ceil(furthest * 1.05 * 10) / 10;
    Places places{{0, -half, 2 * half, kCells / 2}, {-half, -half, 2 * half, kCells}};
    Progress progress("poses");
    visit(
        model, poses, [&places](const Pose& pose) { note(pose, places); }, &progress);
    return places;
}

// From pale to dark. Level 0 is not drawn.
constexpr std::array<const char*, 10> kColours{"#e3eef9", "#cfe1f2", "#b5d4e9", "#93c3df", "#6daed5",
                                               "#4b97c9", "#2f7ebc", "#1864aa", "#0a4a90", "#08306b"};

// Each colour is one path of runs of cells. The levels are logarithmic, over three powers of ten.
void draw_cells(const Grid& grid, std::ostream& out) {
    const double most = *std::max_element(grid.count.begin(), grid.count.end());
    const auto level = [&](std::size_t cell) {
        if (grid.count[cell] <= 0) return -1;
        const double share = 1 + std::log10(grid.count[cell] / most) / 3;
        return static_cast<int>(std::clamp(share * kColours.size(), 0.0, kColours.size() - 1.0));
    };
    std::array<std::string, kColours.size()> paths;
    for (std::size_t row = 0; row < kCells; ++row) {
        for (std::size_t column = 0, end = 0; column < grid.columns; column = end) {
            const int here = level(row * grid.columns + column);
            for (end = column + 1; end < grid.columns && level(row * grid.columns + end) == here;) ++end;
            if (here < 0) continue;
            const std::string length = std::to_string(end - column);
            paths[static_cast<std::size_t>(here)] += "M" + std::to_string(column) + " " +
                                                     std::to_string(kCells - 1 - row) + "h" + length + "v1h-" + length +
                                                     "z";
        }
    }
    out << "<g transform=\"scale(" << kSide / kCells << ")\" shape-rendering=\"crispEdges\">\n";
    for (std::size_t i = 0; i < paths.size(); ++i) {
        if (!paths[i].empty()) out << "<path fill=\"" << kColours[i] << "\" d=\"" << paths[i] << "\"/>\n";
    }
    out << "</g>\n";
}

void draw_axes(const Grid& grid, const char* across, const char* up, std::ostream& out) {
    const double step = grid.side > 1.4 ? 0.4 : 0.2, scale = kSide / grid.side, width = kSide * grid.width();
    out << "<rect width=\"" << width << "\" height=\"" << kSide << "\" fill=\"none\" stroke=\"#889\"/>\n";
    for (double at = std::ceil(grid.left / step - 1e-9) * step; at <= grid.left + grid.side * grid.width() + 1e-9;
         at += step) {
        const double x = (at - grid.left) * scale;
        out << "<path stroke=\"#889\" stroke-opacity=\".3\" d=\"M" << x << " 0V" << kSide << "\"/><text x=\"" << x
            << "\" y=\"" << kSide + 18 << "\" text-anchor=\"middle\">" << rounded(at, 1) << "</text>\n";
    }
    for (double at = std::ceil(grid.bottom / step - 1e-9) * step; at <= grid.bottom + grid.side + 1e-9; at += step) {
        const double y = kSide - (at - grid.bottom) * scale;
        out << "<path stroke=\"#889\" stroke-opacity=\".3\" d=\"M0 " << y << "H" << width << "\"/><text x=\"-8\" y=\""
            << y + 4 << "\" text-anchor=\"end\">" << rounded(at, 1) << "</text>\n";
    }
    out << "<text x=\"" << width / 2 << "\" y=\"" << kSide + 38 << "\" text-anchor=\"middle\">" << across
        << " [m]</text><text transform=\"translate(-40 " << kSide / 2 << ")rotate(-90)\" text-anchor=\"middle\">" << up
        << " [m]</text>\n";
}

void draw(const Places& places, const std::string& title, std::ostream& out) {
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"920\" height=\"620\" viewBox=\"0 0 920 620\" "
           "font-family=\"sans-serif\" font-size=\"13\" fill=\"#223\">\n<rect width=\"920\" height=\"620\" "
           "fill=\"#fff\"/>\n<text x=\"70\" y=\"30\" font-size=\"18\">"
        << title << "</text>\n<text x=\"70\" y=\"50\">The darker, the more postures reach a place: a shade for each "
        << "factor of two.</text>\n";
    out << "<g transform=\"translate(70 70)\">\n";
    draw_cells(places.half_plane, out);
    draw_axes(places.half_plane, "distance from the base's axis", "z", out);
    out << "</g>\n<g transform=\"translate(410 70)\">\n";
    draw_cells(places.plane, out);
    draw_axes(places.plane, "x", "y", out);
    out << "</g>\n</svg>\n";
}

struct MapRequest {
    ModelOption model;
    std::string path;
    std::int64_t poses = 10'000'000;
};

void make_map(const MapRequest& request) {
    if (!request.path.ends_with(".svg")) throw Failure(kUsage, "'" + request.path + "' does not end in .svg");
    const zk::Model model = request.model.load();
    std::ofstream file(request.path);
    if (!file) throw Failure(kUsage, request.path + " cannot be written");
    const Places places = survey(model, request.poses);
    draw(places, "What the arm " + model.name() + " reaches, by " + std::to_string(request.poses) + " postures", file);
    if (!file.flush()) throw Failure(kFailed, request.path + " cannot be written");
    print(Json{{"poses", request.poses},
               {"reach_m", rounded(places.reach)},
               {"lowest_m", rounded(places.low)},
               {"highest_m", rounded(places.high)}},
          std::cout);
}

}  // namespace

void add_map(CLI::App& zk) {
    const auto request = std::make_shared<MapRequest>();
    CLI::App* command = zk.add_subcommand("map", "draw the places that the tool reaches");
    request->model.add_to(*command);
    command->add_option("-o,--output", request->path, "a file .svg")->required();
    command->add_option("--poses", request->poses, "how many random postures")
        ->capture_default_str()
        ->check(CLI::Range(std::int64_t{1}, std::int64_t{1'000'000'000}));
    command->callback([request] { make_map(*request); });
}

}  // namespace tool
