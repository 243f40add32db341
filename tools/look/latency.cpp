#include <algorithm>
#include <chrono>
#include <cmath>
#include <iomanip>
#include <memory>
#include <numeric>
#include <vector>

#include "look/look.h"
#include "report.h"

namespace tool {
namespace {

using Clock = std::chrono::steady_clock;

// A round number near to a fifteenth of the range: 1, 2 or 5 times a power of ten.
double bin_width(double range) {
    const double wanted = std::max(range / 15, 0.01), power = std::pow(10, std::floor(std::log10(wanted)));
    return wanted <= power ? power : wanted <= 2 * power ? 2 * power : wanted <= 5 * power ? 5 * power : 10 * power;
}

// Counts of sorted times in bins of equal width. What lies beyond the 99th percentile by far is in the last one.
Json histogram_of(const std::vector<double>& times) {
    const double most = times[(times.size() - 1) * 99 / 100];
    const double width = bin_width(most - times.front()), begin = std::floor(times.front() / width) * width;
    const int last = static_cast<int>((most - begin) / width);
    std::vector<int> counts(static_cast<std::size_t>(last) + 1);
    for (const double time : times) ++counts[static_cast<std::size_t>(std::min<double>((time - begin) / width, last))];
    Json bins = Json::array();
    for (int i = 0; i <= last; ++i)
        bins.push_back({{"from_ms", rounded(begin + i * width)}, {"count", counts[static_cast<std::size_t>(i)]}});
    return bins;
}

Json latency(const zk::Arm& arm, int count) {
    std::vector<double> times;
    for (int i = 0; i < count; ++i) {
        const Clock::time_point begin = Clock::now();
        const zk::Result<bool> answer = arm.is_powered();
        if (answer) {
            times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
        } else if (answer.error().status != ZK_TIMEOUT) {
            throw Failure(kNoArm, "after " + std::to_string(i) + " queries: " + answer.error().text);
        }
    }
    Json report{{"query", "get_arm_power_state"}, {"queries", count}, {"unanswered", count - times.size()}};
    if (times.empty()) throw Failure(kNoArm, "the controller answered none of the queries");
    std::sort(times.begin(), times.end());
    report["mean_ms"] = rounded(std::accumulate(times.begin(), times.end(), 0.0) / times.size(), 3);
    for (const auto& [key, percent] : {std::pair{"least_ms", 0}, {"p50_ms", 50}, {"p90_ms", 90}, {"p99_ms", 99}})
        report[key] = rounded(times[(times.size() - 1) * static_cast<std::size_t>(percent) / 100], 3);
    report["most_ms"] = rounded(times.back(), 3);
    report["histogram"] = histogram_of(times);
    return report;
}

void show_latency(const Json& report, std::ostream& out) {
    Json numbers = report;
    numbers.erase("histogram");
    print(numbers, out);
    int most = 1;
    for (const Json& bin : report["histogram"]) most = std::max(most, bin["count"].get<int>());
    constexpr int kBar = 50;
    out << '\n';
    for (const Json& bin : report["histogram"]) {
        const int count = bin["count"];
        const int bar = (count * kBar + most - 1) / most;
        const char* more = &bin == &report["histogram"].back() && report["most_ms"] > report["p99_ms"] ? "+ " : "  ";
        out << std::setw(9) << bin["from_ms"].get<double>() << " ms" << more << std::setw(6) << count << "  "
            << std::string(static_cast<std::size_t>(bar), '#') << '\n';
    }
}

}  // namespace

void add_latency(CLI::App& zk) {
    const auto count = std::make_shared<int>(100);
    add_looking_at_arm(
        zk, "latency", "how long a query takes: percentiles and a histogram",
        [count](const zk::Arm& arm) { return latency(arm, *count); },
        [&](CLI::App& command) {
            command.add_option("-n,--count", *count, "queries")->capture_default_str()->check(CLI::Range(1, 1000000));
        },
        show_latency);
}

}  // namespace tool
